// Tables of cards, as the command imports them: all or none, and an export of them is imported alike.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/qdb.h"
#include "commands.h"
#include "csv.h"
#include "installation.h"
#include "platform/temporary_folder.h"
#include "refusal.h"
#include "require.h"

namespace voxa::fuzz {
namespace {

class Cards {
 public:
  Cards() {
    std::cout.setstate(std::ios::badbit);  // what the commands tell is of no interest
    std::cerr.setstate(std::ios::badbit);
    installation_.settings.folder = folder_.path();
    installation_.create();
    installation_.leave();
  }

  void check(const std::string& table) {
    put(table_, table);
    const bool imported = run({"import", "cards", table_});
    const auto records = cli::readCsv(table);
    const std::size_t cards = imported ? records.size() - 1 : 0;
    require(count() == cards, "a table is imported wholly or not at all");
    if (!imported) return installation_.leave();
    installation_.leave();
    require(run({"export", "cards", "--show-pins", again_}), "cards can be exported");
    const std::string exported = bytesOf(again_);
    empty();
    require(run({"import", "cards", again_}), "an exported table can be imported");
    installation_.leave();
    require(run({"export", "cards", "--show-pins", again_}), "cards can be exported again");
    require(bytesOf(again_) == exported, "cards come back as they were");
    empty();
  }

 private:
  /// Whether the command did what it was to do; the installation stays open.
  bool run(std::vector<std::string> arguments) {
    CLI::App app;
    cli::addImportCommands(app, installation_);
    std::reverse(arguments.begin(), arguments.end());
    try {
      app.parse(arguments);
      return true;
    } catch (const cli::Refusal&) {
      return false;
    }
  }
  [[nodiscard]] std::size_t count() const {
    return installation_.rows("select Id from Cardholders")->recordCount();
  }
  void empty() {
    installation_.qdb().DB()->execute("delete from Cardholders");
    installation_.leave();
  }

  TemporaryFolder folder_;
  TemporaryFolder files_;
  std::string table_ = files_ / "table.csv";
  std::string again_ = files_ / "again.csv";
  cli::Installation installation_;
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Cards cards;
  cards.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
