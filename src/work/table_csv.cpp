#include "work/table_csv.h"

#include <algorithm>
#include <string_view>

#include "platform/csv.h"
#include "platform/datetime.h"
#include "platform/text.h"

namespace voxa {

namespace {

std::string cellOf(const Value& value) {
  if (value.isNull()) return {};
  if (const auto* moment = std::get_if<DateTime>(&value.data()))
    return formatDateTime(*moment, "yyyy-mm-ddThh:nn:ss");
  if (const auto* bytes = std::get_if<Bytes>(&value.data())) return hexText(*bytes);
  return csvField(value.toText());
}

std::string cells(const Value* row, std::size_t columns) {
  std::string line;
  for (std::size_t i = 0; i < columns; ++i) line += (i == 0 ? "" : ",") + cellOf(row[i]);
  return line + "\r\n";
}

/// The same file, new and of its owner alone.
const std::string& made(const std::string& path) {
  files::createNew(path);
  return path;
}

}  // namespace

TableCsv::TableCsv(const std::string& path, const std::vector<std::string>& columns)
    : file_(made(path), files::Stream::Mode::write) {
  std::string line;
  for (const std::string& column : columns) line += (line.empty() ? "" : ",") + csvField(column);
  file_.write(line + "\r\n");
}

void TableCsv::write(const Value* row, std::size_t columns) {
  file_.write(cells(row, columns));
}

void TableCsv::write(const std::string& first, const Value* row, std::size_t columns) {
  file_.write(csvField(first) + "," + cells(row, columns));
}

void TableCsv::close() {
  file_.close();
}

std::string CsvNames::of(const std::string& table) {
  std::string name;
  for (const char c : table) {
    const bool leads = static_cast<unsigned char>(c) < ' ' ||
                       std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
    name += leads || (name.empty() && c == '.') ? '_' : c;
  }
  std::string own = name;
  const auto taken = [&](const std::string& other) { return equalNoCase(other, own); };
  for (int n = 2; std::any_of(taken_.begin(), taken_.end(), taken); ++n) own = name + "_" + std::to_string(n);
  taken_.push_back(own);
  return own + ".csv";
}

}  // namespace voxa
