// Database files that are damaged, or were never made by the engine. They are opened, read and changed.
// Nothing worse than an Error may come of it, and a file that is only read must stay as it was.
//
// An input that begins with an S is SQLite statements, which make the file something else. Any other input is
// damage: an offset of two bytes, a count, and so many bytes to put there. A count of 255 cuts the file off.

#include <sqlite3.h>

#include <memory>

#include "engines/sqlite/fixture.h"
#include "engines/sqlite/functions.h"
#include "require.h"

namespace voxa::fuzz {
namespace {

class Files : public DatabaseTest {
 public:
  Files() {
    createTables();
    db->addField("Stations", {"Phone", DataType::Text, 25, "none"});
    db->createRelation({"Site", "Stations", "Readers", {{"Id", "StationId"}}, true, true});
    db->createQuery({"Active", "PARAMETERS [p] Integer; select * from Stations where Active and Id = [p]"});
    db->execute("insert into Readers (StationId, Position, Name) values (1, 1, 'Front')");
    db->execute("insert into Readers (StationId, Position, Name) values (2, 2, 'Back')");
    const auto rows = db->openRecordset("Readers");
    rows->edit();
    rows->set("Note", std::string(9000, 'n'));  // longer than a page
    rows->update();
    db->close();
    sound_ = bytesOf(file);
  }

  void check(std::string_view input) {
    const bool statements = input.starts_with('S');
    const std::string bytes = statements ? changed(input.substr(1)) : damaged(input);
    put(file, bytes);
    try {
      db = engine->open(file);
    } catch (const Error&) {
      require(bytesOf(file) == bytes, "a file that fails to open is left as it was");
      return;
    }
    look();
    // The header can say that changes are in a log beside the file. The engine makes it a file with a
    // journal, so then the header changes.
    constexpr std::size_t readFormat = 19;
    require(bytes[readFormat] == 2 || bytesOf(file) == bytes, "reading changes nothing");
    change();
    (void)errorOf([&] { db->close(); });
    db.reset();
  }

 private:
  [[nodiscard]] std::string damaged(std::string_view damage) const {
    constexpr std::size_t head = 3;
    constexpr std::size_t cut = 255;
    std::string bytes = sound_;
    const auto byte = [&](std::size_t i) {
      return static_cast<std::size_t>(static_cast<unsigned char>(damage[i]));
    };
    while (damage.size() > head && !bytes.empty()) {
      const std::size_t at = (byte(0) * 256 + byte(1)) % bytes.size();
      const std::size_t count = byte(2);
      damage.remove_prefix(head);
      if (count == cut) {
        bytes.resize(at);
        continue;
      }
      const std::string_view there = damage.substr(0, count);
      bytes.replace(at, there.size(), there);
      damage.remove_prefix(there.size());
    }
    return bytes;
  }

  [[nodiscard]] std::string changed(std::string_view statements) {
    put(file, sound_);
    sqlite3* raw = nullptr;
    require(sqlite3_open(file.c_str(), &raw) == SQLITE_OK, "the sound file opens");
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
    (void)sqlite3_limit(raw, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(
        raw, 10000, [](void*) { return 1; }, nullptr);
    PendingError pending;
    registerFunctions(raw, pending, clock);
    (void)sqlite3_exec(raw, std::string(statements).c_str(), nullptr, nullptr, nullptr);
    if (sqlite3_get_autocommit(raw) == 0) (void)sqlite3_exec(raw, "COMMIT", nullptr, nullptr, nullptr);
    return bytesOf(file);
  }

  void look() {
    (void)errorOf([&] { (void)db->relations(); });
    (void)errorOf([&] { (void)db->queries(); });
    for (const std::string& table : db->tableNames()) {
      (void)errorOf([&] { (void)db->tableDef(table); });
      (void)errorOf([&] {
        for (const auto rows = db->openRecordset(table); !rows->eof(); rows->moveNext()) {
          for (std::size_t i = 0; i < rows->fieldCount(); ++i) (void)errorOf([&] { (void)rows->get(i); });
        }
      });
      (void)errorOf([&] { (void)db->openRecordset("select count(*) from [" + table + "]"); });
    }
    (void)errorOf([&] { (void)db->openRecordset("Active", {{"p", Value(std::int16_t{1})}}); });
    (void)errorOf([&] {
      (void)db->openRecordset("select * from Stations left join Readers on Stations.Id = Readers.StationId");
    });
  }

  void change() {
    (void)errorOf([&] { engine->begin(); });
    (void)errorOf([&] { db->execute("insert into Readers (StationId, Position) values (2, 3)"); });
    (void)errorOf([&] { db->execute("update Stations set Id = 9, Name = 'West' where Id = 1"); });
    for (const std::string& table : db->tableNames()) {
      (void)errorOf([&] {
        const auto rows = db->openRecordset(table);
        rows->edit();
        for (std::size_t i = 0; i < rows->fieldCount(); ++i) rows->set(i, rows->get(i));
        rows->update();
      });
      (void)errorOf([&] { db->execute("delete from [" + table + "]"); });
    }
    (void)errorOf([&] { engine->rollback(); });
  }
  void TestBody() override {}

  std::string sound_;
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Files files;
  files.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
