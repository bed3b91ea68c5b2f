// Tables as text: what was read can be written, and read again.

#include "platform/csv.h"

#include <cstdint>

#include "require.h"

namespace voxa::fuzz {
namespace {

void check(std::string_view text) {
  std::string written;
  std::vector<CsvRecord> sound;
  std::size_t line = 0;
  for (const CsvRecord& record : readCsv(text)) {
    require(record.line > line, "each record begins behind the one before");
    line = record.line;
    if (!record.fault.empty()) continue;
    for (const std::string& field : record.fields) {
      written += (&field == &record.fields.front() ? "" : ",") + csvField(field);
    }
    written += "\r\n";
    sound.push_back(record);
  }
  const std::vector<CsvRecord> again = readCsv(written);
  require(again.size() == sound.size(), "as many records are read as were written");
  for (std::size_t i = 0; i < sound.size(); ++i) {
    require(again[i].fault.empty(), "what was written has no faults");
    std::vector<std::string> texts;
    for (const std::string& field : again[i].fields) texts.push_back(csvText(field));
    require(texts == sound[i].fields, "the fields come back as they were");
  }
}

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  voxa::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
