// Every public member over an installation whose databases are not open, or not any more.

#include "access/access_group.h"
#include "access/alarm.h"
#include "access/badge_format.h"
#include "access/cardholder.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/ufile.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

struct Call {
  const char* text;
  std::function<std::string()> outcome;
};

/// What a call gives, or "error" and the number that it raises.
template <typename Body>
std::string outcomeOf(Body&& body) {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      body();
      return "";
    } else if constexpr (std::is_same_v<std::invoke_result_t<Body>, std::string>) {
      return "'" + body() + "'";
    } else {
      return Value(body()).toText();
    }
  } catch (const Error& error) {
    return "error " + std::to_string(error.number());
  }
}

class WithoutDatabase : public test::InstallationTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    if (GetParam()) {
      createInstallation();
      for (const auto& database : engine->databases()) database->close();
    }
    glob->Com().AppDB = folder + "\\nowhere\\KRV.mdb";
    glob->Com().Chemin = folder;
  }
  static void expectAll(const char* outcome, const std::vector<Call>& calls) {
    for (const Call& call : calls) EXPECT_EQ(call.outcome(), outcome) << call.text;
  }
};

#define CALL(expression)                                               \
  Call {                                                               \
#expression, [&] { return outcomeOf([&] { return expression; }); } \
  }

TEST_P(WithoutDatabase, EveryMemberSaysSo) {
  QDB& qdb = glob->QDB();
  Com& com = glob->Com();
  std::int16_t number = 0;
  bool flag = false;
  expectAll("91", {CALL(qdb.Stations().setTableFlagsD(true)),
                   CALL(qdb.Journal().setTableFlagsD(true)),
                   CALL(qdb.Readers().setTableFlagsD(true)),
                   CALL(qdb.DailyPrograms().download(1)),
                   CALL(qdb.DailyPrograms().generalDownload()),
                   CALL(qdb.Holidays().download(1)),
                   CALL(qdb.Holidays().delete_(1)),
                   CALL(qdb.Holidays().generalDownload()),
                   CALL(qdb.WeeklyPrograms().download("C", 1)),
                   CALL(qdb.WeeklyPrograms().generalDownload()),
                   CALL(qdb.BadgeFormat().download(1, number, flag)),
                   CALL(qdb.AccessGroups().download(1)),
                   CALL(qdb.AccessGroups().download(1, DLFull, 1)),
                   CALL(qdb.Cardholders().download(1)),
                   CALL(qdb.Cardholders().generalDownload()),
                   CALL(qdb.Cardholders().invalidate(1)),
                   CALL(qdb.Cardholders().delete_(1)),
                   CALL(qdb.Cardholders().createGroup(1, "1", 1, 0)),
                   CALL(qdb.Journal().readAuto()),
                   CALL(com.Send(CmSendDate, 1, 1)),
                   CALL(com.Send(CmReadDate, 1)),
                   CALL(com.sendLinesTested({"31"}, {1, 1})),
                   CALL(com.ResetRSOUT(1, 0)),
                   CALL(com.sendBrodcast(CmSendDate)),
                   CALL(com.sendToActiveStations(CmSendDate)),
                   CALL(com.sendToComp(CmSendDate)),
                   CALL(com.sendCommand("09"))});
  expectAll("error 91",
            {CALL(qdb.database().name()), CALL(qdb.Stations().setActive(1, true)),
             CALL(qdb.Stations().createIniFile(1)), CALL(qdb.Stations().SendSpeed(1, 9600)),
             CALL(qdb.DailyPrograms().provideFourZones()), CALL(qdb.Cardholders().getCardCodeInUse(1)),
             CALL(qdb.BadgeFormat().insertDefaultRecs()), CALL(qdb.DailyPrograms().insertDefaultRecs()),
             CALL(qdb.WeeklyPrograms().insertDefaultRecs()), CALL(qdb.WeeklyPrograms().createRelations()),
             CALL(qdb.Readers().createRelations()), CALL(qdb.AccessGroups().createRelations()),
             CALL(qdb.Cardholders().createRelations()), CALL(qdb.Alarms().createRelations()),
             CALL(com.TestSend(1, 1)), CALL(com.isInUse(1)), CALL(com.updateDBComStatus(1, 1, 1, {})),
             CALL(com.getName(1, 1)), CALL(glob->Strings().database().name())});
  expectAll("", {CALL(qdb.BadgeFormat().CreateTable())});
  expectAll("-1", {CALL(qdb.Stations().getFreeId()),
                   CALL(qdb.Stations().getId("x")),
                   CALL(qdb.Readers().getFreeId()),
                   CALL(qdb.Readers().getId(1, 1, 1)),
                   CALL(qdb.Readers().getControllerAddr("x", number, number)),
                   CALL(qdb.Readers().getControllerAddrID(1, number, number)),
                   CALL(qdb.DailyPrograms().getFreeId()),
                   CALL(qdb.WeeklyPrograms().getFreeId("C")),
                   CALL(qdb.Holidays().getFreeId(flag)),
                   CALL(qdb.BadgeFormat().getFreeId()),
                   CALL(qdb.AccessGroups().getFreeId()),
                   CALL(qdb.AccessGroups().getId("x")),
                   CALL(qdb.Cardholders().getFreeCardNum()),
                   CALL(qdb.Journal().readTransactions(CTReader, "x")),
                   CALL(com.sendToReader(CmSendDate, "x")),
                   CALL(com.sendToStation(CmSendDate, "x")),
                   CALL(com.sendToComp(CmSendDate, CTStation, "x")),
                   CALL(UFile(*library).DlgSaveAs("x")),
                   CALL(UFile(*library).DlgRestore("x")),
                   CALL(UFile(*library).DlgDelete())});
  expectAll("0", {CALL(qdb.Readers().getIdByName("x")), CALL(qdb.WeeklyPrograms().getProgNum("C", "x")),
                  CALL(qdb.Cardholders().getCardNumId(1)),
                  CALL(qdb.Alarms().create()),  // as every table's: the person was told
                  CALL(com.Send(CmConnect, 1)), CALL(qdb.openDB())});
  expectAll("False", {CALL(qdb.Stations().isActive(1)), CALL(qdb.Cardholders().getCardNumInUse(1)),
                      CALL(qdb.AccessGroups().AccessGroupCheckCom(1)), CALL(com.TestCom()),
                      CALL(com.MsgChooseAbort()), CALL(glob->Strings().isOpen())});
  expectAll("''", {CALL(qdb.Stations().getName(1)), CALL(qdb.Stations().getActiveStationOnPort(0)),
                   CALL(qdb.Stations().findConnected()), CALL(qdb.Stations().GetCompar(1, 1)),
                   CALL(qdb.Readers().getName(1)), CALL(qdb.WeeklyPrograms().DefaultName()),
                   CALL(qdb.WeeklyPrograms().getName("C", 1)), CALL(qdb.AccessGroups().DefaultName()),
                   CALL(qdb.Cardholders().getNameByCardNum(1)), CALL(qdb.Journal().getLastCardCode("x"))});
  expectAll(
      "", {CALL(qdb.AccessGroups().insertDefaultRecs()), CALL(qdb.AccessGroups().addReaderToDefaultGroup(1)),
           CALL(qdb.AccessGroups().deleteReaderFromAccessGroups(1)), CALL(com.UpdateComStatus()),
           CALL(glob->insertStrings()), CALL(glob->Strings().display("msgComErr", "X.y"))});
  expectAll("'Mnemonic msgComErr'", {CALL(glob->Strings().read("msgComErr"))});
  // What opens or makes a database tells of the folder that there is not.
  expectAll("3024", {CALL(qdb.openCommonDB())});
  expectAll("3051", {CALL(qdb.createDB())});
  expectAll("0", {CALL(qdb.saveDB()), CALL(qdb.restoreDB())});
}

INSTANTIATE_TEST_SUITE_P(Databases, WithoutDatabase, testing::Values(false, true),
                         [](const auto& closed) { return closed.param ? "Closed" : "NeverOpened"; });

}  // namespace
}  // namespace voxa
