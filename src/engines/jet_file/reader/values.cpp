#include "engines/jet_file/reader/values.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "platform/error.h"

namespace voxa::jet {

namespace {

constexpr std::size_t guidSize = 16;

std::uint64_t longAt(std::string_view raw) {
  return wholeAt(raw, 0, 4) | static_cast<std::uint64_t>(wholeAt(raw, 4, 4)) << 32;
}

/// "{00112233-4455-6677-8899-AABBCCDDEEFF}": the first three groups have their lowest byte first.
std::string guidText(std::string_view raw) {
  constexpr std::array<std::size_t, guidSize> order{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::string ordered;
  for (const std::size_t i : order) ordered += raw[i];
  std::string text = hexText(Bytes{ordered});
  for (const std::size_t at : {20, 16, 12, 8}) text.insert(at, 1, '-');
  return '{' + text + '}';
}

/// Whether all days from the year 100 to 9999 have the moment among them.
bool isMoment(double days) {
  return days > -657435.0 && days < 2958466.0;
}

/// A sign and 16 bytes: four groups of 32 bits, the highest group first, each with its lowest byte first.
std::optional<double> decimal(std::string_view raw, int scale) {
  if (scale < 0 || scale > 28) return std::nullopt;
  constexpr std::size_t groups = 4;
  std::array<std::uint32_t, groups> number{};
  for (std::size_t i = 0; i < groups; ++i) number[i] = wholeAt(raw, 1 + 4 * i, 4);
  std::string digits;
  while (number != std::array<std::uint32_t, groups>{}) {
    std::uint64_t rest = 0;
    for (std::uint32_t& group : number) {
      rest = rest << 32 | group;
      group = static_cast<std::uint32_t>(rest / 10);
      rest %= 10;
    }
    digits.insert(digits.begin(), static_cast<char>('0' + rest));
  }
  digits = (raw[0] != 0 ? "-0" : "0") + digits + "e-" + std::to_string(scale);
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc()) return std::nullopt;
  return value;
}

/// Bytes of a value that always has as many; 0 for other types.
std::size_t fixedSize(int type) {
  switch (type) {
    case MDB_BYTE:
      return 1;
    case MDB_INT:
      return 2;
    case MDB_LONGINT:
    case MDB_FLOAT:
      return 4;
    case MDB_MONEY:
    case MDB_DOUBLE:
    case MDB_DATETIME:
      return 8;
    case MDB_REPID:
      return guidSize;
    case MDB_NUMERIC:
      return 17;
    default:
      return 0;
  }
}

}  // namespace

std::optional<DataType> typeOf(const MdbColumn& column) {
  if (column.col_type >= MDB_BOOL && column.col_type <= MDB_MEMO)
    return static_cast<DataType>(column.col_type);
  if (column.col_type == MDB_REPID) return DataType::Text;
  if (column.col_type == MDB_NUMERIC) return DataType::Double;
  return std::nullopt;
}

void Values::write(Output& out, const MdbColumn& column, const MdbField& field) {
  if (column.col_type == MDB_BOOL) {
    out.tag(field.is_null != 0 ? Tag::no : Tag::yes);
    return;
  }
  if (field.is_null != 0) {
    out.tag(Tag::null);
    return;
  }
  const bool inside = field.start >= 0 && field.siz >= 0 && field.start + field.siz <= file_.fmt->pg_size;
  if (inside && tryWrite(out, column,
                         {reinterpret_cast<const char*>(file_.pg_buf) + field.start,
                          static_cast<std::size_t>(field.siz)}))
    return;
  ++unreadable_;
  out.tag(Tag::null);
}

bool Values::tryWrite(Output& out, const MdbColumn& column, std::string_view raw) {
  if (raw.size() < fixedSize(column.col_type)) return false;
  const auto real = [&](Tag tag, double value) {
    if (!std::isfinite(value)) return false;
    out.real(tag, value);
    return true;
  };
  const auto text = [&](std::string_view utf8) {
    if (utf8.size() > greatestValue || out.length() + utf8.size() > greatestFrame - greatestValue)
      return false;
    out.tag(Tag::text);
    out.text(utf8);
    return true;
  };
  const auto bytes = [&](std::string_view value) {
    if (value.size() > greatestValue || out.length() + value.size() > greatestFrame - greatestValue)
      return false;
    out.tag(Tag::bytes);
    out.text(value);
    return true;
  };
  switch (column.col_type) {
    case MDB_BYTE:
      out.tag(Tag::byte);
      out.number(wholeAt(raw, 0, 1), 1);
      return true;
    case MDB_INT:
      out.tag(Tag::small);
      out.number(wholeAt(raw, 0, 2), 2);
      return true;
    case MDB_LONGINT:
      out.tag(Tag::whole);
      out.number(wholeAt(raw, 0, 4), 4);
      return true;
    case MDB_MONEY: {
      constexpr long double parts = 10'000;
      return real(Tag::number, static_cast<double>(std::bit_cast<std::int64_t>(longAt(raw)) / parts));
    }
    case MDB_FLOAT: {
      const auto single = std::bit_cast<float>(wholeAt(raw, 0, 4));
      return std::isfinite(single) && real(Tag::number, toSingle(single));
    }
    case MDB_DOUBLE:
      return real(Tag::number, std::bit_cast<double>(longAt(raw)));
    case MDB_DATETIME: {
      const auto days = std::bit_cast<double>(longAt(raw));
      return isMoment(days) && real(Tag::moment, days);
    }
    case MDB_REPID:
      return text(guidText(raw));
    case MDB_NUMERIC: {
      // The library has precision and scale the wrong way round.
      const std::optional<double> number = decimal(raw, column.col_prec);
      return number && real(Tag::number, *number);
    }
    case MDB_BINARY:
      return bytes(raw);
    case MDB_OLE: {
      const auto value = longValue(raw);
      return value && bytes(*value);
    }
    case MDB_TEXT:
    case MDB_MEMO: {
      const auto value = column.col_type == MDB_MEMO ? longValue(raw) : raw;
      if (!value) return false;
      text_.clear();
      texts_.append(text_, *value);
      return text(text_);
    }
    default:
      return false;
  }
}

std::optional<std::string_view> Values::longValue(std::string_view raw) {
  if (raw.size() < MDB_MEMO_OVERHEAD) return std::nullopt;
  constexpr std::uint32_t here = 0x80000000;
  constexpr std::uint32_t onePage = 0x40000000;
  const std::uint32_t head = wholeAt(raw, 0, 4);
  const std::size_t length = head & ~(here | onePage);
  std::uint32_t place = wholeAt(raw, 4, 4);
  if (length > greatestValue) return std::nullopt;
  if (length == 0) return std::string_view();
  if ((head & here) != 0) {
    raw.remove_prefix(MDB_MEMO_OVERHEAD);
    return length <= raw.size() ? std::optional(raw.substr(0, length)) : std::nullopt;
  }
  if ((head & onePage) != 0) {
    const auto only = piece(place);
    return only && length <= only->size() ? std::optional(only->substr(0, length)) : std::nullopt;
  }
  constexpr std::size_t next = 4;  // where the next piece is
  long_.clear();
  while (long_.size() < length) {
    const auto part = piece(place);
    if (!part || part->size() <= next) return std::nullopt;
    long_ += part->substr(next);
    place = wholeAt(*part, 0, next);
  }
  return std::string_view(long_).substr(0, length);
}

std::optional<std::string_view> Values::piece(std::uint32_t pageAndRow) {
  void* page = nullptr;
  int start = 0;
  std::size_t length = 0;
  if (mdb_find_pg_row(&file_, static_cast<int>(pageAndRow), &page, &start, &length) != 0) return std::nullopt;
  constexpr int withoutFlags = 0x1FFF;
  const auto at = static_cast<std::size_t>(start & withoutFlags);
  if (page == nullptr || at + length > static_cast<std::size_t>(file_.fmt->pg_size)) return std::nullopt;
  return std::string_view(static_cast<const char*>(page) + at, length);
}

}  // namespace voxa::jet
