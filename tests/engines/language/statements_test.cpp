#include <gtest/gtest.h>

#include "engines/language/bench_database.h"

namespace voxa {
namespace {

struct Case {
  const char* sql;
  const char* result;
};

/// The tables of the system with a small installation in them. The statements are those that the system's
/// classes send.
class SystemStatements : public testing::Test {
 protected:
  SystemStatements() {
    db_.add("Stations: Id i Name t50 ComPort i ComSpeed l Phone t25 Active b Connect b");
    db_.add("ComStatus: StationID i CtrAddr i Status i Date D");
    db_.add(
        "Readers: Id l Name t50 StationId i ControllerType t5 ControllerAddress i Position i WeeklyProgType "
        "t1");
    db_.add(
        "Cardholders: Id l CardNum l Name t50 Deleted b CardCode t8 CardCodeFlagD b AccessGroupId i "
        "AccessGroupIdFlagD b ValidatedFlagD b ValidationDate D Free m");
    db_.add("AccessGroups: Id i Name t50 FlagD b");
    db_.add("AccGroupReaders: AccessGroupId i ReaderId l WeeklyProgType t1 WeeklyProgNum i FlagD b");
    db_.add("LiftGroup: AccessGroup i LiftNum l");
    db_.add("Alarms: Id l Num i Type t1 StationId i ControllerAddress i");
    db_.add(
        "BadgeFormat: Id l Name t50 SystemCard b Techno i Pos_Card y Size_Card y Pos_Site y Size_Site y "
        "Val_Site t8 BadgeFormatFlagD b");
    db_.add(
        "WeeklyPrograms: ProgType t1 ProgNum i Name t50 DailyProgDay1 i DailyProgDay2 i DailyProgDay3 i "
        "DailyProgDay4 i DailyProgDay5 i DailyProgDay6 i DailyProgDay7 i DailyProgHolidays i");
    db_.add(
        "DailyPrograms: Id i Name t50 StartFirstInterval t5 EndFirstInterval t5 StartSecondInterval t5 "
        "EndSecondInterval t5 DailyProgramFlagD b");
    db_.add("Holidays: Id i Name t50 Date D EachYear b");
    db_.add("Strings: Mnemonic t50 Type t25 TextEnglish t255");
    db_.add(
        "Journal: Id l Date D StationId i StationName t50 ReaderId l ReaderName t50 TransactionType t2 "
        "CardholderName t50 TransactionData t20");
    for (const char* sql :
         {"insert into ComStatus values (1, 1, 1, #1/31/1980#)",
          "insert into ComStatus values (1, 2, -1, Null)", "insert into ComStatus values (2, 1, -1, Null)",
          "insert into Stations values (1, 'Main', 1, 4800, '', True, No)",
          "insert into Stations values (2, 'Gate', 2, 9600, '0123', False, Yes)",
          "insert into Readers values (10, 'Front', 1, 'QSX3', 1, 1, 'C')",
          "insert into Readers values (11, 'Back', 1, 'QSX3', 2, 1, 'C')",
          "insert into Readers values (20, 'Gate in', 2, 'QSX3', 1, 1, 'C')",
          "insert into LiftGroup values (0, 5)", "insert into Alarms values (5, 7, 'm', 1, 2)",
          "insert into Strings values ('msgFull', 'Message', 'It''s full')"}) {
      EXPECT_EQ(db_.attempt(sql), "1") << sql;
    }
  }

  void expect(std::initializer_list<Case> cases) {
    for (const Case& c : cases) EXPECT_EQ(db_.attempt(c.sql), c.result) << c.sql;
  }

  BenchDatabase db_;
};

TEST_F(SystemStatements, GiveTheirRows) {
  expect({
      {"Insert into Stations ( Id, Name, Active ) values (3, 'Local', True )", "1"},
      {"Insert into AccessGroups ( Id, Name ) values ( 0, 'Anywhere Anytime')", "1"},
      {"insert into AccGroupReaders ( AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum )values ( 0, "
       "11, "
       "'C', 0 )",
       "1"},
      {"insert into AccGroupReaders ( AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum )values ( 0, "
       "20, "
       "'C', 3 )",
       "1"},
      {"insert into Cardholders (Name, cardNum, CardCode,AccessGroupId)  values ('Card 0001',1, "
       "'00000123',0)",
       "1"},
      {"Insert into BadgeFormat ( Id, Name, SystemCard, Techno, Pos_Card, Size_Card, Pos_Site, Size_Site, "
       "Val_Site, BadgeFormatFlagD ) values ( 0, 'Default', 0, 0, 0, 8, 0, 0, '00000000', 0)",
       "1"},
      {"Insert into WeeklyPrograms(ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
       "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays ) values ('C', 0, "
       "'Always', 1, 1, 1, 1, 1, 1, 1, 1 )",
       "1"},
      {"Insert into DailyPrograms ( Id, Name, StartFirstInterval, EndFirstInterval, StartSecondInterval, "
       "EndSecondInterval ) values ( 0, 'Never', '00:00', '00:00', '00:00', '00:00' )",
       "1"},
      {"Insert into DailyPrograms ( Id, Name, StartFirstInterval, EndFirstInterval, StartSecondInterval, "
       "EndSecondInterval,DailyProgramFlagD ) values ( 1, 'Any time', '00:00', '23:59', '23:59', '23:59', "
       "'-1' )",
       "1"},
      {"insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName,TransactionType, "
       "CardholderName, TransactionData ) values ( '09/12/2025 "
       "08:30:00',1,'Main',10,'Front','10','Ann','0001')",
       "1"},
      {"insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName,TransactionType, "
       "CardholderName, TransactionData ) values ( '09/12/2025 "
       "09:30:00',1,'Main',10,'Front','12','Ann','0002')",
       "1"},
      {"insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName,TransactionType, "
       "CardholderName, TransactionData ) values ( '12/09/2025 "
       "10:30:00',1,'Main',10,'Front','13','Ann','0003')",
       "1"},

      {"select name from Stations order by name asc", "Gate;Local;Main"},
      {"select name from Stations WHERE Id > 1 order by name asc", "Gate;Local"},
      {"select Id from Stations where name = 'GATE'", "2"},
      {"select * from AccessGroups WHERE Id = 0", "0|Anywhere Anytime|0"},
      {"select * from Strings where mnemonic = 'MSGFULL'", "msgFull|Message|It's full"},
      {"select * from Strings where Mnemonic = 'none'", ""},
      {"select * From ComStatus where StationID =1 and Status = 1", "1|1|1|29251.0"},
      {"select * From ComStatus where StationID =1", "1|1|1|29251.0;1|2|-1|-"},
      {"select * From ComStatus where StationID =1 and CtrAddr = 2", "1|2|-1|-"},
      {"Select ID From Stations where ID = 2", "2"},
      {"select Id From Stations where Active = true", "1;3"},
      {"select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and "
       "abs(Stations.Active)=1 ",
       "1|1|1|29251.0|1|Main|1|4800||-1|0;1|2|-1|-|1|Main|1|4800||-1|0"},
      {"select * From Stations where Stations.Name = 'Gate'", "2|Gate|2|9600|0123|0|-1"},
      {"select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and abs(Stations.Active)=1 "
       "and "
       "Stations.Name = 'Gate'",
       ""},
      {"select * From Readers where  Readers.Name = 'Back'", "11|Back|1|QSX3|2|1|C"},
      {"select * From ComStatus, Readers where CtrAddr = Readers.ControllerAddress and  "
       "ComStatus.StationID=[Readers].[StationID] and Readers.Name = 'Back'",
       "1|2|-1|-|11|Back|1|QSX3|2|1|C"},
      {"select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and abs(Stations.Active)=1 "
       "and "
       "ComStatus.Status = -1",
       "1|2|-1|-|1|Main|1|4800||-1|0"},
      {"select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and abs(Stations.Active)=1 "
       "and "
       "Stations.Name = 'Main' and ComStatus.Status = -1",
       "1|2|-1|-|1|Main|1|4800||-1|0"},
      {"select ComStatus.* From ComStatus, Readers where CtrAddr = Readers.ControllerAddress and "
       "Readers.Name = "
       "'Back'",
       "1|2|-1|-"},
      {"select Name from Stations where Id = 1", "Main"},
      {"select Name from Readers where StationId = 1and ControllerAddress = 2", "Back"},
      {"select Id, Active from Stations where Name = 'Main'", "1|-1"},
      {"select Active from Stations where Id = 2", "0"},
      {"Select Name from Stations where comPort = 1and Active = true", "Main"},
      {"Select Name from Stations where Phone <> '' and Active = true", ""},
      {"update Stations set [active] = True where id = 2", "1"},
      {"Select Name from Stations where Phone <> '' and Active = true", "Gate"},
      {"Select * from Stations where Phone <>'' and ID = 2", "2|Gate|2|9600|0123|-1|-1"},
      {"Select * from Stations where Phone <>'' and ID = 3", ""},
      {"update Stations set [active] = False where id = 2", "1"},
      {"select ControllerAddress from Readers where stationId = 1 order by ControllerAddress", "1;2"},
      {"select StationId, ControllerAddress from Readers where Name = 'gate in'", "2|1"},
      {"select StationId, ControllerAddress from Readers where ID = 11", "1|2"},
      {"select Id from Readers where stationId = 1 and controllerAddress = 2 and Position = 1", "11"},
      {"select Id from Readers where name = 'Front'", "10"},
      {"select Name from Readers where Id = 20", "Gate in"},
      {"select id from Cardholders where cardNum = 1 and Deleted = false", "-"},
      {"update Cardholders set Id = 4", "1"},
      {"select name from Cardholders where cardNum = 1 and Deleted = false", "Card 0001"},
      {"select id from Cardholders where cardCode = 123", "4"},
      {"select id, CardNum from Cardholders where cardNum between 1 and 5", "4|1"},
      {"select id, CardCode from Cardholders where cardCode between '00000100' and '00000200'", "4|00000123"},
      {"select AccessGroupID From Cardholders where ID =4", "0"},
      {"select Id from cardholders where Deleted = false", "4"},
      {"SELECT r.Id, r.ControllerAddress, r.ControllerType, r.Position, a.WeeklyProgNum, s.Id, s.Name, "
       "s.Active "
       "FROM AccGroupReaders AS a, Readers AS r, Stations AS s Where (((r.id) = [a].[readerId]) And ((s.id) "
       "= "
       "[r].[StationID]) And ((a.accessGroupId) = 0)) ORDER BY s.Id, r.ControllerAddress, r.Position ",
       "11|2|QSX3|1|0|1|Main|-1;20|1|QSX3|1|3|2|Gate|0"},
      {"SELECT Alarms.Num FROM Cardholders INNER JOIN (LiftGroup INNER JOIN Alarms ON LiftGroup.LiftNum = "
       "Alarms.Id) ON Cardholders.AccessGroupId = LiftGroup.AccessGroup WHERE Alarms.Type='M' AND "
       "Cardholders.Id=4 AND Alarms.StationId = 1 and Alarms.ControllerAddress = 2",
       "7"},
      {"Select * from AccessGroups Where ID = 0", "0|Anywhere Anytime|0"},
      {"SELECT Stations.Active FROM Stations INNER JOIN Readers ON Stations.Id = Readers.StationId WHERE "
       "Readers.Id=11",
       "-1"},
      {"select id, CardNum, CardCodeFlagD,ValidatedFlagD, AccessGroupIdFlagD from Cardholders where "
       "AccessGroupId = 0",
       "4|1|0|0|0"},
      {"SELECT AccGroupReaders.ReaderId FROM Stations INNER JOIN (Readers INNER JOIN AccGroupReaders ON "
       "Readers.Id = AccGroupReaders.ReaderId) ON Stations.Id = Readers.StationId WHERE Stations.Active=True "
       " AND "
       "AccGroupReaders.AccessGroupId=0",
       "11"},
      {"Select * from WeeklyPrograms Where ProgNum = 0", "C|0|Always|1|1|1|1|1|1|1|1"},
      {"select Name from WeeklyPrograms where ProgType = 'C' and ProgNum = 0", "Always"},
      {"select ProgNum from WeeklyPrograms where ProgType = 'C' and Name = 'always'", "0"},
      {"select ProgType, ProgNum from WeeklyPrograms WHERE ProgType = 'E'", ""},
      {"select Id from DailyPrograms", "0;1"},
      {"select DailyProgramFlagD from DailyPrograms where Id = 1", "-1"},
      {"select Id from Holidays", ""},
      {"SELECT Readers.StationId, Readers.ControllerAddress, Stations.Active, Stations.Phone  FROM Stations "
       "INNER "
       "JOIN Readers ON Stations.Id = Readers.StationId  GROUP BY Readers.StationId, "
       "Readers.ControllerAddress, "
       "Stations.Active, Stations.Phone ORDER BY Readers.StationId, Readers.ControllerAddress",
       "1|1|-1|;1|2|-1|;2|1|0|0123"},
      {"SELECT TOP 1 Journal.TransactionType, Journal.TransactionData From Journal WHERE "
       "(((Journal.TransactionType)='10' Or (Journal.TransactionType)='12' Or (Journal.TransactionType)='11' "
       "Or "
       "(Journal.TransactionType)='13') AND ((Format([Date],'dd/mm/yyyy'))=Format(Now(),'dd/mm/yyyy'))) and "
       "ReaderName = 'Front' ORDER BY Journal.Date DESC",
       "12|0002"},
      {"delete * from AccGroupReaders WHERE readerId = 20", "1"},
      {"DELETE ComStatus.* FROM ComStatus", "3"},
  });
}

TEST_F(SystemStatements, StoredQueryTakesItsParameterBeforeAFieldOfThatName) {
  const std::string query =
      "PARAMETERS [AccessGroupId] Integer;select r.id, r.ControllerAddress, r.Position, "
      "a.WeeklyProgNum,s.id, "
      "s.name, s.Active from  AccGroupReaders a, Readers r, Stations s where a.accessGroupId = "
      "[AccessGroupId] and "
      "r.id = a.readerId and s.id = r.StationId order by s.id, r.ControllerAddress asc, r.Position asc";
  expect({{"insert into AccGroupReaders (AccessGroupId, ReaderId) values (7, 11)", "1"},
          {"insert into AccGroupReaders (AccessGroupId, ReaderId) values (8, 20)", "1"}});
  EXPECT_EQ(db_.attempt(query, {{"accessgroupid", std::int32_t{7}}}), "11|2|1|-|1|Main|-1");
  EXPECT_EQ(db_.columns(query), "r.Id,ControllerAddress,Position,WeeklyProgNum,s.Id,Name,Active/");
  EXPECT_EQ(
      db_.attempt("PARAMETERS accessgroupid Long, [at] DateTime; select count(*) from AccGroupReaders where "
                  "accessgroupid = 8 or AccGroupReaders.AccessGroupId = accessgroupid",
                  {{"AccessGroupId", std::int32_t{8}}}),
      "2");
}

}  // namespace
}  // namespace voxa
