#pragma once

#include <string>

namespace voxa {

struct Page;

/// The page as one HTML file, in UTF-8: complete in itself, without a script, and with a policy that lets it
/// load nothing. Every text of the page is escaped.
[[nodiscard]] std::string htmlOf(const Page& page);

}  // namespace voxa
