#pragma once

#include <string>

namespace voxa::files {

/// What openFile (files_platform.h) opens, as a descriptor; flags: those of open() but for what is opened and
/// how it is inherited. -1 on failure, with the errno value in `error`.
[[nodiscard]] int openDescriptor(const std::string& path, int flags, bool any, int& error);

}  // namespace voxa::files
