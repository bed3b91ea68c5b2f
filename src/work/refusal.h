#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

/// Why a command is not carried out, found before or beside the library: a sentence of the command's own, or
/// a text of the message catalogue with what it is about.
class Refusal : public std::runtime_error {
 public:
  explicit Refusal(const std::string& sentence) : std::runtime_error(sentence) {}
  Refusal(std::string mnemonic, const Value& about)
      : std::runtime_error(about.toText()), mnemonic_(std::move(mnemonic)) {}

  /// "" when what() is the whole sentence; else what() is what the catalogue's text is about.
  [[nodiscard]] const std::string& mnemonic() const { return mnemonic_; }

 private:
  std::string mnemonic_;
};

/// The same of a command that has done its work, when something is left that needs a person: a controller
/// that did not answer, a line that is not in use.
class Leftover : public Refusal {
 public:
  using Refusal::Refusal;
};

/// Names below a sentence, each on a line of its own.
[[nodiscard]] inline std::string eachOnALine(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += "\n  " + name;
  return text;
}

}  // namespace voxa
