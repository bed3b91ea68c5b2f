// Damaged files of the Jet engine, opened with the real reader program. Nothing worse than an Error may come
// of it, and the file stays as it is.
//
// The first byte says of which file: even Jet 3, odd Jet 4; with the second bit statements are run, too. Then
// damage: an offset of two bytes, a count, and so many bytes to put there. A count of 255 cuts the file off.

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "engines/jet_file/engine.h"
#include "jet/jet_writer.h"
#include "platform/clock.h"
#include "platform/temporary_folder.h"
#include "require.h"

namespace voxa::fuzz {
namespace {

class JetFiles {
 public:
  JetFiles() : sound_{written(3), written(4)} {}

  void check(std::string_view input) {
    if (input.empty()) return;
    const bool later = (input[0] & 1) != 0;
    const bool statements = (input[0] & 2) != 0;
    const std::string bytes = damaged(sound_[later ? 1 : 0], input.substr(1));
    put(file_, bytes);
    try {
      const auto db = engine_->open(file_);
      for (const std::string& table : db->tableNames()) {
        (void)db->tableDef(table);
        (void)errorOf([&] { db->visitRows(table, [](const Value* row) { return row != nullptr; }); });
      }
      (void)db->queries();
      (void)db->relations();
      if (statements) (void)errorOf([&] { (void)db->openRecordset("select * from Doors where Id > 1"); });
    } catch (const Error&) {
      // What damage must raise.
    }
    require(bytesOf(file_) == bytes, "the file stays as it is");
  }

 private:
  [[nodiscard]] std::string written(int version) const {
    using W = jet::JetWriter;
    W writer({.version = version});
    writer.table("Doors",
                 {{"Id", 4, 0, true},
                  {"Open", 1},
                  {"Since", 8},
                  {"Name", 10, 30, false, 0, {{"Required", "yes"}, {"DefaultValue", "\"door\""}}},
                  {"Note", 12},
                  {"Amount", 5},
                  {"Guid", 15},
                  {"Ratio", 16, 0, false, 2}},
                 {{"PrimaryKey", {0}, true}, {"Names", {3}}});
    for (int i = 0; i < 12; ++i) {
      writer.row({W::raw(i), i % 2 == 0 ? W::Cell("") : W::Cell(), W::raw(40000.5 + i),
                  writer.text("Door " + std::to_string(i)),
                  writer.memo(std::string(i % 3 == 2 ? 5000 : 40, 'n'), static_cast<W::Form>(i % 3)),
                  W::raw(std::int64_t{i} * 10'000), std::string(16, 'g'), std::string(17, '\1')},
                 static_cast<W::Kind>(i % 5 == 3 ? i % 2 + 1 : 0));
    }
    writer.relation("Self", "Doors", "Doors", {{"Id", "Id"}}, 0);
    const auto query = writer.object(5, "Open ones");
    writer.queryPart(query, 1, 1);
    writer.queryPart(query, 5, 0, "", "Doors");
    writer.queryPart(query, 6, 0, "Doors.Name", "N");
    writer.queryPart(query, 8, 0, "Doors.Open");
    writer.write(file_);
    return bytesOf(file_);
  }

  [[nodiscard]] static std::string damaged(std::string bytes, std::string_view damage) {
    constexpr std::size_t head = 3;
    constexpr std::size_t cut = 255;
    const auto byte = [&](std::size_t i) {
      return static_cast<std::size_t>(static_cast<std::uint8_t>(damage[i]));
    };
    while (damage.size() > head && !bytes.empty()) {
      const std::size_t at = (byte(0) << 8 | byte(1)) % bytes.size();
      const std::size_t count = byte(2);
      damage.remove_prefix(head);
      if (count == cut) {
        bytes.resize(at);
        continue;
      }
      const std::string_view there = damage.substr(0, std::min(count, bytes.size() - at));
      bytes.replace(at, there.size(), there);
      damage.remove_prefix(there.size());
    }
    return bytes;
  }

  TemporaryFolder folder_;
  std::string file_ = folder_ / "old.mdb";
  SystemClock clock_;
  std::unique_ptr<DatabaseEngine> engine_ =
      makeJetFileEngine(clock_, {.processorSeconds = 5, .silenceMs = 5000});
  std::array<std::string, 2> sound_;
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::JetFiles files;
  files.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
