#include "jet/jet_writer.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <numeric>
#include <stdexcept>

#include "platform/text.h"

namespace voxa::jet {

namespace {

std::string number(std::uint64_t value, std::size_t bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes; ++i, value >>= 8) text += static_cast<char>(value);
  return text;
}

void putAt(std::string& bytes, std::size_t at, const std::string& what) {
  bytes.replace(at, what.size(), what);
}

void rc4(std::string& bytes, std::size_t at, std::size_t count, const std::string& key) {
  std::vector<std::uint8_t> s(256);
  std::iota(s.begin(), s.end(), std::uint8_t{0});
  for (std::size_t i = 0, j = 0; i < s.size(); ++i) {
    j = (j + s[i] + static_cast<std::uint8_t>(key[i % key.size()])) % s.size();
    std::swap(s[i], s[j]);
  }
  for (std::size_t n = 0, i = 0, j = 0; n < count; ++n) {
    i = (i + 1) % s.size();
    j = (j + s[i]) % s.size();
    std::swap(s[i], s[j]);
    bytes[at + n] = static_cast<char>(bytes[at + n] ^ s[(s[i] + s[j]) % s.size()]);
  }
}

constexpr int yesNo = 1;

/// Bytes that a value of a type takes in the part of a row that has its places; none for other types.
std::optional<std::size_t> fixedSize(int type) {
  static const std::map<int, std::size_t> sizes{{yesNo, 0}, {2, 1}, {3, 2}, {4, 4},   {5, 8},
                                                {6, 4},     {7, 8}, {8, 8}, {15, 16}, {16, 17}};
  const auto found = sizes.find(type);
  return found == sizes.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

JetWriter::JetWriter(Options options)
    : options_(std::move(options)), old_(options_.version == 3), pageSize_(old_ ? 2048 : 4096) {
  for (int i = 0; i < 3; ++i) (void)newPage();
  constexpr std::uint32_t system = 0x80000002;
  const auto begin = [&](const std::string& name, std::vector<Column> columns, std::uint32_t page) {
    return Table{name, std::move(columns), {}, system, {}, page, {number(page, 4)}};
  };
  objects_ = begin("MSysObjects",
                   {{"Id", 4},
                    {"ParentId", 4},
                    {"Name", 10, 64},
                    {"Type", 3},
                    {"Flags", 4},
                    {"Database", 12},
                    {"ForeignName", 10, 64},
                    {"LvProp", 11}},
                   2);
  relations_ = begin("MSysRelationships",
                     {{"ccolumn", 4},
                      {"grbit", 4},
                      {"icolumn", 4},
                      {"szColumn", 10, 64},
                      {"szObject", 10, 64},
                      {"szReferencedColumn", 10, 64},
                      {"szReferencedObject", 10, 64},
                      {"szRelationship", 10, 64}},
                     newPage());
  queries_ = begin("MSysQueries",
                   {{"Attribute", 2},
                    {"Expression", 12},
                    {"Flag", 3},
                    {"Name1", 10, 255},
                    {"Name2", 10, 255},
                    {"ObjectId", 4},
                    {"Order", 9, 255}},
                   newPage());
}

std::uint32_t JetWriter::newPage() {
  pages_.emplace_back(pageSize_, '\0');
  return static_cast<std::uint32_t>(pages_.size() - 1);
}

JetWriter::Cell JetWriter::text(std::string_view utf8, bool compressed) const {
  if (old_) return options_.codePage == 1252 ? toCp1252(utf8) : std::string(utf8);
  std::string bytes = compressed ? "\xFF\xFE" : "";
  while (!utf8.empty()) {
    const char32_t c = firstCharacter(utf8);
    utf8.remove_prefix(behindCharacter(utf8, 0));
    if (c > 0xFFFF) {
      bytes += number(0xD800 + ((c - 0x10000) >> 10), 2) + number(0xDC00 + ((c - 0x10000) & 0x3FF), 2);
    } else {
      bytes += number(c, compressed ? 1 : 2);
    }
  }
  return bytes;
}

JetWriter::Cell JetWriter::shortText(const std::string& text) const {
  return text.empty() ? Cell() : this->text(text);
}

std::string JetWriter::name(const std::string& text) const {
  const std::string bytes = *this->text(text, false);
  return number(bytes.size(), old_ ? 1 : 2) + bytes;
}

/// Puts a row into the last of the pages, or into a new one. Returns page and row number.
std::uint32_t JetWriter::place(Filling& filling, const std::string& bytes, unsigned flags) {
  const std::size_t countAt = old_ ? 8 : 12;
  const auto room = [&] { return filling.end - (countAt + 2 + 2 * (filling.count + 1)); };
  if (filling.pages.empty() || filling.count == 250 || filling.end < countAt + 2 + 2 * (filling.count + 1) ||
      room() < bytes.size()) {
    filling.pages.push_back(newPage());
    filling.end = pageSize_;
    filling.count = 0;
    putAt(pages_.back(), 0, "\1\1" + number(0, 2) + filling.owner);
    if (room() < bytes.size()) throw std::runtime_error("a row longer than a page");
  }
  std::string& page = pages_[filling.pages.back()];
  filling.end -= bytes.size();
  putAt(page, filling.end, bytes);
  putAt(page, countAt + 2 + 2 * filling.count, number(filling.end | flags, 2));
  putAt(page, countAt, number(++filling.count, 2));
  putAt(page, 2, number(room(), 2));
  return filling.pages.back() << 8 | static_cast<std::uint32_t>(filling.count - 1);
}

JetWriter::Cell JetWriter::longValue(const std::string& bytes, Form form) {
  constexpr std::uint32_t here = 0x80000000;
  constexpr std::uint32_t onePage = 0x40000000;
  const auto length = static_cast<std::uint32_t>(bytes.size());
  if (form == Form::inRow) return number(length | here, 4) + number(0, 8) + bytes;
  if (form == Form::onePage)
    return number(length | onePage, 4) + number(place(long_, bytes), 4) + number(0, 4);
  const std::size_t piece = pageSize_ - 100;
  std::uint32_t next = 0;
  for (std::size_t at = bytes.empty() ? 0 : (bytes.size() - 1) / piece * piece;; at -= piece) {
    next = place(long_, number(next, 4) + bytes.substr(at, piece));
    if (at == 0) break;
  }
  return number(length, 4) + number(next, 4) + number(0, 4);
}

void JetWriter::table(const std::string& name, std::vector<Column> columns, std::vector<Index> indexes,
                      std::uint32_t flags, const std::string& rowRule) {
  const std::uint32_t page = newPage();
  tables_.push_back({name, std::move(columns), std::move(indexes), flags, rowRule, page, {number(page, 4)}});
}

void JetWriter::row(const std::vector<Cell>& cells, Kind kind) {
  addRow(tables_.back(), cells, kind);
}

void JetWriter::addRow(Table& table, const std::vector<Cell>& cells, Kind kind) {
  // Deleted is both marks. Where a row has gone to, it has the other one.
  constexpr unsigned gone = 0x4000;
  constexpr unsigned target = 0x8000;
  const std::string bytes = packed(table, cells);
  if (kind == Kind::deleted) {
    (void)place(table.rows, bytes, gone | target);
    return;
  }
  ++table.rowCount;
  if (kind == Kind::plain) {
    (void)place(table.rows, bytes);
  } else {
    (void)place(table.rows, number(place(table.rows, bytes, target), 4), gone);
  }
}

std::string JetWriter::packed(const Table& table, const std::vector<Cell>& cells) const {
  const std::size_t width = old_ ? 1 : 2;  // of counts and offsets
  const std::size_t columns = table.columns.size();
  std::string bytes = number(columns, width);
  std::string mask((columns + 7) / 8, '\0');
  std::vector<std::size_t> offsets;
  for (const bool fixed : {true, false}) {
    for (std::size_t i = 0; i < columns; ++i) {
      const auto size = fixedSize(table.columns[i].type);
      if (fixed && cells[i]) mask[i / 8] = static_cast<char>(mask[i / 8] | 1 << (i % 8));
      if (size.has_value() != fixed) continue;
      if (!fixed) offsets.push_back(bytes.size());
      if (fixed) {
        std::string value = cells[i].value_or("");
        value.resize(*size);
        bytes += value;
      } else {
        bytes += cells[i].value_or("");
      }
    }
  }
  if (offsets.empty()) return bytes + mask;
  const std::size_t variable = offsets.size();
  offsets.push_back(bytes.size());
  const auto backwards = [&] {
    for (auto at = offsets.rbegin(); at != offsets.rend(); ++at) bytes += number(*at, width);
  };
  backwards();
  if (old_) {
    // An offset is its low byte. A jump tells from which entry on the offsets have one more above it.
    const std::size_t rest = bytes.size() + 1 + mask.size();
    std::size_t jumps = 0;
    while ((rest + jumps - 1) / 256 > jumps) ++jumps;
    for (std::size_t jump = jumps; jump > 0; --jump) {
      const auto first = std::find_if(offsets.begin(), offsets.end(),
                                      [&](std::size_t offset) { return offset >= jump * 256; });
      bytes += first == offsets.end() ? '\xFF' : static_cast<char>(first - offsets.begin());
    }
  }
  return bytes + number(variable, width) + mask;
}

/// Which pages a table has, as a row. Returns its page and row number.
std::uint32_t JetWriter::usageMap(const std::vector<std::uint32_t>& pages) {
  const std::size_t size = old_ ? 128 : 64;
  const std::uint32_t first = pages.empty() ? 0 : pages.front() / 8 * 8;
  const auto set = [](std::string& bits, std::size_t at) {
    bits[at / 8] = static_cast<char>(bits[at / 8] | 1 << (at % 8));
  };
  std::string bits(size, '\0');
  if (pages.empty() || pages.back() - first < size * 8) {
    for (const std::uint32_t page : pages) set(bits, page - first);
    return place(maps_, '\0' + number(first, 4) + bits);
  }
  const std::size_t most = (pageSize_ - 4) * 8;
  std::vector<std::uint32_t> parts(size / 4 + 1);
  for (const std::uint32_t page : pages) {
    std::uint32_t& part = parts.at(page / most);
    if (part == 0) {
      part = newPage();
      putAt(pages_[part], 0, "\5\1");
    }
    set(pages_[part], 4 * 8 + page % most);
  }
  std::string row = "\1";
  for (const std::uint32_t part : parts) row += number(part, 4);
  return place(maps_, row);
}

void JetWriter::writeDefinition(Table& table) {
  const std::uint32_t map = usageMap(table.rows.pages);
  const std::uint32_t noPages = usageMap({});
  const auto unknown = [&](std::size_t bytes) { return old_ ? std::string() : number(0, bytes); };
  std::size_t variable = 0;
  std::string columns;
  std::string names;
  std::size_t fixedAt = 0;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    const auto fixed = fixedSize(column.type);
    const std::size_t factor = column.type == 10 && !old_ ? 2 : 1;
    const std::string kind = number(i, 2);
    const std::string misc = column.type == 16
                                 ? number(28, 1) + number(static_cast<unsigned>(column.scale), 1)
                                 : number(old_ ? 1252 : 0x409, 2);
    columns += number(static_cast<unsigned>(column.type), 1) + unknown(4) + kind + number(variable, 2) + kind;
    if (old_) columns += number(0x409, 2);
    columns += misc + number(0, 2) + number((fixed ? 1 : 0) + 2 + (column.autoNumber ? 4 : 0), 1);
    if (!old_) columns += number(1, 1) + number(0, 4);
    columns += number(fixed ? fixedAt : 0, 2) +
               number(fixed ? *fixed : static_cast<std::size_t>(column.size) * factor, 2);
    if (fixed) fixedAt += *fixed;
    if (!fixed) ++variable;
    names += name(column.name);
  }
  std::string stored;
  std::string listed;
  std::string indexNames;
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    const Index& index = table.indexes[i];
    stored += unknown(4);
    for (std::size_t key = 0; key < 10; ++key) {
      const bool used = key < index.columns.size();
      stored += number(used ? index.columns[key] : 0xFFFF, 2) + (used ? '\1' : '\0');
    }
    const int flags = (index.unique || index.primary ? 1 : 0) + (index.required || index.primary ? 8 : 0);
    stored += number(noPages, 4) + number(0, 4) + number(static_cast<unsigned>(flags), 1) + unknown(9);
    listed += unknown(4) + number(i, 4) + number(i, 4) + number(0, 1) + number(0xFFFFFFFF, 4) + number(0, 6) +
              number(index.primary ? 1 : 0, 1) + unknown(4);
    indexNames += name(index.name);
  }
  const std::size_t indexes = table.indexes.size();
  const bool system = table.flags != 0;
  std::string body = unknown(4) + number(table.rowCount, 4) + number(table.rowCount, 4);
  if (!old_) body += number(1, 4) + number(0, 12);
  body += number(system ? 0x53 : 0x4E, 1) + number(table.columns.size(), 2) + number(variable, 2) +
          number(table.columns.size(), 2) + number(indexes, 4) + number(indexes, 4) + number(map, 4) +
          number(noPages, 4) + std::string(indexes * (old_ ? 8 : 12), '\0') + columns + names + stored +
          listed + indexNames + "\xFF\xFF";
  body = number(body.size() + 12, 4) + body;

  const std::size_t most = pageSize_ - 8;
  std::uint32_t page = table.page;
  for (std::size_t at = 0; at < body.size(); at += most) {
    const std::uint32_t next = at + most < body.size() ? newPage() : 0;
    putAt(pages_[page], 0, "\2\1VC" + number(next, 4) + body.substr(at, most));
    page = next;
  }
}

std::string JetWriter::properties(const Table& table) const {
  std::vector<std::string> names;
  const auto chunk = [](int type, const std::string& content) {
    return number(content.size() + 6, 4) + number(static_cast<unsigned>(type), 2) + content;
  };
  const auto withLength = [&](const std::string& given) {
    const std::string bytes = *text(given, false);
    return number(bytes.size(), 2) + bytes;
  };
  const auto block = [&](int type, const std::string& owner,
                         const std::vector<std::pair<std::string, std::string>>& list) {
    std::string content;
    for (const auto& [key, value] : list) {
      const auto found = std::find(names.begin(), names.end(), key);
      const auto place = static_cast<std::size_t>(found - names.begin());
      if (found == names.end()) names.push_back(key);
      const bool flag = value == "yes" || value == "no";
      const std::string bytes = flag ? std::string(1, value == "yes" ? '\1' : '\0') : *text(value, false);
      content += number(bytes.size() + 8, 2) + number(0, 1) + number(flag ? yesNo : 12, 1) +
                 number(place, 2) + number(bytes.size(), 2) + bytes;
    }
    const std::string head = withLength(owner);
    return list.empty() ? "" : chunk(type, number(head.size() + 4, 4) + head + content);
  };
  std::string values = table.rowRule.empty() ? "" : block(0, "", {{"ValidationRule", table.rowRule}});
  for (const Column& column : table.columns) values += block(1, column.name, column.properties);
  std::string list;
  for (const std::string& name : names) list += withLength(name);
  return std::string(old_ ? "KKD\0" : "MR2\0", 4) + chunk(0x80, list) + values;
}

std::int32_t JetWriter::object(int type, const std::string& name, const std::string& linkedFile,
                               const std::string& linkedTable) {
  const std::int32_t id = --nextObject_;
  addRow(objects_,
         {raw(id),
          raw(0),
          text(name),
          raw(static_cast<std::int16_t>(type)),
          raw(0),
          linkedFile.empty() ? Cell() : memo(linkedFile, Form::inRow),
          shortText(linkedTable),
          {}},
         Kind::plain);
  return id;
}

void JetWriter::relation(const std::string& name, const std::string& table, const std::string& foreignTable,
                         const std::vector<std::pair<std::string, std::string>>& fields, int flags) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    addRow(relations_,
           {raw(static_cast<std::int32_t>(fields.size())), raw(flags), raw(static_cast<std::int32_t>(i)),
            text(fields[i].second), text(foreignTable), text(fields[i].first), text(table), text(name)},
           Kind::plain);
  }
}

void JetWriter::queryPart(std::int32_t query, int attribute, int flag, const std::string& expression,
                          const std::string& name1, const std::string& name2) {
  const std::string order{static_cast<char>(++parts_ >> 8), static_cast<char>(parts_)};
  addRow(
      queries_,
      {raw(static_cast<std::uint8_t>(attribute)), expression.empty() ? Cell() : memo(expression, Form::inRow),
       raw(static_cast<std::int16_t>(flag)), shortText(name1), shortText(name2), raw(query), order},
      Kind::plain);
}

void JetWriter::write(const std::string& path) {
  const auto list = [&](Table& table) {
    writeDefinition(table);
    constexpr std::int16_t isTable = 1;
    addRow(objects_,
           {raw(table.page),
            raw(0),
            text(table.name),
            raw(isTable),
            raw(table.flags),
            {},
            {},
            longValue(properties(table), Form::onePage)},
           Kind::plain);
  };
  list(relations_);
  list(queries_);
  for (Table& table : tables_) list(table);
  addRow(objects_,
         {raw(objects_.page),
          raw(0),
          text(objects_.name),
          raw(std::int16_t{1}),
          raw(objects_.flags),
          {},
          {},
          {}},
         Kind::plain);
  writeDefinition(objects_);

  std::string& head = pages_[0];
  putAt(head, 0, std::string("\0\1\0\0Standard Jet DB\0", 20) + number(old_ ? 0 : 1, 4));
  putAt(head, 0x3C, number(static_cast<unsigned>(options_.codePage), 2) + number(options_.key, 4));
  constexpr double made = 36526.5;
  std::string password = *text(options_.password, false);
  password.resize(old_ ? 20 : 40);
  for (std::size_t i = 0; !old_ && i < password.size(); ++i)
    password[i] = static_cast<char>(password[i] ^ static_cast<char>(36526 >> (8 * (i % 4))));
  putAt(head, 0x42, password);
  if (!old_) putAt(head, 0x72, *raw(made));
  rc4(head, 0x18, old_ ? 126 : 128, "\xC7\xDA\x39\x6B");
  std::ofstream out(path, std::ios::binary);
  for (std::size_t i = 0; i < pages_.size(); ++i) {
    if (i != 0 && options_.key != 0) rc4(pages_[i], 0, pageSize_, number(options_.key ^ i, 4));
    out << pages_[i];
  }
}

}  // namespace voxa::jet
