#pragma once

#include "korva.h"
#include "object.h"

namespace voxa {
class Library;
}

namespace voxa::automation {

/// The library's context, the same for every object of the process.
[[nodiscard]] Library& library();

// The objects that a caller can create by name, and those that they hand out. Those of the library's service
// and table objects are the same for everybody who asks while somebody holds them.

[[nodiscard]] IUnknown* makeGlob();
[[nodiscard]] ::IQDB* qdbObject();
[[nodiscard]] ::ICom* comObject();
[[nodiscard]] ::ICommandFile* commandFileObject();
[[nodiscard]] ::IStrings* stringsObject();
[[nodiscard]] IUnknown* makeSeqFile();
[[nodiscard]] IUnknown* makeUFile();
[[nodiscard]] IUnknown* makeInter();

}  // namespace voxa::automation
