#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/jet_file/stream_format.h"
#include "platform/database/schema.h"

namespace voxa::jet {

struct StreamColumn {
  FieldDef field;           ///< without its default
  std::string defaultText;  ///< as the file has it: an expression
  bool randomNumber = false;
};

struct StreamTable {
  std::string name;
  std::string rowRule;     ///< a condition on whole rows; "" for none
  std::uint32_t rows = 0;  ///< how many the file says it has
  std::vector<StreamColumn> columns;
  std::vector<IndexDef> indexes;
};

/// Reads the frames that the reader program writes. That program may have been taken over by the file that it
/// reads, so nothing is believed: a frame that cannot be raises 3343.
class Stream {
 public:
  /// Puts bytes into `to`, at most `room`; returns how many, 0 at the end.
  using Source = std::function<std::size_t(char* to, std::size_t room)>;
  /// file: the name for errors.
  Stream(Source source, std::string file) : source_(std::move(source)), file_(std::move(file)) {}

  /// Reads the next frame. Errors: 3343, and what a failure frame tells (3031 for a password, say).
  Frame next();

  // What the last frame of each kind has told.
  [[nodiscard]] const StreamTable& table() const { return table_; }
  [[nodiscard]] const std::vector<Value>& row() const { return row_; }
  [[nodiscard]] std::uint64_t rows() const { return rows_; }  ///< of this table until now
  [[nodiscard]] std::uint64_t unreadable() const { return unreadable_; }
  struct Told {
    Note note{};
    std::string table;
    std::string column;
  };
  [[nodiscard]] const Told& note() const { return note_; }
  /// Bytes of all frames until now.
  [[nodiscard]] std::uint64_t length() const { return length_; }

 private:
  class Content;
  std::string_view take(std::size_t count);
  [[noreturn]] void failBroken() const;
  [[noreturn]] void failEnded() const;
  [[noreturn]] void fail(Failure failure) const;
  void readTable(Content& content);
  void readRow(Content& content);

  Source source_;
  std::string file_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::uint64_t length_ = 0;
  bool begun_ = false;
  bool inTable_ = false;
  std::uint32_t tables_ = 0;
  StreamTable table_;
  std::vector<Value> row_;
  std::uint64_t rows_ = 0;
  std::uint64_t unreadable_ = 0;
  Told note_;
};

}  // namespace voxa::jet
