#pragma once

namespace voxa::simulation {

/// Kills this process before its n-th change of a file from now on, n from 1: a write, a file cut short,
/// renamed or removed. What was written before is there, as after any kill.
void killBeforeChange(int n);

}  // namespace voxa::simulation
