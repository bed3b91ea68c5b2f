#pragma once

#include "korva.h"
#include "object.h"

namespace voxa {
class Library;
}

namespace voxa::automation {

/// The library's context. All objects of the process share it.
[[nodiscard]] Library& library();

// The objects that a caller can create by name, and those that they hand out. While somebody holds a service
// or table object of the library, everybody who asks for it gets the same one.

[[nodiscard]] IUnknown* makeGlob();
[[nodiscard]] ::IQDB* qdbObject();
[[nodiscard]] ::ICom* comObject();
[[nodiscard]] ::ICommandFile* commandFileObject();
[[nodiscard]] ::IStrings* stringsObject();
[[nodiscard]] IUnknown* makeSeqFile();
[[nodiscard]] IUnknown* makeUFile();
[[nodiscard]] IUnknown* makeInter();
[[nodiscard]] IUnknown* makeControllers();
[[nodiscard]] IUnknown* makeDBEngine();

}  // namespace voxa::automation
