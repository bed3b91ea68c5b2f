#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

#include "engines/jet_file/fixture.h"
#include "engines/jet_file/stream.h"

namespace voxa {
namespace {

using W = jet::JetWriter;

struct Versions : JetFileTest, testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Jet, Versions, testing::Values(3, 4));

TEST_P(Versions, RowsAreThoseOfAnIndependentReader) {
  W writer({.version = GetParam()});
  writeAllTypes(writer, 400);
  writer.table("Many pages", {{"Id", 4}, {"Filler", 10, 250}});  // more than one page of the map tells of
  for (int i = 0; i < 8000; ++i) writer.row({W::raw(i), writer.text(std::string(250, 'f'), false)});
  writer.table("select [1] 'two' \"three\" %4", {{"from [a]", 4}, {"order by", 10, 9}});
  writer.row({W::raw(1), writer.text("x")});
  writer.table("Empty", {{"Id", 4}});
  std::vector<W::Column> columns;
  for (int i = 0; i < 250; ++i)
    columns.push_back({"A column with a long name, number " + std::to_string(i), 4});
  writer.table("Wide", columns);
  writer.row(std::vector<W::Cell>(250, W::raw(7)));
  writer.write(file);
  const std::string before = bytesOf(file);
  expectAgreement(file);
  EXPECT_TRUE(before == bytesOf(file));
}

// Files from elsewhere, in a folder that is no part of the sources.
TEST_F(JetFileTest, GivenFilesAreReadAsAnIndependentReaderDoes) {
  const char* const given = std::getenv("VOXA_JET_FILES");
  if (given == nullptr) GTEST_SKIP() << "VOXA_JET_FILES names no folder";
  for (const auto& entry : std::filesystem::directory_iterator(given)) {
    if (entry.path().extension() != ".mdb") continue;
    SCOPED_TRACE(entry.path());
    expectAgreement(entry.path());
    const auto db = engine->open(entry.path().string());
    for (const std::string& table : db->tableNames()) {
      std::int32_t rows = 0;
      db->visitRows(table, [&](const Value* /*row*/) { return ++rows > 0; });
      EXPECT_EQ(db->openRecordset("select count(*) from [" + table + "]")->get(0), Value(rows));
    }
    for (const std::string& note : jetFileNotes(*db))
      EXPECT_EQ(note.find("were found"), std::string::npos) << note;
  }
}

TEST_P(Versions, ValuesAreExact) {
  W writer({.version = GetParam()});
  writer.table("V", {{"Moment", 8},
                     {"Amount", 5},
                     {"Single", 6},
                     {"Text", 10, 20},
                     {"Note", 12},
                     {"Number", 16, 0, false, 4},
                     {"Guid", 15}});
  std::string guid;
  for (int i = 0; i < 16; ++i) guid += static_cast<char>(17 * i);
  const std::string decimal = std::string("\x80") + std::string(8, '\0') + *W::raw(1) + *W::raw(0);  // -2^32
  const bool unicode = GetParam() == 4;
  const std::string wide = unicode ? "a\xF0\x9F\x94\x91\xD0\x96" : "\xE2\x82\xAC\xC3\xA4";
  writer.row({W::raw(-0.75), W::raw(std::int64_t{-1}), W::raw(0.1F), writer.text(wide, false),
              writer.memo(wide, W::Form::manyPages), decimal, guid});
  // Compressed, and within it a piece that is not: "a", U+0416, "b".
  const std::string mixed = unicode ? std::string(
                                          "\xFF\xFE"
                                          "a\0\x16\4\0b",
                                          8)
                                    : "";
  writer.row({W::raw(-657434.0),
              W::raw(std::int64_t{9'007'199'254'740'993}),
              W::raw(3.4e38F),
              mixed,
              writer.memo("", W::Form::inRow),
              {},
              {}});
  writer.row({W::raw(1e300),
              {},
              W::raw(0x7F800000),
              {},
              std::string("\5\0\0\x40\xFF\xFF\xFF\0\0\0\0\0", 12),
              {},
              {}});
  writer.write(file);
  const auto db = engine->open(file);
  std::vector<std::vector<Value>> rows;
  db->visitRows("[v]", [&](const Value* row) { return rows.emplace_back(row, row + 7), true; });
  ASSERT_EQ(rows.size(), 3);
  EXPECT_EQ(rows[0], (std::vector<Value>{DateTime{-0.75}, -0.0001, 0.1, wide, wide, -429496.7296,
                                         "{33221100-5544-7766-8899-AABBCCDDEEFF}"}));
  EXPECT_EQ(rows[1], (std::vector<Value>{DateTime{-657434.0},
                                         900719925474.0993,
                                         toSingle(3.4e38F),
                                         unicode ? "a\xD0\x96"
                                                   "b"
                                                 : "",
                                         "",
                                         {},
                                         {}}));
  EXPECT_EQ(std::count(rows[2].begin(), rows[2].end(), Value()), 7);
  ASSERT_EQ(jetFileNotes(*db).size(), 1);
  EXPECT_EQ(jetFileNotes(*db)[0], "Table 'V' has 3 values that cannot be read; they are Null");
}

TEST_P(Versions, DefinitionsAreThoseOfTheFile) {
  W writer({.version = GetParam()});
  writer.table("Doors",
               {{"Id", 4, 0, true},
                {"Name", 10, 30, false, 0, {{"Required", "yes"}, {"DefaultValue", "=\"say \"\"a\"\"\""}}},
                {"Floor", 3, 0, false, 0, {{"ValidationRule", ">=0 And <=9"}, {"DefaultValue", "-1"}}},
                {"Since", 8, 0, false, 0, {{"DefaultValue", "Date()"}}},
                {"Memo", 12, 0, false, 0, {{"AllowZeroLength", "yes"}, {"Required", "no"}}}},
               {{"Floors", {2, 1}},
                {"PrimaryKey", {0}, true},
                {"Names", {1}, false, true},
                {"R", {3}, false, false, true}},
               0, "[Floor]<[Id]");
  writer.table("Cards", {{"Card", 4}, {"Door", 4}});
  writer.table("MSysMine", {{"Id", 4}}, {}, 0x80000000);
  writer.table("~temporary", {{"Id", 4}});
  writer.relation("DoorCards", "Doors", "Cards", {{"Id", "Door"}}, 0x1100);
  writer.relation("Loose", "Doors", "Cards", {{"Floor", "Card"}}, 2);
  (void)writer.object(6, "Linked", "C:\\other.mdb", "Far");
  (void)writer.object(-32764, "Monthly");
  const auto joined = writer.object(5, "Joined");
  writer.queryPart(joined, 1, 1);
  writer.queryPart(joined, 2, 4, "", "least");
  writer.queryPart(joined, 3, 0x12, "", "5");
  writer.queryPart(joined, 5, 0, "", "Doors");
  writer.queryPart(joined, 5, 0, "", "Cards", "c");
  writer.queryPart(joined, 6, 0, "Doors.Name");
  writer.queryPart(joined, 6, 0, "Count(*)", "How many");
  writer.queryPart(joined, 7, 2, "Doors.Id = c.Door", "Doors", "c");
  writer.queryPart(joined, 8, 0, "Doors.Id >= [least]");
  writer.queryPart(joined, 9, 0, "Doors.Name");
  writer.queryPart(joined, 10, 0, "Count(*) < 9");
  writer.queryPart(joined, 11, 0, "Doors.Name", "D");
  const auto change = writer.object(5, "Change");
  writer.queryPart(change, 1, 4);
  writer.queryPart(change, 5, 0, "", "Doors");
  writer.queryPart(change, 6, 0, "[Floor]+1", "", "Doors.Floor");
  const auto both = writer.object(5, "Both");
  writer.queryPart(both, 1, 9);
  writer.queryPart(both, 3, 2);
  writer.queryPart(both, 5, 0, "SELECT Id FROM Doors;\r\n", "", "X7YZ_____1");
  writer.queryPart(both, 5, 0, "SELECT Card FROM Cards", "", "X7YZ_____2");
  const auto fill = writer.object(5, "Fill");
  writer.queryPart(fill, 1, 3, "", "Cards");
  writer.queryPart(fill, 5, 0, "", "Doors");
  writer.queryPart(fill, 6, 0, "Doors.Id", "", "Door");
  writer.queryPart(writer.object(5, "Cross"), 1, 6);
  writer.write(file);
  const auto db = engine->open(file);

  EXPECT_EQ(db->tableNames(), (std::vector<std::string>{"Doors", "Cards"}));
  const TableDef expected{"Doors",
                          {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
                           {"Name", DataType::Text, 30, "say \"a\"", true},
                           {.name = "Floor",
                            .type = DataType::Integer,
                            .defaultValue = std::int16_t{-1},
                            .validationRule = ">=0 And <=9"},
                           {"Since", DataType::Date},
                           {.name = "Memo", .type = DataType::Memo, .allowZeroLength = true}},
                          {{"Floors", {"Floor", "Name"}},
                           {"PrimaryKey", {"Id"}, true, true, true},
                           {"Names", {"Name"}, false, true},
                           {"R", {"Since"}, false, false, true}}};
  EXPECT_EQ(db->tableDef("DOORS"), expected);
  EXPECT_EQ(db->relations(),
            (std::vector<Relation>{{"DoorCards", "Doors", "Cards", {{"Id", "Door"}}, true, true}}));
  std::string queries;
  for (const QueryDef& query : db->queries()) queries += query.name + ": " + query.sql + '\n';
  EXPECT_EQ(
      queries,
      "Joined: PARAMETERS [least] Long; SELECT DISTINCT TOP 5 Doors.Name, Count(*) AS [How many] FROM "
      "[Doors] "
      "LEFT JOIN [Cards] AS [c] ON Doors.Id = c.Door WHERE Doors.Id >= [least] GROUP BY Doors.Name HAVING "
      "Count(*) < 9 ORDER BY Doors.Name DESC\n"
      "Change: UPDATE [Doors] SET [Doors].[Floor] = [Floor]+1\n"
      "Both: SELECT Id FROM Doors UNION SELECT Card FROM Cards\n"
      "Fill: INSERT INTO [Cards] ([Door]) SELECT Doors.Id FROM [Doors]\n");
  EXPECT_EQ(db->openRecordset("Joined", {{"least", Value(std::int32_t{1})}})->recordCount(), 0);
  EXPECT_EQ(db->describe("Change").kind, QueryInfo::Kind::update);
  std::string notes;
  for (const std::string& note : jetFileNotes(*db)) notes += note + '\n';
  for (const char* part : {"'Linked' is not taken over: it is a link to table 'Far' of C:\\other.mdb",
                           "Report 'Monthly'", "'Since' of table 'Doors' is not taken over: Date()",
                           "'Loose'", "[Floor]<[Id]", "'Cross' is not taken over: it is a crosstab"})
    EXPECT_NE(notes.find(part), std::string::npos) << part << " in\n" << notes;
}

TEST_F(JetFileTest, StatementsRunOnACopyThatLosesNothing) {
  const std::string temporary = std::filesystem::temp_directory_path();
  ASSERT_EQ(::setenv("TMPDIR", folder.path().c_str(), 1), 0);
  W writer({});
  writer.table("T", {{"Id", 4, 0, true}, {"Name", 10, 20, false, 0, {{"Required", "yes"}}}, {"Amount", 5}},
               {{"PrimaryKey", {0}, true}, {"Name", {1}, false, true}});
  const auto most = W::raw(std::int64_t{9'223'372'036'854'775'807});
  for (const int id : {1, 2, 2}) writer.row({W::raw(id), id == 1 ? W::Cell() : writer.text("twice"), most});
  writeAllTypes(writer, 50);
  writer.write(file);
  const auto copies = [&] {
    return std::count_if(std::filesystem::directory_iterator(folder.path()), {},
                         [](const auto& entry) { return entry.is_directory(); });
  };
  auto db = engine->open(file);
  EXPECT_FALSE(db->updatable());
  EXPECT_EQ(db->openRecordset("select count(*) from T where Amount > 922337203685477")->get(0), Value(3));
  EXPECT_EQ(copies(), 1);
  const auto rows = db->openRecordset("T", {}, {RecordsetKind::table});
  rows->setIndex("Name");
  EXPECT_TRUE(rows->seek(SeekComparison::equal, {"TWICE"}));
  EXPECT_TRUE(db->tableDef("T").index("Name")->unique);
  EXPECT_EQ(errorOf([&] { rows->edit(); }), err::dbNotUpdatable);
  EXPECT_EQ(engine->errors().front().number, err::dbNotUpdatable);
  EXPECT_EQ(errorOf([&] { (void)db->openRecordset("select nothing from nowhere"); }), err::dbUnknownTable);
  std::size_t seen = 0;
  db->visitRows("select T.Id from T, [All types]", [&](const Value* /*row*/) { return ++seen < 10; });
  EXPECT_EQ(seen, 10);
  EXPECT_EQ(db->openRecordset("All types")->field(9).size,
            100);  // a table without a fault keeps its definition

  for (const int number :
       {errorOf([&] { db->execute("delete from T"); }), errorOf([&] { (void)db->prepare("delete from T"); }),
        errorOf([&] { db->deleteTable("T"); }), errorOf([&] { (void)engine->create(folder / "n.mdb"); })}) {
    EXPECT_EQ(number, err::dbNotUpdatable);
    EXPECT_EQ(engine->errors().front().number, err::dbNotUpdatable);
  }
  db->copyTo(folder / "same.mdb");
  EXPECT_TRUE(bytesOf(folder / "same.mdb") == bytesOf(file));
  EXPECT_EQ(errorOf([&] { db->copyTo(folder / "same.mdb"); }), err::dbFileExists);
  db->close();
  EXPECT_EQ(copies(), 0);
  ASSERT_EQ(::setenv("TMPDIR", temporary.c_str(), 1), 0);
  EXPECT_EQ(errorOf([&] { rows->requery(); }), err::dbInvalidObject);
  EXPECT_EQ(errorOf([&] { (void)db->tableNames(); }), err::dbInvalidObject);

  db = engine->open(file);
  put(file, bytesOf(file) + "more");
  EXPECT_EQ(errorOf([&] { db->visitRows("T", [](const Value* /*row*/) { return true; }); }), err::dbLocked);
  EXPECT_EQ(errorOf([&] { (void)db->openRecordset("T"); }), err::dbLocked);
}

TEST_P(Versions, OtherFilesAreRefusedAndLeftAlone) {
  const auto openError = [&](const std::string& bytes) {
    put(file, bytes);
    const int number = errorOf([&] {
      const auto db = engine->open(file);
      for (const std::string& table : db->tableNames())
        db->visitRows(table, [](const Value* /*row*/) { return true; });
    });
    EXPECT_TRUE(bytesOf(file) == bytes);
    if (number != 0) {
      EXPECT_EQ(engine->errors().front().number, number);
    }
    return number;
  };
  const auto written = [&](const W::Options& options) {
    W writer(options);
    writeAllTypes(writer, 60);
    writer.write(file);
    return bytesOf(file);
  };
  const std::string sound = written({.version = GetParam()});
  EXPECT_EQ(openError(sound), 0);
  EXPECT_EQ(openError(written({.version = GetParam(), .password = "secret"})), err::dbPassword);
  EXPECT_EQ(openError(written({.version = GetParam(), .key = 0x12345678})), err::dbPassword);
  for (const std::size_t part : {2, 3, 5, 9})
    EXPECT_EQ(openError(sound.substr(0, sound.size() / part)), err::dbNotADatabase) << part;
  for (const std::string& other :
       {std::string(), std::string("SQLite format 3"), std::string(5000, 'x'), sound.substr(0, 30)})
    EXPECT_EQ(openError(other), err::dbNotADatabase) << other.size();
  EXPECT_EQ(errorOf([&] { (void)engine->open(folder / "missing"); }), err::dbFileNotFound);
  EXPECT_EQ(errorOf([&] { (void)engine->open(folder.path()); }), err::dbCannotOpen);
}

TEST_F(JetFileTest, AReaderThatFailsIsToldAndGone) {
  W writer({});
  writeAllTypes(writer, 2000);
  writer.write(file);
  const std::string reader =
      std::filesystem::read_symlink("/proc/self/exe").parent_path() / "voxa-jet-reader";
  const auto failure = [&](const std::string& script, int silenceMs) {
    const std::string path = folder / "reader";
    put(path, "#!/bin/sh\n" + script + '\n');
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const auto other = makeJetFileEngine(clock, {.reader = path, .silenceMs = silenceMs});
    std::size_t rows = 0;
    try {
      const auto db = other->open(file);
      db->visitRows("All types", [&](const Value* /*row*/) { return ++rows > 0; });
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), err::dbNotADatabase);
      return error.description().substr(file.size());
    }
    return std::string("nothing failed");
  };
  const std::string work = "'" + reader + "' \"$@\"";
  const std::string onRows = "if [ \"$4\" = catalogue ]; then exec '" + reader + "' \"$@\"; fi; ";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"kill -9 $$", "signal 9"},
      {"exit 3", "code 3"},
      {"exec sleep 100", "sent nothing"},
      {"echo garbage", "makes no sense"},
      {onRows + work + " | head -c 100000; kill -9 $$", "signal 9"},
      {onRows + work + " | head -c 100000", "ended amid table 'All types'"},
      {onRows + work + " | head -c 100000; exec sleep 100", "sent nothing"},
      {onRows + work + "; echo more", "nothing failed"}};
  for (const auto& [script, told] : cases) {
    const std::string sentence = failure(script, told == "sent nothing" ? 300 : 60'000);
    EXPECT_NE(sentence.find(told), std::string::npos) << script << ": " << sentence;
  }

  EXPECT_EQ(errorOf([&] { (void)makeJetFileEngine(clock, {.reader = folder / "none"})->open(file); }),
            err::dbCannotOpen);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
  EXPECT_EQ(errorOf([&] { (void)makeJetFileEngine(clock, {.memoryBytes = 1})->open(file); }),
            err::dbNotADatabase);
#endif
  const auto db = engine->open(file);
  std::size_t rows = 0;
  db->visitRows("All types", [&](const Value* /*row*/) { return ++rows < 3; });
  EXPECT_EQ(rows, 3);
  EXPECT_THROW(
      db->visitRows("All types", [](const Value* /*row*/) -> bool { throw std::runtime_error("enough"); }),
      std::runtime_error);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);  // no child is left
}

TEST_F(JetFileTest, ABrokenStreamIsAnError) {
  W writer({.version = 3});
  writeAllTypes(writer, 3);
  writer.write(file);
  const std::string reader =
      std::filesystem::read_symlink("/proc/self/exe").parent_path() / "voxa-jet-reader";
  const std::string sent =
      printed(shellQuoted(reader) + " 536870912 60 " + shellQuoted(file) + " rows 'All types'");
  const auto read = [](std::string_view bytes) {
    jet::Stream stream(
        [&](char* to, std::size_t room) { return bytes.copy(to, room), std::exchange(bytes, {}).size(); },
        "f");
    while (stream.next() != jet::Frame::end) continue;
  };
  ASSERT_EQ(errorOf([&] { read(sent); }), 0);
  ASSERT_LT(sent.size(), 100'000);
  for (std::size_t i = 0; i < sent.size(); i += i < 700 ? 1 : 97) {
    EXPECT_EQ(errorOf([&] { read(std::string_view(sent).substr(0, i)); }), err::dbNotADatabase) << i;
    for (const int bits : {0x01, 0x80, 0xFF}) {
      std::string broken = sent;
      broken[i] = static_cast<char>(broken[i] ^ bits);
      const int number = errorOf([&] { read(broken); });
      EXPECT_TRUE(number == 0 || number == err::dbNotADatabase || number == err::dbPassword) << number;
    }
  }
}

}  // namespace
}  // namespace voxa
