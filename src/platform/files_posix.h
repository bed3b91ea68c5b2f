#pragma once

#include <string>

namespace voxa::files {

/// Opens what openFile (files_platform.h) opens, as a descriptor. flags: those of open(), without the ones
/// for the kind of file and for inheritance, which are added here. -1 on failure, with the errno value in
/// `error`.
[[nodiscard]] int openDescriptor(const std::string& path, int flags, bool any, int& error);

}  // namespace voxa::files
