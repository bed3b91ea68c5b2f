// Tables of cards. They are imported as a whole or not at all, and an export of them is imported with the
// same result.

#include <cstdint>
#include <iostream>

#include "app/qdb.h"
#include "commands/card_table.h"
#include "commands/session.h"
#include "platform/csv.h"
#include "platform/temporary_folder.h"
#include "require.h"
#include "work/refusal.h"

namespace voxa::fuzz {
namespace {

class Cards {
 public:
  Cards() {
    std::cout.setstate(std::ios::badbit);  // messages about bad lines do not matter here
    std::cerr.setstate(std::ios::badbit);
    installation_.settings.folder = folder_.path();
    installation_.create();
  }

  void check(std::string_view table) {
    const bool imported = import(table);
    const cli::CardTable exported = take();
    require(exported.cards == (imported ? cli::readCsv(table).size() - 1 : 0),
            "a table is imported wholly or not at all");
    require(import(exported.text), "an exported table can be imported");
    require(take().text == exported.text, "cards come back as they were");
  }

 private:
  bool import(std::string_view table) {
    try {
      (void)cli::importCardTable(installation_, table);
      return true;
    } catch (const cli::Refusal&) {
      return false;
    }
  }
  /// Returns the cards and removes them.
  cli::CardTable take() {
    cli::CardTable table = cli::cardTable(installation_, true);
    installation_.qdb().DB()->execute("delete from Cardholders");
    return table;
  }

  TemporaryFolder folder_;
  cli::Installation installation_;
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Cards cards;
  cards.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
