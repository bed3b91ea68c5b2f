#include "comm/station.h"

#include "comm/com.h"
#include "comm/modem_file.h"
#include "comm/reader.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

using Lines = std::vector<std::string>;

class StationTest : public test::InstallationTest {
 protected:
  void SetUp() override { createInstallation(); }
  Station& stations = library->QDB().Stations();
  Reader& readers = library->QDB().Readers();
};

TEST_F(StationTest, LookUpsAndTheirMessages) {
  addStation(2, "Idle", false);
  db().execute("insert into Stations (Id, Name, Active, Phone, ComPort) values (3, '', True, '0123', 1)");
  addReader(5, "Door", 1, 3, 2);
  bool active = true;
  std::int16_t station = 0;
  std::int16_t address = 0;
  EXPECT_EQ(stations.getId("LOCAL"), 1);
  EXPECT_EQ(stations.getId("Idle", &active), 2);
  EXPECT_FALSE(active);
  EXPECT_FALSE(stations.isActive(2));
  EXPECT_EQ(stations.getName(7, true), "");
  EXPECT_EQ(stations.getName(3, true), "");
  EXPECT_EQ(stations.getActiveStationOnPort(0), "Local");
  EXPECT_EQ(stations.findConnected(), "");
  db().execute("update Stations set Name = 'Modem' where Id = 3");
  EXPECT_EQ(stations.findConnected(), "Modem");
  stations.setActive(3, false);
  EXPECT_EQ(stations.findConnected(), "");
  EXPECT_EQ(stations.getActiveStationOnPort(1), "");
  EXPECT_EQ(stations.GetCompar(1, 5), "1054800");
  EXPECT_EQ(readers.getControllerAddr("door", station, address), 0);
  EXPECT_EQ(readers.getControllerAddrID(5, station, address), 0);
  EXPECT_EQ(station * 100 + address, 103);
  EXPECT_EQ(readers.getId(1, 3, 2), 5);
  EXPECT_EQ(readers.getId(1, 3, 1, true), -1);
  EXPECT_EQ(readers.getIdByName("Door"), 5);
  EXPECT_EQ(readers.getName(5), "Door");
  EXPECT_EQ(readers.getName(6, true), "");
  EXPECT_EQ(boxes(), Lines{});

  db().execute("update Stations set Name = '' where Id = 3");
  const std::int16_t none = -1;
  const std::function<Value()> failing[] = {
      [&] { return stations.getId("No"); },
      [&] { return stations.getName(7); },
      [&] { return stations.getName(3); },
      [&] { return stations.isActive(7); },
      [&] { return stations.GetCompar(7, 1); },
      [&] { return stations.createIniFile(7); },
      [&] { return readers.getControllerAddr("No", station, address); },
      [&] { return readers.getControllerAddrID(70000, station, address); },
      [&] { return readers.getId(1, 3, 9); },
      [&] { return readers.getIdByName("No"); },
      [&] { return readers.getName(6); }};
  const Value results[] = {none, "", "", false, "", none, none, none, none, std::int16_t{0}, ""};
  for (std::size_t i = 0; i < std::size(results); ++i) EXPECT_EQ(failing[i](), results[i]) << i;
  EXPECT_EQ(
      boxes(),
      (Lines{"Can't find station No|(Station.getId)", "Can't find station 7|(Station.getName)",
             "Can't find station 3|(Station.getName)", "Can't find station 7|(Station.isActive)",
             "Can't find station 7|(Station.createIniFile)", "Can't find station 7|(Station.createIniFile)",
             "Can't find reader No|(Reader.getControllerAddr)",
             "Can't find reader 70000|(Reader.getControllerAddr)",
             "Can't find reader Station 1 controller 3|(Reader.getId)",
             "Can't find reader No|(Reader.getIdBYName)", "Can't find reader 6|(Reader.getName)"}));
  EXPECT_EQ(library->error().number, 0);
  EXPECT_EQ(textOf("S007.ini"), "");
}

TEST_F(StationTest, NamesWithQuotesChangeNothing) {
  for (const std::string name : {"O'Hara", "x' or 'a'='a", "x'; delete from Stations where 'a'='a"}) {
    EXPECT_THROW(db().execute("insert into Stations (Id, Name) values (8, '" + name + "')"), Error);
    (void)stations.getId(name);
    (void)readers.getIdByName(name);
    EXPECT_EQ(query("select count(*) from Stations"), "1") << name;
  }
  // The condition that is always true finds a station, the two that are no statement are reported.
  EXPECT_EQ(stations.getId("x' or 'a'='a"), 1);
  EXPECT_EQ(boxes().size(), 5U);
}

TEST_F(StationTest, FreeIdsEndAt998AndDoorsAreUnique) {
  Transaction transaction(*engine);  // of that many rows one by one
  for (int id = 2; id <= 998; ++id) addStation(id, "S" + std::to_string(id));
  for (int id = 1; id <= 998; ++id) addReader(id, "R" + std::to_string(id), id, 1, 1);
  transaction.commit();
  EXPECT_EQ(stations.getFreeId(), -1);
  EXPECT_EQ(readers.getFreeId(), -1);
  db().execute("delete from Readers where Id = 3 or Id = 998");
  db().execute("delete from Stations where Id = 998");
  EXPECT_EQ(stations.getFreeId(), 998);
  EXPECT_EQ(readers.getFreeId(), 3);
  EXPECT_THROW(addReader(3, "x", 2, 1, 1), Error);    // the door has a reader
  EXPECT_THROW(addReader(3, "x", 998, 1, 1), Error);  // no such station
  EXPECT_THROW(db().execute("delete from Stations where Id = 2"), Error);
  EXPECT_EQ(query("select count(*) from Readers"), "996");
}

TEST_F(StationTest, TheIniFileAndTheSpeedsOfALine) {
  addReader(1, "A", 1, 2, 1);
  addReader(2, "B", 1, 1, 1);
  addReader(3, "C", 1, 1, 2);
  db().execute(
      "insert into Stations (Id, Name, Phone, ModemIniFile, ComPort, ComSpeed) "
      "values (12, 'Far', '0123', 'm.ini', 2, 19200)");
  EXPECT_EQ(stations.createIniFile(1), 0);
  EXPECT_EQ(oneLine(textOf("S001.ini")),
            "NAM:Local|COM:1|BDR:4800|CFL:COMMAND.TXT|OUT:1500|TMP:100|OPT:2|TER:1,2|");
  EXPECT_EQ(stations.createIniFile(12, 3000, 9600), 0);
  EXPECT_EQ(oneLine(textOf("S012.ini")),
            "NAM:Far|COM:3|BDR:9600|TEL:0123|MDM:m.ini|CFL:COMMAND.TXT|OUT:3000|TMP:100|OPT:2|");
  // A row that would tell the driver more than a station, as somebody else's database may hold it.
  const std::string before = textOf("S012.ini");
  for (const char* row : {"Name = 'Far\r\nCFL:/etc/passwd'", "Phone = '1\nTER:1'", "ModemIniFile = 'm\ni'"}) {
    Transaction transaction(*engine);
    db().execute(std::string("update Stations set ") + row + " where Id = 12");
    EXPECT_THROW(stations.createIniFile(12), Error) << row;
    EXPECT_EQ(textOf("S012.ini"), before) << row;
  }
  // A modem file may be a path, but no device and not on the network. The second: whether it is elsewhere.
  const struct {
    const char* file;
    bool taken, elsewhere;
  } files[] = {{"m.ini", true, false},
               {"C:\\modem\\m.ini", true, true},
               {"/etc/m.ini", true, true},
               {"..\\m.ini", true, true},
               {"console.ini", true, false},
               {"com10.ini", true, false},
               {"\\\\srv\\m.ini", false, true},
               {"//srv/m.ini", false, true},
               {"/\\?\\C:\\m", false, true},
               {"nul", false, true},
               {"COM0", false, true},
               {"x\\Com1 .ini", false, true},
               {"LPT\u00B2", false, true},
               {"aux:", false, true},
               {"/dev/ttyS0", false, true},
               {"../a/../../dev/tty", false, true},
               {"/./proc/self/fd/0", false, true}};
  for (const auto& c : files) {
    db().execute(std::string("update Stations set ModemIniFile = '") + c.file + "' where Id = 12");
    if (c.taken) {
      EXPECT_EQ(stations.createIniFile(12), 0) << c.file;
      EXPECT_NE(textOf("S012.ini").find(std::string("\nMDM:") + c.file + "\r"), std::string::npos) << c.file;
    } else {
      EXPECT_THROW(stations.createIniFile(12), Error) << c.file;
    }
    EXPECT_EQ(stationsWithModemElsewhere(db()), c.elsewhere ? Lines{"Far"} : Lines{}) << c.file;
  }

  // A new speed is broadcast at every other one.
  const struct {
    std::int32_t speed;
    const char *speeds, *lines;
  } cases[] = {{9600, " 4800 19200 38400",
                "\x7f"
                "1|\x7f"
                "1|\x7f"
                "1||"},
               {38400, " 4800 9600 19200",
                "\x7f"
                "3|\x7f"
                "3|\x7f"
                "3||"},
               {1200, " 4800 9600 19200 38400", "\x7f|\x7f|\x7f||"}};
  for (const auto& c : cases) {
    std::string speeds;
    driver.answer = [&](const auto& call) {
      EXPECT_EQ(call.command * 100 + call.address, CmSendCommand * 100 + 95);
      EXPECT_EQ(oneLine(call.commandFile), c.lines);
      const std::string ini = textOf("S001.ini");
      speeds += " " + std::to_string(std::stoi(ini.substr(ini.find("BDR:") + 4)));
      return 100;
    };
    stations.SendSpeed(1, c.speed);
    EXPECT_EQ(speeds, c.speeds);
  }
}

}  // namespace
}  // namespace voxa
