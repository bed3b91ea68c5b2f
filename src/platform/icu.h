#pragma once

namespace voxa {

/// A function of the computer's ICU by its name without the number of a release; nullptr when there is no
/// ICU, or none with that function. The library is loaded by the first call and stays. It is in icu_posix.cpp
/// and icu_windows.cpp.
using IcuFunction = void (*)();
[[nodiscard]] IcuFunction icuFunction(const char* name);

}  // namespace voxa
