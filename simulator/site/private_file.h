#pragma once

#include <filesystem>

namespace site {

/// Creates the file, if there is none, and leaves its reading and writing to its owner: before anything is in
/// it, since what controllers hold and tell includes cards' codes. Where files have no such rights it stays
/// as the folder makes it; a file that cannot be created shows when it is written.
void makePrivate(const std::filesystem::path& file);

}  // namespace site
