#pragma once

namespace voxa {

// What the build makes of page.mustache and page.css.

extern const char* const pageTemplate;
extern const char* const pageStyle;
extern const char* const pageStyleHash;  ///< as a Content-Security-Policy names a style: "sha256-..."

}  // namespace voxa
