#include "engines/jet_file/stream.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "platform/error.h"
#include "platform/text.h"

namespace voxa::jet {

/// The content of a frame, taken from its beginning.
class Stream::Content {
 public:
  Content(const Stream& stream, std::string_view bytes) : stream_(stream), rest_(bytes) {}

  std::string_view bytes(std::size_t count) {
    if (count > rest_.size()) stream_.failBroken();
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  std::uint64_t number(std::size_t count) {
    const std::string_view taken = bytes(count);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
      value |= static_cast<std::uint64_t>(static_cast<std::uint8_t>(taken[i])) << (8 * i);
    return value;
  }
  double real() {
    const auto value = std::bit_cast<double>(number(8));
    require(std::isfinite(value));
    return value;
  }
  std::string text() {
    const std::string_view taken = bytes(number(4));
    require(isUtf8(taken));
    return std::string(taken);
  }
  void require(bool holds) const {
    if (!holds) stream_.failBroken();
  }
  [[nodiscard]] bool empty() const { return rest_.empty(); }

 private:
  const Stream& stream_;
  std::string_view rest_;
};

void Stream::failBroken() const {
  throw Error(err::dbNotADatabase, "The database file cannot be read: " + file_ +
                                       ". What the reader program sent of it makes no sense. The file is "
                                       "damaged, or the program belongs to another version of this system");
}

void Stream::failEnded() const {
  const std::string where =
      inTable_ ? " amid table '" + table_.name + "', behind row " + std::to_string(rows_) : " too early";
  throw Error(err::dbNotADatabase,
              "The database file cannot be read to its end: " + file_ + ". What it holds ended" + where +
                  ". Have the Jet database engine repair the file, or take a copy that is whole");
}

void Stream::fail(Failure failure) const {
  const auto damaged = [&](const std::string& how) {
    throw Error(err::dbNotADatabase, "The database file is damaged: " + file_ + ". " + how +
                                         ". Have the Jet database engine repair it, or take another copy");
  };
  switch (failure) {
    case Failure::notJet:
      throw Error(err::dbNotADatabase, "The file is no database of the Jet database engine: " + file_);
    case Failure::locked:
      throw Error(err::dbPassword, "Not a valid password: " + file_ +
                                       " is protected with a password or encrypted. Remove the password and "
                                       "the encryption with the program that set them");
    case Failure::cutOff:
      damaged("Pages that are in use are missing at its end");
      break;
    case Failure::noTable:
      damaged("A table that it lists is not there");
      break;
    case Failure::codePage:
      throw Error(err::dbNotADatabase,
                  "The texts of the database file are in a code page that this system "
                  "does not know: " +
                      file_);
    case Failure::damaged:
    case Failure::memory:
      break;
  }
  damaged("Its pages contradict each other");
  failBroken();
}

/// The next bytes of the stream. They hold until the next call.
std::string_view Stream::take(std::size_t count) {
  constexpr std::size_t piece = 128 * 1024;
  if (buffer_.size() - at_ < count) {
    buffer_.erase(0, at_);
    at_ = 0;
    if (count < piece && buffer_.capacity() > 8 * piece) buffer_.shrink_to_fit();  // behind a long value
    // The room grows with what has come, whatever length was announced.
    while (buffer_.size() < count) {
      const std::size_t before = buffer_.size();
      buffer_.resize(before + piece);
      const std::size_t got = source_(buffer_.data() + before, piece);
      buffer_.resize(before + std::min(got, piece));
      if (got == 0) failEnded();
    }
  }
  const std::string_view taken(buffer_.data() + at_, count);
  at_ += count;
  length_ += count;
  return taken;
}

Frame Stream::next() {
  if (!std::exchange(begun_, true) && take(streamMark.size()) != streamMark) failBroken();
  Content head(*this, take(5));
  const auto frame = static_cast<Frame>(head.number(1));
  const std::uint64_t length = head.number(4);
  if (length > greatestFrame) failBroken();
  Content content(*this, take(length));
  switch (frame) {
    case Frame::table:
      readTable(content);
      break;
    case Frame::row:
      readRow(content);
      break;
    case Frame::note:
      note_.note = static_cast<Note>(content.number(1));
      content.require(note_.note == Note::columnType || note_.note == Note::noTable);
      note_.table = content.text();
      note_.column = content.text();
      break;
    case Frame::tableEnd: {
      content.require(inTable_ && content.number(8) == rows_);
      unreadable_ = content.number(8);
      inTable_ = false;
      break;
    }
    case Frame::failure:
      fail(static_cast<Failure>(content.number(1)));
    case Frame::end:
      content.require(content.number(4) == tables_);
      break;
    default:
      failBroken();
  }
  content.require(content.empty());
  return frame;
}

void Stream::readTable(Content& content) {
  StreamTable table;
  table.name = content.text();
  table.rowRule = content.text();
  table.rows = static_cast<std::uint32_t>(content.number(4));
  const std::uint64_t columns = content.number(2);
  content.require(!table.name.empty());
  for (std::uint64_t i = 0; i < columns; ++i) {
    StreamColumn column;
    column.field.name = content.text();
    const std::uint64_t type = content.number(1);
    content.require(type >= static_cast<std::uint64_t>(DataType::Boolean) &&
                    type <= static_cast<std::uint64_t>(DataType::Memo));
    column.field.type = static_cast<DataType>(type);
    const std::uint64_t size = content.number(4);
    content.require(size <= static_cast<std::uint64_t>(greatestSize(column.field.type)));
    column.field.size = static_cast<int>(size);
    const std::uint64_t flags = content.number(1);
    column.field.required = (flags & required) != 0;
    column.field.allowZeroLength = (flags & zeroLength) != 0 && isText(column.field.type);
    column.field.autoIncrement = (flags & autoNumber) != 0 && column.field.type == DataType::Long;
    column.randomNumber = (flags & randomNumber) != 0;
    column.defaultText = content.text();
    column.field.validationRule = content.text();
    table.columns.push_back(std::move(column));
  }
  const std::uint64_t indexes = content.number(2);
  for (std::uint64_t i = 0; i < indexes; ++i) {
    IndexDef index;
    index.name = content.text();
    const std::uint64_t flags = content.number(1);
    index.primary = (flags & primary) != 0;
    index.unique = index.primary || (flags & unique) != 0;
    index.required = index.primary || (flags & noNull) != 0;
    const std::uint64_t fields = content.number(1);
    for (std::uint64_t f = 0; f < fields; ++f) index.fields.push_back(content.text());
    table.indexes.push_back(std::move(index));
  }
  table_ = std::move(table);
  row_.assign(table_.columns.size(), {});
  rows_ = 0;
  unreadable_ = 0;
  inTable_ = true;
  ++tables_;
}

void Stream::readRow(Content& content) {
  content.require(inTable_);
  for (std::size_t i = 0; i < row_.size(); ++i) {
    const DataType type = table_.columns[i].field.type;
    const auto tag = static_cast<Tag>(content.number(1));
    const auto must = [&](bool fits) { content.require(fits); };
    switch (tag) {
      case Tag::null:
        must(type != DataType::Boolean);
        row_[i] = Value();
        break;
      case Tag::no:
      case Tag::yes:
        must(type == DataType::Boolean);
        row_[i] = tag == Tag::yes;
        break;
      case Tag::byte:
        must(type == DataType::Byte);
        row_[i] = static_cast<std::uint8_t>(content.number(1));
        break;
      case Tag::small:
        must(type == DataType::Integer);
        row_[i] = static_cast<std::int16_t>(content.number(2));
        break;
      case Tag::whole:
        must(type == DataType::Long);
        row_[i] = static_cast<std::int32_t>(content.number(4));
        break;
      case Tag::number:
        must(isReal(type));
        row_[i] = content.real();
        break;
      case Tag::moment:
        must(type == DataType::Date);
        row_[i] = DateTime{content.real()};
        break;
      case Tag::text:
        must(isText(type));
        row_[i] = content.text();
        break;
      case Tag::bytes:
        must(isBinary(type));
        row_[i] = Bytes{std::string(content.bytes(content.number(4)))};
        break;
      default:
        failBroken();
    }
  }
  ++rows_;
}

}  // namespace voxa::jet
