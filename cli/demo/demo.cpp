// voxa demo: the main job, from an empty folder to controllers that hold what the database says, and to a
// journal of what happened at their doors.

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>

#include "access.h"
#include "check.h"
#include "commands/commands.h"
#include "commands/line_question.h"
#include "commands/session.h"
#include "compare.h"
#include "guard.h"
#include "installation.h"
#include "output/command_line.h"
#include "site/site.h"
#include "work/daily_programs.h"
#include "work/download.h"
#include "work/refusal.h"
#include "work/weekly_programs.h"

namespace voxa::cli {

namespace {

namespace fs = std::filesystem;

/// The folder of the demonstration: the one the person named, which stays, or one for the time being.
class DemoFolder {
 public:
  DemoFolder(Session& session, const std::string& named) : session_(session), temporary_(named.empty()) {
    path_ = temporary_ ? fs::temp_directory_path() / ("voxa-demo-" + std::to_string(std::random_device{}()))
                       : fs::path(session.callersFile(named));
    if (fs::exists(path_) && (!fs::is_directory(path_) || !fs::is_empty(path_))) {
      throw Refusal(path_.string() + " is not empty: the demonstration wants a folder of its own");
    }
    session.settings.opening.folder = path_.string();
    if (temporary_) deleteAfterThisProcess(path_);
  }
  ~DemoFolder() {
    if (!temporary_) return;
    try {
      session_.leave();
      fs::remove_all(path_);
    } catch (const std::exception& failure) {
      std::cerr << "voxa demo: " << path_.string() << " is left behind: " << failure.what() << '\n';
    }
  }
  DemoFolder(const DemoFolder&) = delete;
  DemoFolder& operator=(const DemoFolder&) = delete;

 private:
  Session& session_;
  bool temporary_;
  fs::path path_;
};

constexpr int silentStation = 2;  // Annex
constexpr int silentAddress = 2;
constexpr const char* silentController = "Annex 2";

class Demo {
 public:
  explicit Demo(Session& session) : session_(session) {}

  void run() {
    createAndDownload();
    failInTheSend();
    leaveOut();
    bringBack();
    if (!check_.asTold()) throw Refusal("the controllers do not hold what the database says");
    std::cout << "\nEvery controller holds what the database says.\n";
    demonstrateAccess(session_, site_);
  }

 private:
  void createAndDownload() {
    session_.create();
    fillDemoInstallation(session_.library(), site_);
    std::cout
        << "1. A new installation: 2 stations, 6 controllers, 9 readers, 4 daily and 3 weekly programs.\n"
           "   Everything is marked to be sent, and is downloaded to every controller.\n\n";
    expect(target(0).has_value(), "every controller answers");
    send({});
    showMarked();
    std::cout << '\n';
    expect(printVerdicts(compareWithControllers(session_.library(), site_), false) == 0,
           "all hold everything");
  }

  void failInTheSend() {
    std::cout
        << "\n2. Controller 2 of Annex falls silent after the controllers were tested; the daily program\n"
           "   Office begins half an hour later. The send meets the silence: the message says so, and\n"
           "   the program stays marked.\n\n";
    site::Faults faults;
    faults.silent = true;
    site_.setFaults(silentStation, silentAddress, faults);
    changeDailyProgram(session_.library(), "Office", {{}, {"08:30-12:00"}});
    expect(send({}) == 1, "the failure is told");
    expect(showMarked() == 1, "the program stays marked");
  }

  void leaveOut() {
    std::cout
        << "\n3. The weekly program Staff gets other holidays. This time the controllers are tested first:\n"
           "   the question is answered with Ignore, the others get what is marked, and because one\n"
           "   was left out the programs stay marked.\n\n";
    changeWeeklyProgram(session_.library(), "C", "Staff", {{}, {}, "2"});
    session_.prompts().prepare(Answer::ignore);
    const auto withoutOne = target(1);
    expect(withoutOne.has_value(), "Ignore goes on without one controller");
    send(withoutOne.value_or(DownloadTarget{}));
    expect(showMarked() == 2, "both programs stay marked");
    std::cout << '\n';
    const auto verdicts = compareWithControllers(session_.library(), site_);
    expect(printVerdicts(verdicts, true) == 2, "two programs are missing");
    for (const Verdict& verdict : verdicts) {
      expect(verdict.same() || verdict.controller == silentController, "only the silent one lacks them");
    }
  }

  void bringBack() {
    std::cout << "\n4. The controller is back: what is marked is downloaded.\n\n";
    site_.clearFaults(silentStation, silentAddress);
    const auto toAll = target(0);
    expect(toAll.has_value(), "every controller answers again");
    send(toAll.value_or(DownloadTarget{}));
    expect(showMarked() == 0, "nothing stays marked");
    std::cout << '\n';
    const auto verdicts = compareWithControllers(session_.library(), site_);
    std::vector<Verdict> ofReturned;
    for (const Verdict& verdict : verdicts) {
      if (verdict.controller == silentController) ofReturned.push_back(verdict);
    }
    printVerdicts(ofReturned, false);
    std::cout << "All controllers: ";
    expect(printVerdicts(verdicts, true) == 0, "all hold everything");
  }

  // All controllers, tested; none when not so many of them are silent.
  std::optional<DownloadTarget> target(std::size_t silent) {
    const std::optional<LineTest> test = testedLines(session_, {});
    if (!test || test->silent.size() != silent) return std::nullopt;
    return DownloadTarget{{}, false, test->silent};
  }

  // How many could not be sent.
  std::size_t send(const DownloadTarget& target) {
    std::size_t failed = 0;
    for (const DownloadKind kind : {DownloadKind::dailyPrograms, DownloadKind::weeklyPrograms}) {
      const Report report = download(session_.library(), kind, target);
      session_.library().show(report.allNotices());
      std::cout << "   " << (kind == DownloadKind::dailyPrograms ? "Daily" : "Weekly")
                << " programs: " << report.rowsWith(Outcome::done) << " sent, "
                << report.rowsWith(Outcome::unchanged) << " unchanged, " << report.rowsWith(Outcome::failed)
                << " failed\n";
      failed += report.rowsWith(Outcome::failed);
    }
    return failed;
  }

  // Names the programs that are still to be sent, and returns how many they are.
  int showMarked() {
    std::string names;
    int count = 0;
    const auto add = [&](const auto& program) {
      if (!program.toSend) return;
      names += (names.empty() ? "" : ", ") + program.name;
      ++count;
    };
    for (const DailyProgramRow& program : listDailyPrograms(session_.library())) add(program);
    for (const WeeklyProgramRow& program : listWeeklyPrograms(session_.library())) add(program);
    std::cout << "   Marked to be sent: " << (names.empty() ? "nothing" : names) << '\n';
    return count;
  }

  void expect(bool asItShouldBe, const char* what) { check_.expect(asItShouldBe, what); }

  Session& session_;
  site::Site site_{fs::path(session_.settings.opening.folder) / "site"};
  DemoCheck check_;
};

void demonstrate(Session& session, const std::string& folder) {
  if (std::getenv("TLXP_SITE") != nullptr) {
    throw Refusal("TLXP_SITE names other controllers: the demonstration wants its own, unset it");
  }
  const DemoFolder demoFolder(session, folder);
  try {
    Demo(session).run();
  } catch (const site::Failure& failure) {
    throw Refusal(failure.what());
  }
}

}  // namespace

void addDemoCommand(Command& app, Session& session) {
  auto* demo = app.add_subcommand(
      "demo", "Create an installation, download it, present cards and check controllers and journal");
  auto folder = std::make_shared<std::string>();
  demo->add_option("DIR", *folder, "New or empty folder for it; without one it is removed afterwards");
  demo->footer("Examples:\n  voxa demo\n  voxa demo plant");
  demo->callback([&session, folder] { demonstrate(session, *folder); });
}

}  // namespace voxa::cli
