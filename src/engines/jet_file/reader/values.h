#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engines/jet_file/reader/library.h"
#include "engines/jet_file/reader/output.h"
#include "engines/jet_file/reader/texts.h"
#include "platform/value.h"

namespace voxa::jet {

/// The type of a column here. None for one that has no values here.
[[nodiscard]] std::optional<DataType> typeOf(const MdbColumn& column);

/// Writes the values of rows.
class Values {
 public:
  Values(MdbHandle& file, Texts& texts) : file_(file), texts_(texts) {}

  /// The value of a column, with its tag. field: where it is on the page that the library has read last.
  /// Null, and one more in unreadable(), for what is no value of its type.
  void write(Output& out, const MdbColumn& column, const MdbField& field);
  [[nodiscard]] std::uint64_t unreadable() const { return unreadable_; }

 private:
  bool tryWrite(Output& out, const MdbColumn& column, std::string_view raw);
  /// The bytes of a long value from the twelve bytes, or more, that stand for it in the row.
  std::optional<std::string_view> longValue(std::string_view raw);
  /// A piece of a long value: a row of a page of its own.
  std::optional<std::string_view> piece(std::uint32_t pageAndRow);

  MdbHandle& file_;
  Texts& texts_;
  std::string long_;
  std::string text_;
  std::uint64_t unreadable_ = 0;
};

}  // namespace voxa::jet
