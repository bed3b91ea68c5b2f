// What the program that reads Jet files sends, in case a file has taken it over. Nothing worse than an Error
// may come of any bytes.

#include <string_view>
#include <utility>

#include "engines/jet_file/catalogue.h"
#include "engines/jet_file/stream.h"
#include "platform/error.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view sent(reinterpret_cast<const char*>(data), size);
  std::string_view rest = sent;
  voxa::jet::Stream stream(
      [&](char* to, std::size_t room) {
        const std::size_t count = rest.copy(to, room);
        rest.remove_prefix(count);
        return count;
      },
      "old.mdb");
  try {
    const voxa::jet::Catalogue found = voxa::jet::readCatalogue(stream);
    for (const voxa::Relation& relation : found.relations)
      voxa::fuzz::require(found.table(relation.table) != nullptr, "a relation is of tables that there are");
    for (const voxa::QueryDef& query : found.queries)
      voxa::fuzz::require(!query.sql.empty(), "a query has a text");
  } catch (const voxa::Error&) {
    // What a broken stream must raise.
  }
  return 0;
}
