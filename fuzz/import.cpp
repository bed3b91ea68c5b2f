// Tables of cards. They are imported as a whole or not at all, and an export of them is imported with the
// same result.

#include <cstdint>

#include "app/library.h"
#include "commands/session.h"
#include "platform/csv.h"
#include "platform/database/database.h"
#include "platform/temporary_folder.h"
#include "require.h"
#include "work/card_export.h"
#include "work/card_import.h"
#include "work/refusal.h"

namespace voxa::fuzz {
namespace {

class Cards {
 public:
  Cards() {
    session_.settings.opening.folder = folder_.path();
    session_.create();
  }

  void check(std::string_view table) {
    const bool imported = import(table);
    const CardTable exported = exportCards(session_.library(), true);
    require(import(exported.text, true), "an export changes nothing where it came from");
    (void)take();
    require(exported.cards == (imported ? readCsv(decodedText(table)).size() - 1 : 0),
            "a table is imported wholly or not at all");
    require(import(exported.text), "an exported table can be imported");
    require(take().text == exported.text, "cards come back as they were");
  }

 private:
  bool import(std::string_view table, bool update = false) {
    try {
      CardImport import = readCardTable(session_.library(), table, {.delimiter = ',', .update = update});
      if (!import.badLines.empty()) return false;
      if (update) return import.changes.empty();
      import.changes.carryOut();
      return true;
    } catch (const Refusal&) {
      return false;
    }
  }
  /// Returns the cards and removes them.
  CardTable take() {
    CardTable table = exportCards(session_.library(), true);
    session_.library().database().execute("delete from Cardholders");
    return table;
  }

  TemporaryFolder folder_;
  cli::Session session_;
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Cards cards;
  cards.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
