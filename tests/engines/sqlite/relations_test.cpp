#include "engines/sqlite/fixture.h"

namespace voxa {
namespace {

class Relations : public DatabaseTest {
 protected:
  void SetUp() override { createTables(); }
  const Relation site{"ReaderStation", "stations", "readers", {{"ID", "stationid"}}};
};

TEST_F(Relations, WithoutCascadeBothSidesAreHeld) {
  db->createRelation(site);
  for (const bool again : {false, true}) {
    if (again) reopen();
    EXPECT_EQ(db->relations(),
              (std::vector<Relation>{{"ReaderStation", "Stations", "Readers", {{"Id", "StationId"}}}}));
    EXPECT_EQ(db->tableDef("Readers").indexes.size(), 2U);
  }
  db->execute("insert into Readers (Name, StationId) values ('a', 1)");
  db->execute("insert into Readers (Name) values ('nowhere')");
  EXPECT_EQ(executeFailure("delete from Stations where Id = 1"), err::dbRelatedExists);
  EXPECT_NE(lastDescription.find("'Readers'"), std::string::npos) << lastDescription;
  EXPECT_EQ(executeFailure("update Stations set Id = 3 where Id = 1"), err::dbRelatedExists);
  EXPECT_EQ(executeFailure("insert into Readers (Name, StationId) values ('b', 9)"), err::dbRelatedMissing);
  EXPECT_NE(lastDescription.find("'Stations'"), std::string::npos) << lastDescription;
  EXPECT_EQ(executeFailure("update Readers set StationId = 9 where Name = 'a'"), err::dbRelatedMissing);
  EXPECT_EQ(db->execute("delete from Stations where Id = 2"), 1);
  EXPECT_EQ(failure([&] { db->deleteTable("Stations"); }), err::dbInUse);
  db->addField("Readers", {.name = "Level", .type = DataType::Integer, .defaultValue = 4});
  EXPECT_EQ(valueOf("select Level from Readers where Name = 'a'"), Value(std::int16_t{4}));
  EXPECT_EQ(executeFailure("delete from Stations where Id = 1"), err::dbRelatedExists);
}

TEST_F(Relations, CascadesReachTheForeignRows) {
  Relation cascading = site;
  cascading.cascadeDelete = cascading.cascadeUpdate = true;
  db->createRelation(cascading);
  db->execute("insert into Readers (Name, StationId) values ('a', 1)");
  db->execute("insert into Readers (Name, StationId) values ('b', 2)");
  EXPECT_EQ(db->execute("update Stations set Id = 7 where Id = 1"), 1);
  EXPECT_EQ(countOf("Readers where StationId = 7"), 1);
  db->execute("delete from Stations where Id = 7");
  EXPECT_EQ(countOf("Readers"), 1);
}

TEST_F(Relations, SeveralFieldsAreMadeInOneTransactionWithTheirTables) {
  engine->begin();
  TableDef programs{"Programs",
                    {{"Kind", DataType::Text, 1}, {"Num", DataType::Integer}},
                    {{"Id", {"Kind", "Num"}, true, true, true}}};
  TableDef links{"Links", {{"Num", DataType::Integer}, {"Kind", DataType::Text, 1}}, {}};
  db->createTable(programs);
  db->createTable(links);
  db->createRelation({"LinkProgram", "Programs", "Links", {{"Kind", "Kind"}, {"Num", "Num"}}});
  db->execute("insert into Programs (Kind, Num) values ('C', 1)");
  db->execute("insert into Links (Kind, Num) values ('c', 1)");
  EXPECT_EQ(executeFailure("insert into Links (Kind, Num) values ('E', 1)"), err::dbRelatedMissing);
  engine->commit();
  reopen();
  EXPECT_EQ(executeFailure("delete from Programs"), err::dbRelatedExists);
  EXPECT_EQ(db->relations().at(0).fields.size(), 2U);

  engine->begin();
  db->createRelation(site);
  db->createQuery({"Gone", "select * from Stations"});
  EXPECT_EQ(db->openRecordset("Gone")->recordCount(), 2U);
  engine->rollback();
  EXPECT_EQ(db->relations().size(), 1U);
  EXPECT_NE(failure([&] { (void)db->openRecordset("Gone"); }), 0);
  EXPECT_EQ(db->execute("insert into Readers (Name, StationId) values ('a', 99)"), 1);
}

TEST_F(Relations, ThoseThatFollowEachOtherInATransactionAllHold) {
  const Relation name{"ReaderName", "Stations", "Readers", {{"Name", "Name"}}};
  engine->begin();
  db->createTable({"Links", {{"Site", DataType::Integer}}, {}});
  db->createRelation({"LinkSite", "Stations", "Links", {{"Id", "Site"}}});
  db->createRelation(site);
  EXPECT_EQ(failure([&] { db->createRelation(site); }), err::dbObjectExists);
  db->createRelation(name);
  const std::vector<Relation> made = db->relations();
  EXPECT_EQ(executeFailure("insert into Readers (Name, StationId) values ('North', 9)"),
            err::dbRelatedMissing);
  EXPECT_EQ(executeFailure("insert into Readers (Name, StationId) values ('East', 1)"),
            err::dbRelatedMissing);
  EXPECT_EQ(executeFailure("insert into Links (Site) values (9)"), err::dbRelatedMissing);
  engine->commit();

  // A transaction that only makes relations. Its commit is what makes SQLite, and another user, read them.
  const auto secondEngine = makeSqliteEngine(clock);
  const auto other = secondEngine->open(file);
  EXPECT_EQ(other->relations(), made);
  engine->begin();
  db->createRelation({"ReaderTwice", "Stations", "Readers", {{"Name", "Name"}}});
  engine->commit();
  EXPECT_EQ(other->relations().size(), 4U);
  EXPECT_EQ(other->relations(), db->relations());
  db->execute("insert into Readers (Name, StationId) values ('North', 1)");
  EXPECT_EQ(executeFailure("update Readers set Name = 'East'"), err::dbRelatedMissing);
}

TEST_F(Relations, BadOnesAreRefused) {
  db->execute("insert into Readers (Name, StationId) values ('stray', 9)");
  const auto refused = [&](auto change) {
    Relation relation = site;
    change(relation);
    return failure([&] { db->createRelation(relation); });
  };
  EXPECT_EQ(refused([](Relation&) {}), err::dbRelatedMissing);
  db->execute("delete from Readers");
  EXPECT_EQ(refused([](Relation& r) { r.table = "None"; }), err::dbUnknownTable);
  EXPECT_EQ(refused([](Relation& r) { r.fields[0].second = "None"; }), err::dbNotInCollection);
  EXPECT_EQ(refused([](Relation& r) { r.fields[0].first = "Active"; }), err::dbNoUniqueIndex);
  EXPECT_EQ(refused([](Relation& r) { r.fields.clear(); }), err::dbInvalidArgument);
  EXPECT_EQ(refused([](Relation&) {}), 0);
  EXPECT_EQ(refused([](Relation& r) { r.name = "READERSTATION"; }), err::dbObjectExists);
  EXPECT_EQ(db->relations().size(), 1U);
}

}  // namespace
}  // namespace voxa
