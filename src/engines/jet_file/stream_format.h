#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace voxa::jet {

/// What the reader program writes to its standard output: the mark, then frames. A frame is a letter, the
/// length of its content in four bytes, and the content. All numbers have their lowest byte first. A text is
/// its length in four bytes and UTF-8.
inline constexpr std::string_view streamMark = "VOXAJET1";

enum class Frame : char {
  /// A table: name, rule of its rows, rows that it says it has (4 bytes), columns (2 bytes), and for each:
  /// name, type (1 byte, a DataType), size (4 bytes, as in FieldDef), ColumnFlag (1 byte), text of the
  /// default,
  /// validation rule; then indexes (2 bytes), and for each: name, IndexFlag (1 byte), fields (1 byte), their
  /// names.
  table = 'T',
  row = 'R',       ///< a Tag and its value for each column of the table before
  note = 'N',      ///< Note (1 byte), table, column
  tableEnd = 'E',  ///< rows that were sent (8 bytes), values that could not be read and are Null (8 bytes)
  failure = 'F',   ///< Failure (1 byte); nothing follows
  end = 'Z'        ///< tables that were sent (4 bytes); nothing follows
};

enum ColumnFlag : std::uint8_t { required = 1, zeroLength = 2, autoNumber = 4, randomNumber = 8 };
enum IndexFlag : std::uint8_t { primary = 1, unique = 2, noNull = 4 };

enum class Tag : std::uint8_t {
  null,
  no,
  yes,
  byte,    ///< 1 byte
  small,   ///< 2 bytes
  whole,   ///< 4 bytes
  number,  ///< 8 bytes, a double
  moment,  ///< 8 bytes, a double: days since 30 December 1899
  text,    ///< a text
  bytes    ///< length (4 bytes), bytes
};

enum class Note : std::uint8_t {
  columnType = 1,  ///< a column of a type that has no values here
  noTable          ///< the definition of a table cannot be read
};

enum class Failure : std::uint8_t {
  notJet = 1,
  locked,   ///< a password or a key is needed
  damaged,  ///< what a page says cannot be
  cutOff,   ///< pages that are in use are behind the end of the file
  noTable,  ///< no table of that name
  memory,
  codePage  ///< texts in a code page that this system does not know
};

/// Bytes of the content of a frame. A longer one is a fault of the stream.
inline constexpr std::size_t greatestFrame = std::size_t{192} * 1024 * 1024;
/// Bytes of one value. A longer one counts as one that cannot be read.
inline constexpr std::size_t greatestValue = std::size_t{64} * 1024 * 1024;

}  // namespace voxa::jet
