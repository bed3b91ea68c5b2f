#include <functional>
#include <initializer_list>

#include "engines/sqlite/fixture.h"

namespace voxa {
namespace {

class Rows : public DatabaseTest {
 protected:
  void SetUp() override { createTables(); }

  void addReaders(int count) {
    Transaction transaction(*engine);
    for (int i = 1; i <= count; ++i) {
      db->execute("insert into Readers (Id, Name, StationId) values (" + std::to_string(i) + ", 'r" +
                  std::to_string(i) + "', 1)");
    }
    transaction.commit();
  }

  static void change(Recordset& rows, const char* field, const Value& value) {
    rows.edit();
    rows.set(field, value);
    rows.update();
  }
};

TEST_F(Rows, MoveOverAllAndStopAtTheEnds) {
  const auto none = db->openRecordset("select * from Readers");
  none->moveFirst();
  none->moveLast();
  EXPECT_TRUE(none->eof() && none->bof());
  EXPECT_EQ(failure([&] { none->moveNext(); }), err::dbNoCurrentRecord);
  EXPECT_EQ(failure([&] { (void)none->get("Name"); }), err::dbNoCurrentRecord);

  const auto rows = db->openRecordset("select Name, Id from Stations order by Id");
  EXPECT_EQ(rows->recordCount(), 2U);
  EXPECT_EQ(rows->fieldIndex("ID"), 1U);
  EXPECT_EQ(rows->field(0).size, 10);
  EXPECT_EQ(failure([&] { (void)rows->get("Nothing"); }), err::dbNotInCollection);
  rows->moveNext();
  EXPECT_EQ(rows->get("name"), Value("South"));
  rows->moveNext();
  EXPECT_TRUE(rows->eof() && !rows->bof());
  EXPECT_EQ(failure([&] { rows->moveNext(); }), err::dbNoCurrentRecord);
  rows->moveFirst();
  rows->movePrevious();
  EXPECT_TRUE(rows->bof() && !rows->eof());
  EXPECT_EQ(failure([&] { rows->movePrevious(); }), err::dbNoCurrentRecord);
}

TEST_F(Rows, EditsAreStoredAndSeen) {
  const auto rows = db->openRecordset("select * from Stations where Id = 1");
  EXPECT_EQ(failure([&] { rows->set("Name", "x"); }), err::dbUpdateWithoutEdit);
  EXPECT_EQ(failure([&] { rows->update(); }), err::dbUpdateWithoutEdit);
  rows->edit();
  rows->set("name", "Élan");
  rows->set("Since", "13/02/2001 04:05");
  rows->set("Active", Value());
  EXPECT_EQ(rows->get("Name"), Value("Élan"));
  EXPECT_EQ(failure([&] { rows->set("Name", "eleven char"); }), err::dbTextTooLong);
  EXPECT_EQ(failure([&] { rows->set("Id", 40000); }), err::overflow);
  EXPECT_EQ(failure([&] { rows->set("Since", "soon"); }), err::dbConversion);
  rows->update();
  EXPECT_EQ(rows->editMode(), EditMode::none);
  EXPECT_EQ(rows->get("Active"), Value(false));
  EXPECT_EQ(countOf("Stations where Name = 'éLAN' and Since = #2/13/2001 4:05# and not Active"), 1);

  EXPECT_EQ(failure([&] { change(*rows, "Name", "South"); }), err::dbDuplicate);
  EXPECT_EQ(rows->editMode(), EditMode::edit);
  rows->set("Name", "West");
  rows->update();
  for (const bool byMove : {false, true}) {
    rows->edit();
    rows->set("Name", "lost");
    byMove ? rows->moveFirst() : rows->cancelUpdate();
    EXPECT_EQ(rows->editMode(), EditMode::none);
    EXPECT_EQ(rows->get("Name"), Value("West"));
  }
  EXPECT_EQ(valueOf("select Name from Stations where Id = 1"), Value("West"));
}

TEST_F(Rows, AddedRowsComeLastAndTheCurrentRowStays) {
  const auto rows = db->openRecordset("Readers");
  for (const char* name : {"first", "second"}) {
    rows->addNew();
    EXPECT_EQ(rows->get("Position"), Value(std::uint8_t{1}));
    EXPECT_TRUE(rows->get("Name").isNull());
    rows->set("Name", name);
    rows->update();
    EXPECT_TRUE(rows->eof());
  }
  EXPECT_EQ(rows->recordCount(), 2U);
  rows->moveFirst();
  EXPECT_EQ(rows->get("Id"), Value(1));
  rows->addNew();
  EXPECT_EQ(failure([&] { rows->update(); }), err::dbRequired);
  rows->set("Name", "third");
  rows->set("Id", 9);
  rows->update();
  EXPECT_EQ(rows->get("Name"), Value("first"));
  rows->moveLast();
  EXPECT_EQ(rows->get("Id"), Value(9));
  EXPECT_EQ(rows->get("Position"), Value(std::uint8_t{1}));
}

TEST_F(Rows, DeletedRowsAreSkippedOnceLeft) {
  addReaders(4);
  const auto rows = db->openRecordset("select * from Readers order by Id");
  rows->moveNext();
  rows->remove();
  EXPECT_EQ(failure([&] { (void)rows->get("Id"); }), err::dbRecordDeleted);
  EXPECT_EQ(failure([&] { rows->edit(); }), err::dbRecordDeleted);
  EXPECT_EQ(rows->recordCount(), 3U);
  rows->moveNext();
  EXPECT_EQ(rows->get("Id"), Value(3));
  rows->movePrevious();
  EXPECT_EQ(rows->get("Id"), Value(1));
  // A statement deletes the row meanwhile. A visit to the row finds that out.
  db->execute("delete * from Readers where Id = 3");
  rows->moveNext();
  EXPECT_EQ(failure([&] { (void)rows->get("Id"); }), err::dbRecordDeleted);
  EXPECT_EQ(failure([&] { change(*rows, "Note", "x"); }), err::dbRecordDeleted);
  rows->moveLast();
  EXPECT_EQ(rows->get("Id"), Value(4));
  for (rows->moveFirst(); !rows->eof(); rows->moveNext()) {
    (void)errorOf([&] { rows->remove(); });  // one was deleted before
  }
  EXPECT_EQ(countOf("Readers"), 0);
}

TEST_F(Rows, AreFoundByAConditionInTheirOwnOrder) {
  addReaders(4);
  const auto rows = db->openRecordset("select Id, Name from Readers order by Id desc");
  EXPECT_TRUE(rows->findFirst("Id < 4"));
  EXPECT_EQ(rows->get("Id"), Value(3));
  EXPECT_TRUE(rows->findNext("Id in (1, 3)"));
  EXPECT_FALSE(rows->findNext("Id > 0"));
  EXPECT_EQ(rows->get("Id"), Value(1)) << "the current row stays";
  EXPECT_TRUE(rows->findFirst("Id = 2"));
  rows->remove();
  EXPECT_FALSE(rows->findFirst("Id = 2"));
  EXPECT_EQ(failure([&] { (void)rows->findFirst("Name = 'O'Brien'"); }), err::dbSyntax);
}

TEST_F(Rows, AreFoundByWhatTheyShow) {
  addReaders(4);
  const auto joined = db->openRecordset(
      "select r.Id, s.Id, s.Name & r.Id as Place from Readers r, Stations s where r.StationId = s.Id order "
      "by "
      "r.Id");
  EXPECT_TRUE(joined->findLast("Place like 'north*' and s.Id = 1 and [r.Id] < 4"));
  EXPECT_EQ(joined->get("r.Id"), Value(3));
  EXPECT_TRUE(joined->findPrevious("r.Id in (select Max(Id) - 2 from Readers)"));
  EXPECT_FALSE(joined->findPrevious("r.Id = 2"));
  EXPECT_EQ(joined->get("Place"), Value("North2")) << "the current row stays";
  EXPECT_EQ(failure([&] { (void)joined->findFirst("Nam = 'x'"); }), err::dbTooFewParameters);
  // A name of the result goes before one of the table, which may be used, too.
  const auto renamed = db->openRecordset("select Id as Position, Id + 1 as [Next] from Readers");
  EXPECT_TRUE(renamed->findFirst("Position = 3 and [Next] = 4"));
  EXPECT_TRUE(renamed->findFirst("Name = 'r2'"));
  EXPECT_EQ(renamed->get(0), Value(2));
}

TEST_F(Rows, OfEachKindHaveItsRules) {
  addReaders(3);
  using enum RecordsetKind;
  const std::string query = "select Id, Name from Readers order by Id";
  const std::string counts = "select Position, Count(*) from Readers group by Position";
  const struct {
    std::string source;
    RecordsetKind asked, kind;
  } cases[] = {{"[readers]", automatic, table}, {query, automatic, dynaset},
               {counts, automatic, snapshot},   {"Readers", table, table},
               {"Readers", dynaset, dynaset},   {counts, dynaset, dynaset},
               {query, snapshot, snapshot},     {query, forwardOnly, forwardOnly}};
  for (const auto& [source, asked, kind] : cases) {
    const auto rows = db->openRecordset(source, {}, {asked});
    EXPECT_EQ(rows->kind(), kind) << source;
    EXPECT_EQ(rows->name(), source);
    const bool refused = asked == snapshot || asked == forwardOnly;
    EXPECT_EQ(rows->updatable(), !refused && source != counts);
    EXPECT_EQ(failure([&] { change(*rows, "Name", "r1"); }), refused            ? err::dbNotSupported
                                                             : source == counts ? err::dbNotUpdatable
                                                                                : 0);
    EXPECT_EQ(failure([&] { rows->setIndex("Id"); }), kind == table ? 0 : err::dbNotSupported);
  }
  EXPECT_EQ(failure([&] { (void)db->openRecordset(query, {}, {table}); }), err::dbInvalidOperation);
  const auto fixed = db->openRecordset(query, {}, {dynaset, true});
  EXPECT_EQ(failure([&] { fixed->remove(); }), err::dbNotUpdatable);

  const auto kept = db->openRecordset(query, {}, {snapshot});
  const auto once = db->openRecordset(query, {}, {forwardOnly});
  db->execute("delete from Readers where Id = 2");
  kept->move(1);
  EXPECT_EQ(kept->get("Name"), Value("r2"));
  kept->requery();
  EXPECT_EQ(kept->recordCount(), 2U);
  EXPECT_FALSE(locked());

  once->moveFirst();
  once->moveNext();
  EXPECT_EQ(once->get("Name"), Value("r2"));
  EXPECT_EQ(once->recordCount(), 2U) << "so many were visited";
  for (const auto& refused : std::initializer_list<std::function<void()>>{
           [&] { once->moveFirst(); }, [&] { once->moveLast(); }, [&] { once->movePrevious(); },
           [&] { once->move(-1); }, [&] { (void)once->bookmark(); }, [&] { once->goTo(0); },
           [&] { (void)once->absolutePosition(); }, [&] { once->setAbsolutePosition(0); },
           [&] { once->findNext("Id > 0"); }, [&] { (void)once->clone(); },
           [&] { (void)once->openFrom("", ""); }}) {
    EXPECT_EQ(failure(refused), err::dbNotSupported);
  }
  EXPECT_EQ(getRows(*once, 9).at(1), (std::vector<Value>{"r2", "r3"}));
  EXPECT_EQ(failure([&] { (void)getRows(*once, 1); }), err::dbNoCurrentRecord);
}

TEST_F(Rows, HavePlacesThatTheirClonesShare) {
  addReaders(600);
  const auto rows = db->openRecordset("select Id, Name from Readers order by Id desc");
  EXPECT_EQ(failure([&] { (void)rows->lastModified(); }), err::dbNoCurrentRecord);
  rows->move(400);
  const Bookmark place = rows->bookmark();
  const auto twin = rows->clone();
  EXPECT_EQ(twin->get("Id"), Value(600));
  twin->remove();
  twin->goTo(place);
  change(*twin, "Name", "by the twin");
  EXPECT_EQ(twin->lastModified(), place);
  EXPECT_EQ(rows->get("Name"), Value("by the twin"));
  EXPECT_EQ(rows->absolutePosition(), 399) << "the deleted row does not count";
  rows->setAbsolutePosition(1);
  EXPECT_EQ(rows->get("Id"), Value(598));
  rows->move(-9);
  EXPECT_TRUE(rows->bof());
  EXPECT_EQ(failure([&] { rows->move(-1); }), err::dbNoCurrentRecord);
  rows->move(9);
  EXPECT_EQ(rows->get("Id"), Value(591));
  EXPECT_EQ(failure([&] { rows->goTo(0); }), err::dbRecordDeleted);
  EXPECT_EQ(failure([&] { rows->goTo(600); }), err::dbNotABookmark);
  EXPECT_EQ(failure([&] { rows->setAbsolutePosition(599); }), err::dbInvalidArgument);
  rows->move(1000);
  EXPECT_TRUE(rows->eof());
  EXPECT_EQ(rows->absolutePosition(), -1);
  twin->addNew();
  twin->set("Name", "last");
  twin->update();
  EXPECT_TRUE(rows->eof()) << "a row that the twin adds is behind";
  rows->movePrevious();
  EXPECT_EQ(rows->get("Name"), Value("last"));
  EXPECT_EQ(rows->bookmark(), twin->lastModified());
  rows->requery();
  EXPECT_EQ(rows->get("Name"), Value("last"));
  EXPECT_EQ(rows->recordCount(), 600U);
}

TEST_F(Rows, AreNarrowedAndSorted) {
  addReaders(9);
  const auto ids = [](Recordset& rows) {
    std::string all;
    for (rows.moveFirst(); !rows.eof(); rows.moveNext()) all += rows.get(0).toText();
    return all;
  };
  const auto few = db->openRecordset("select Id, Name from Readers where Id <> 4 order by Id desc");
  const auto odd = few->openFrom("Id mod 2 = 0 or Id = 9", "");
  EXPECT_EQ(ids(*odd), "9862");
  const auto sorted = odd->openFrom("Note is null", "Id mod 3, Name", {RecordsetKind::snapshot});
  EXPECT_EQ(ids(*sorted), "6928");
  EXPECT_EQ(ids(*sorted->openFrom("", "Name desc")), "9862");
  EXPECT_EQ(failure([&] { (void)sorted->openFrom("", "", {RecordsetKind::dynaset}); }),
            err::dbInvalidOperation);
  db->execute("update Readers set Id = 40 where Id = 2");
  sorted->requery();
  EXPECT_EQ(ids(*sorted), "69408");
}

TEST_F(Rows, OfATableAreSoughtByItsIndexes) {
  addReaders(5);
  db->execute("update Readers set StationId = 2 where Id > 3");
  db->execute("update Readers set StationId = Null where Id = 3");
  const auto rows = db->openRecordset("Readers");
  using enum SeekComparison;
  EXPECT_EQ(failure([&] { (void)rows->seek(equal, {1}); }), err::dbNoCurrentIndex);
  EXPECT_EQ(failure([&] { rows->setIndex("None"); }), err::dbNoSuchIndex);
  rows->setIndex("site");
  EXPECT_EQ(rows->index(), "Site");
  EXPECT_EQ(rows->get("Id"), Value(3)) << "Null comes first";
  const struct {
    SeekComparison comparison;
    Value key;
    int id;  ///< 0: not found
  } cases[] = {{equal, "2", 4},        {equal, Value(), 3}, {equal, 3, 0},       {greater, 1, 4},
               {greaterOrEqual, 1, 1}, {less, 2, 2},        {lessOrEqual, 2, 5}, {less, 1, 0}};
  for (const auto& [comparison, key, id] : cases) {
    const Value before = rows->get("Id");
    EXPECT_EQ(rows->seek(comparison, {key}), id != 0);
    EXPECT_EQ(rows->get("Id"), id != 0 ? Value(id) : before);
  }
  EXPECT_EQ(failure([&] { (void)rows->seek(less, {Value()}); }), err::dbInvalidArgument);
  EXPECT_EQ(failure([&] { (void)rows->seek(equal, {1, 2}); }), err::dbInvalidArgument);
  db->execute("insert into Readers (StationId, Name) values (9, 'later')");
  EXPECT_TRUE(rows->seek(greater, {2}));
  EXPECT_EQ(rows->get("Name"), Value("later"));
  rows->setIndex("");
  EXPECT_EQ(rows->get("Id"), Value(1));
}

TEST_F(Rows, ManyAreFetchedAsTheyAreVisited) {
  addReaders(1000);
  const auto rows = db->openRecordset("select * from Readers order by Id desc");
  ASSERT_EQ(rows->recordCount(), 1000U);
  // Behind the first rows another user deletes a row and changes another one.
  EXPECT_EQ(inOtherProcess([](Database& other) {
              other.execute("delete from Readers where Id = 300");
              other.execute("update Readers set [Note] = 'new' where Id = 200");
            }),
            0);
  Transaction transaction(*engine);
  int expected = 1000;
  for (; !rows->eof(); rows->moveNext(), --expected) {
    if (expected == 300) {
      EXPECT_EQ(failure([&] { (void)rows->get("Id"); }), err::dbRecordDeleted);
      continue;
    }
    ASSERT_EQ(rows->get("Id"), Value(expected));
    ASSERT_EQ(rows->get("Note"), expected == 200 ? Value("new") : Value());
    change(*rows, "Position", expected % 7);
    ASSERT_EQ(rows->get("Position"), Value(static_cast<std::uint8_t>(expected % 7)));
  }
  EXPECT_EQ(expected, 0);
  EXPECT_EQ(countOf("Readers where Position = 3"), 143);
  for (rows->moveLast(); ++expected < 300; rows->movePrevious()) {
    ASSERT_EQ(rows->get("Name"), Value("r" + std::to_string(expected)));
  }
  // The fields are not those of one table, so the result is read whole at once.
  const auto joined = db->openRecordset(
      "select Readers.Id, Stations.Name from Readers, Stations where Stations.Id = Readers.StationId order "
      "by Readers.Id");
  EXPECT_EQ(joined->recordCount(), 999U);
  EXPECT_EQ(failure([&] { joined->edit(); }), err::dbNotUpdatable);
  joined->moveLast();
  EXPECT_EQ(joined->get(0), Value(1000));
}

TEST_F(Rows, ThatFollowEachOtherAreFetchedTogether) {
  addReaders(1000);
  const auto rows = db->openRecordset("select * from Readers where Id <> 400");
  EXPECT_EQ(inOtherProcess([](Database& other) {
              other.execute("delete from Readers where Id in (256, 300, 301, 512, 1000)");
              other.execute("update Readers set [Note] = 'new' where Id = 302");
              other.execute("insert into Readers (Name) values ('behind the last one')");
            }),
            0);
  std::string gone;
  for (int id = 1; !rows->eof(); rows->moveNext(), ++id) {
    if (id == 400) ++id;
    if (errorOf([&] { ASSERT_EQ(rows->get("Id"), Value(id)); }) == err::dbRecordDeleted) {
      gone += std::to_string(id) + " ";
    } else {
      ASSERT_EQ(rows->get("Note"), id == 302 ? Value("new") : Value());
    }
  }
  EXPECT_EQ(gone, "300 301 512 1000 ") << "row 256 was read at once";
}

TEST_F(Rows, ChangesByStatementsAreSeenByOpenRows) {
  addReaders(300);
  const auto rows = db->openRecordset("select * from Readers order by Id");
  const auto same = db->openRecordset("select * from Readers where Id = 1");
  for (int id = 1; !rows->eof(); rows->moveNext(), ++id) {
    db->execute("update Readers set Note = 'n" + std::to_string(id) + "' where Id = " + std::to_string(id));
    ASSERT_EQ(rows->get("Note"), Value("n" + std::to_string(id)));
  }
  EXPECT_EQ(same->get("Note"), Value("n1"));
}

TEST_F(Rows, ExpressionsBesideFieldsStayAsRead) {
  addReaders(2);
  const auto rows = db->openRecordset("select Id, Name, Id + 10 as Sum from Readers order by Id");
  EXPECT_EQ(failure([&] { change(*rows, "Sum", 1); }), err::dbNotUpdatable);
  change(*rows, "Name", "changed");
  rows->addNew();
  rows->set("Name", "new");
  rows->update();
  EXPECT_EQ(rows->get("Name"), Value("changed"));
  EXPECT_EQ(rows->get("Sum").toInt32(), 11);
  rows->moveLast();
  EXPECT_EQ(rows->get("Id"), Value(3));
  EXPECT_TRUE(rows->get("Sum").isNull());
}

TEST_F(Rows, AreUselessOnceTheDatabaseIsClosed) {
  const auto rows = db->openRecordset("Stations");
  db->close();
  db->close();
  EXPECT_FALSE(db->isOpen());
  EXPECT_TRUE(engine->databases().empty());
  EXPECT_EQ(failure([&] { (void)rows->get(0); }), err::dbInvalidObject);
  EXPECT_EQ(executeFailure("delete from Stations"), err::dbInvalidObject);
}

TEST_F(Rows, BytesComeBackAsTheyWereAndAreNothingElse) {
  db->createTable({"P",
                   {{"Id", DataType::Long},
                    {"Few", DataType::Binary, 4},
                    {"Picture", DataType::LongBinary},
                    {"Two", DataType::Binary, 2},
                    {"Name", DataType::Text, 10}},
                   {{"Few", {"Few"}}}});
  const Bytes few{std::string("\0'\xFF\0", 4)};
  const Bytes picture{std::string(70000, '\0') + "end"};
  const auto rows = db->openRecordset("P");
  rows->addNew();
  rows->set("Few", few);
  rows->set("Picture", picture);
  EXPECT_EQ(failure([&] { rows->set("Few", Bytes{"12345"}); }), err::dbTextTooLong);
  EXPECT_EQ(failure([&] { rows->set("Picture", "text"); }), err::dbConversion);
  EXPECT_EQ(failure([&] { rows->set("Name", few); }), err::dbConversion);
  rows->update();
  db->execute("insert into P (Id, Few, Picture) values (2, given, Null)", {{"given", Bytes{""}}});
  reopen();
  EXPECT_EQ(valueOf("select Picture from P where Picture is not null"), Value(picture));
  EXPECT_EQ(valueOf("select max(Few) from P"), Value(few));
  EXPECT_EQ(valueOf("select count(Few) from P"), Value(2));
  EXPECT_EQ(db->openRecordset("select Id from P where Few = given", {{"given", Bytes{""}}})->get(0),
            Value(2));
  const auto sought = db->openRecordset("P");
  sought->setIndex("Few");
  EXPECT_TRUE(sought->seek(SeekComparison::equal, {few}));
  EXPECT_FALSE(sought->seek(SeekComparison::equal, {Bytes{"x"}}));
  for (const char* use : {"Len(Few)", "Few & ''", "Few = 1", "Few like 'x'", "Few + Few", "Not Few",
                          "IIf(True, Few, 1)", "Sum(Few)", "CStr(Few)", "Few in ('a')", "IsNumeric(Few)"})
    EXPECT_EQ(failure([&] { (void)valueOf(std::string("select ") + use + " from P"); }), err::dbTypeMismatch)
        << use;
  EXPECT_EQ(executeFailure("update P set Name = Few"), err::dbTypeMismatch);
  EXPECT_EQ(executeFailure("update P set Two = Few"), err::dbTextTooLong);
  EXPECT_EQ(valueOf("select Nz(Two) from P"), Value(Bytes{}));
  EXPECT_EQ(executeFailure("update P set Few = Name & 'x'"), err::dbConversion);
}

}  // namespace
}  // namespace voxa
