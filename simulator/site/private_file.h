#pragma once

#include <filesystem>

namespace site {

/// Creates the file if there is none, and lets only its owner read and write it. This is done before the file
/// has any content, since that includes cards' codes. Where files have no such rights the folder decides. A
/// file that cannot be created is noticed when it is written.
void makePrivate(const std::filesystem::path& file);

}  // namespace site
