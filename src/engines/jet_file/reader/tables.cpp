#include "engines/jet_file/reader/tables.h"

#include <algorithm>

#include "engines/jet_file/reader/values.h"
#include "platform/value.h"

namespace voxa::jet {

namespace {

template <typename Item>
std::vector<Item*> items(const GPtrArray* array) {
  std::vector<Item*> list;
  for (guint i = 0; array != nullptr && i < array->len; ++i)
    list.push_back(static_cast<Item*>(g_ptr_array_index(array, i)));
  return list;
}

std::string_view shown(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

bool isYes(const char* property) {
  return shown(property) == "yes";
}

/// The columns that are written. What the system's tables keep for its own programs can be large.
std::vector<const MdbColumn*> columnsOf(const MdbTableDef& table) {
  const bool system = mdb_is_system_table(table.entry) != 0;
  std::vector<const MdbColumn*> columns;
  for (const MdbColumn* column : items<MdbColumn>(table.columns)) {
    if (typeOf(*column) && !(system && column->col_type == MDB_OLE)) columns.push_back(column);
  }
  return columns;
}

}  // namespace

Tables::Tables(MdbHandle& file, std::uint64_t fileSize, Texts& texts, Output& out)
    : file_(file), fileSize_(fileSize), out_(out), texts_(texts) {
  if (mdb_read_catalog(&file, MDB_ANY) == nullptr) throw Failed{Failure::damaged};
}

MdbCatalogEntry* Tables::entry(std::string_view name) const {
  for (MdbCatalogEntry* entry : items<MdbCatalogEntry>(file_.catalog)) {
    if (entry->object_type == MDB_TABLE && name == entry->object_name) return entry;
  }
  return nullptr;
}

void Tables::writeCatalogue() {
  for (const char* name : {"MSysObjects", "MSysRelationships", "MSysQueries"}) writeSystem(name);
  for (MdbCatalogEntry* entry : items<MdbCatalogEntry>(file_.catalog)) {
    constexpr int hidden = 1;
    const bool shown = mdb_is_user_table(entry) != 0 && (entry->flags & hidden) == 0;
    if (shown && entry->object_name[0] != '~') write(*entry, false);
  }
}

void Tables::writeSystem(std::string_view name) {
  if (MdbCatalogEntry* const found = entry(name)) {
    write(*found, true);
  } else if (name == "MSysObjects") {
    throw Failed{Failure::damaged};
  }
}

void Tables::writeRows(const std::string& name) {
  MdbCatalogEntry* const found = entry(name);
  if (found == nullptr) throw Failed{Failure::noTable};
  write(*found, true);
}

void Tables::note(Note note, std::string_view table, std::string_view column) {
  out_.begin(Frame::note);
  out_.number(static_cast<std::uint8_t>(note), 1);
  out_.text(table);
  out_.text(column);
  out_.end();
}

void Tables::write(MdbCatalogEntry& entry, bool rows) {
  const Table table(mdb_read_table(&entry));
  if (table == nullptr || mdb_read_columns(table.get()) == nullptr || table->columns->len == 0) {
    if (rows) throw Failed{Failure::damaged};
    note(Note::noTable, entry.object_name, "");
    return;
  }
  const std::vector<Index> indexes = readIndexes(*table);
  if (rows) requirePages(*table);
  ++count_;
  writeDefinition(*table, indexes);
  if (rows) writeValues(*table);
}

void Tables::writeDefinition(const MdbTableDef& table, const std::vector<Index>& indexes) {
  for (const MdbColumn* column : items<MdbColumn>(table.columns)) {
    if (!typeOf(*column)) note(Note::columnType, table.entry->object_name, column->name);
  }
  const std::vector<const MdbColumn*> columns = columnsOf(table);
  out_.begin(Frame::table);
  out_.text(table.entry->object_name);
  out_.text(shown(mdb_table_get_prop(&table, "ValidationRule")));
  out_.number(table.num_rows, 4);
  out_.number(columns.size(), 2);
  for (const MdbColumn* column : columns) writeColumn(*column);
  out_.number(indexes.size(), 2);
  for (const Index& index : indexes) {
    out_.text(index.name);
    out_.number(index.flags, 1);
    out_.number(index.fields.size(), 1);
    for (const std::string& field : index.fields) out_.text(field);
  }
  out_.end();
}

void Tables::writeColumn(const MdbColumn& column) {
  const DataType type = *typeOf(column);
  constexpr int guidText = 38;
  int size = column.col_size;
  if (column.col_type == MDB_REPID) {
    size = guidText;
  } else if (type == DataType::Text && !isJet3(file_)) {
    size /= 2;  // bytes of two a character
  }
  const std::string_view standard = shown(mdb_col_get_prop(&column, "DefaultValue"));
  std::uint8_t flags = 0;
  if (isYes(mdb_col_get_prop(&column, "Required"))) flags |= required;
  if (isYes(mdb_col_get_prop(&column, "AllowZeroLength"))) flags |= zeroLength;
  if (column.is_long_auto != 0) flags |= autoNumber;
  if (standard.find("GenUniqueID") != std::string_view::npos) flags |= randomNumber;
  out_.text(column.name);
  out_.number(static_cast<std::uint8_t>(type), 1);
  out_.number(static_cast<std::uint32_t>(std::clamp(size, 0, greatestSize(type))), 4);
  out_.number(flags, 1);
  out_.text(standard);
  out_.text(shown(mdb_col_get_prop(&column, "ValidationRule")));
}

std::string Tables::definitionBytes(std::uint32_t page) const {
  constexpr int most = 64;  // pages: 255 columns with the longest names take no more than 40
  constexpr std::size_t head = 8;
  std::string bytes;
  for (int count = 0; page != 0; ++count) {
    if (count == most || mdb_read_alt_pg(&file_, page) != file_.fmt->pg_size) throw Failed{Failure::damaged};
    const std::string_view content(reinterpret_cast<const char*>(file_.alt_pg_buf),
                                   static_cast<std::size_t>(file_.fmt->pg_size));
    page = wholeAt(content, 4, 4);
    bytes += content.substr(bytes.empty() ? 0 : head);
  }
  return bytes;
}

// The library numbers indexes by their names' order, which relations upset. Here each name is joined with the
// fields that the file joins it with.
std::vector<Tables::Index> Tables::readIndexes(const MdbTableDef& table) {
  const std::string bytes = definitionBytes(static_cast<std::uint32_t>(table.entry->table_pg));
  const bool jet3 = isJet3(file_);
  std::size_t at = file_.fmt->tab_cols_start_offset +
                   std::size_t{table.num_real_idxs} * file_.fmt->tab_ridx_entry_size +
                   std::size_t{table.num_cols} * file_.fmt->tab_col_entry_size;
  const auto skip = [&](std::size_t count) {
    at += count;
    if (at > bytes.size()) throw Failed{Failure::damaged};
  };
  const auto next = [&](std::size_t count) {
    skip(count);
    return wholeAt(bytes, at - count, count);
  };
  const std::size_t lengthSize = jet3 ? 1 : 2;
  for (unsigned i = 0; i < table.num_cols; ++i) skip(next(lengthSize));

  const auto columns = items<MdbColumn>(table.columns);
  std::vector<Index> stored;
  for (unsigned i = 0; i < table.num_real_idxs; ++i) {
    Index index;
    if (!jet3) skip(4);
    for (int key = 0; key < MDB_MAX_IDX_COLS; ++key) {
      const auto number = static_cast<int>(next(2));
      skip(1);  // whether it goes up or down
      for (const MdbColumn* column : columns) {
        if (column->row_col_num == number) index.fields.emplace_back(column->name);
      }
    }
    skip(8);  // pages
    const std::uint32_t flags = next(1);
    if ((flags & MDB_IDX_UNIQUE) != 0) index.flags |= unique;
    if ((flags & MDB_IDX_REQUIRED) != 0) index.flags |= noNull;
    if (!jet3) skip(9);
    stored.push_back(std::move(index));
  }
  constexpr std::uint32_t ofRelation = 2;
  std::vector<Index> named;
  for (unsigned i = 0; i < table.num_idxs; ++i) {
    Index index;
    if (!jet3) skip(4);
    skip(4);
    const std::uint32_t number = next(4);
    skip(1 + 4 + 4 + 2);  // the other table of a relation, and what cascades
    const std::uint32_t kind = next(1);
    if (!jet3) skip(4);
    if (number < stored.size() && kind != ofRelation) {
      index = stored[number];
      if (kind == 1) index.flags |= primary;
    }
    named.push_back(std::move(index));
  }
  for (Index& index : named) {
    const std::size_t length = next(lengthSize);
    skip(length);
    texts_.append(index.name, std::string_view(bytes).substr(at - length, length));
  }
  std::erase_if(named, [](const Index& index) { return index.fields.empty() || index.name.empty(); });
  return named;
}

// The library takes a page that it cannot read for the end of the table.
void Tables::requirePages(const MdbTableDef& table) const {
  const auto inside = [&](std::uint64_t page) {
    return (page + 1) * static_cast<std::uint64_t>(file_.fmt->pg_size) <= fileSize_;
  };
  const std::string_view map(reinterpret_cast<const char*>(table.usage_map), table.map_sz);
  if (map.size() < 5) throw Failed{Failure::damaged};
  if (map[0] == 1) {  // pages that hold the map
    for (std::size_t at = 1; at + 4 <= map.size(); at += 4) {
      if (!inside(wholeAt(map, at, 4))) throw Failed{Failure::cutOff};
    }
  }
  for (std::uint32_t page = 0;;) {
    const gint32 next = mdb_map_find_next(&file_, table.usage_map, static_cast<unsigned>(table.map_sz), page);
    if (next <= 0 || static_cast<std::uint32_t>(next) <= page) return;
    page = static_cast<std::uint32_t>(next);
    if (!inside(page)) throw Failed{Failure::cutOff};
  }
}

void Tables::writeValues(MdbTableDef& table) {
  const std::vector<const MdbColumn*> columns = columnsOf(table);
  const auto all = items<MdbColumn>(table.columns);
  std::vector<std::size_t> places;
  places.reserve(columns.size());
  for (const MdbColumn* column : columns)
    places.push_back(static_cast<std::size_t>(std::find(all.begin(), all.end(), column) - all.begin()));
  std::vector<MdbField> fields(std::max<std::size_t>(all.size(), MDB_MAX_COLS));
  Values values(file_, texts_);
  std::uint64_t rows = 0;
  // Rows are taken apart here, since the library's own way takes an empty text for Null. What has gone to
  // another page has the first mark here and the second one there; what is deleted has both.
  constexpr int gone = 0x4000;
  constexpr int withoutMarks = 0x1FFF;
  (void)mdb_rewind_table(&table);
  while (mdb_read_next_dpg(&table) != 0) {
    const int count = mdb_get_int16(file_.pg_buf, file_.fmt->row_count_offset);
    for (int i = 0; i < count; ++i) {
      int start = 0;
      std::size_t size = 0;
      if (mdb_find_row(&file_, i, &start, &size) != 0 || size == 0 || (start & gone) != 0) continue;
      if (mdb_crack_row(&table, start & withoutMarks, size, fields.data()) < 0) continue;
      out_.begin(Frame::row);
      for (std::size_t c = 0; c < columns.size(); ++c) values.write(out_, *columns[c], fields[places[c]]);
      out_.end();
      ++rows;
    }
  }
  out_.begin(Frame::tableEnd);
  out_.number(rows, 8);
  out_.number(values.unreadable(), 8);
  out_.end();
}

}  // namespace voxa::jet
