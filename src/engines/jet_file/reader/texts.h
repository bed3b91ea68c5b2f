#pragma once

#include <iconv.h>

#include <optional>
#include <string>
#include <string_view>

namespace voxa::jet {

/// Texts of a file as UTF-8.
class Texts {
 public:
  /// codePage: of Jet 3; 0 is 1252. Raises Failed for one that this system does not know.
  Texts(bool unicode, unsigned codePage);
  ~Texts();
  Texts(const Texts&) = delete;
  Texts& operator=(const Texts&) = delete;

  /// Appends a text as it lies in the file. What is no character becomes U+FFFD.
  void append(std::string& utf8, std::string_view raw);

 private:
  bool unicode_;
  std::optional<iconv_t> converter_;  ///< none: Unicode, or code page 1252
};

}  // namespace voxa::jet
