#pragma once

#include "work/door_change.h"

namespace voxa::cli {

class Session;

/// Tells what a change of doors has brought with it.
void showChangedDoors(Session& session, const ChangedDoors& changed);

}  // namespace voxa::cli
