// Every answer of the driver against the table line_faults.txt, which a person can read.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "access/cardholder.h"
#include "comm/com.h"
#include "files/command_file.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/driver/library_driver.h"
#include "platform/text.h"
#include "programs/weekly_program.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

using Cells = std::vector<std::string>;
using Answers = std::vector<std::int16_t>;  // to the first call, the second, ... and every later one

void replaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
}

Cells split(const std::string& text, const std::string& separator) {
  Cells parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    parts.push_back(text.substr(at, end - at));
    const std::size_t first = std::min(parts.back().find_first_not_of(' '), parts.back().size());
    parts.back() = parts.back().substr(first, parts.back().find_last_not_of(' ') + 1 - first);
    at = end + separator.size();
  }
  return parts;
}

/// The lines of a section, each cut into its cells, with the texts that stand for others put in.
std::vector<Cells> rowsOf(const std::string& section, std::size_t cells) {
  std::ifstream file(LINE_FAULTS);
  std::map<std::string, std::string> texts;
  std::vector<Cells> rows;
  std::string current;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) current = line.substr(1, line.size() - 2);
    if (!line.starts_with(' ')) continue;
    if (current == "texts") {
      const Cells definition = split(line, " = ");
      texts[definition.at(0)] = definition.at(1);
    } else if (current == section) {
      for (const auto& [name, text] : texts) replaceAll(line, "<" + name + ">", text);
      rows.push_back(split(line, "|"));
      EXPECT_EQ(rows.back().size(), cells) << line;
      rows.back().resize(cells);
    }
  }
  return rows;
}

std::int16_t number(const std::string& text) {
  return static_cast<std::int16_t>(std::stoi(text));
}

/// "0 1-16 101>3": 0, each of 1 to 16, 101 and then 3.
std::vector<Answers> alternatives(const std::string& text) {
  std::vector<Answers> all;
  for (const std::string& part : split(text, " ")) {
    if (const std::size_t dash = part.find('-', 1);
        dash != std::string::npos && part.find('>') == std::string::npos) {
      for (int n = number(part); n <= number(part.substr(dash + 1)); ++n) {
        all.push_back({static_cast<std::int16_t>(n)});
      }
      continue;
    }
    all.emplace_back();
    for (const std::string& answer : split(part, ">")) all.back().push_back(number(answer));
  }
  return all;
}

std::int16_t answerTo(const Answers& answers, std::size_t call) {
  return answers[std::min(call, answers.size() - 1)];
}

bool matches(const std::string& text, const std::string& pattern) {
  const std::size_t gap = pattern.find("...");
  if (gap == std::string::npos) return text == pattern;
  const std::string after = pattern.substr(gap + 3);
  const std::size_t at = after.empty() ? text.size() : text.find(after.substr(0, after.find("...")), gap);
  return text.starts_with(pattern.substr(0, gap)) && at != std::string::npos &&
         matches(text.substr(at), after);
}

class LineFaultsTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    driver.resultFile.reset();
    addStation(7, "Annex");
    addReader(1, "Door", 1, 3, 1);
    addReader(2, "Shed", 7, 3, 1);
    const auto text = [&](const std::string& mnemonic, const std::string& english) {
      library->Strings().insert(mnemonic, english, 0, "Test", "Message");
    };
    text("msgError", "Error");
    text("msgComErr301", "line failure");
    for (int n = 0; n <= 17; ++n) text("msgComErr" + std::to_string(n), "code " + std::to_string(n));
    for (const char* n : {"101", "247", "255", "-1", "32767", "-32768"}) {
      text(std::string("msgComErr") + n, std::string("code ") + n);
    }
    text("msgChooseAbort1", "Silent:");
    text("msgChooseAbort2", "Abort: stop");
    text("msgChooseAbort3", "Retry: ask again");
    text("msgChooseAbort4", "Ignore: go on");
    db().execute("insert into WeeklyPrograms values ('C', 3, 'Week', 1, 1, 1, 1, 1, 1, 1, 1, True)");
    db().execute("insert into AccessGroups (Id, Name) values (1, 'Staff')");
    db().execute("insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgNum) values (1, 1, 3)");
    db().execute("insert into Cardholders (CardNum, Name, CardCode, AccessGroupId) values (1, 'A', '1', 1)");
  }
  /// As on a day on which nothing has happened yet, but for what `file` tells of the result files.
  void begin(const std::string& file) {
    for (const char* name : {"RS001.OUT", "RS007.OUT", "J.DAT"}) std::filesystem::remove(name);
    driver.calls.clear();
    driver.resultFiles.clear();
    com.errorList.clear();
    prompts.boxes.clear();
    prompts.answers.clear();
    library->CommandFile().fopen();
    library->CommandFile().fprint("31");
    library->CommandFile().fclose();
    if (file == "none" || file == "-") return;
    const std::string garbage = "\x80\xFF~!\x07\r\n\x01";
    const std::string left = file == "empty" ? "" : file == "garbage" ? garbage : split(file, "old ").back();
    for (const std::int16_t station : {std::int16_t{1}, std::int16_t{7}}) {
      if (file == "other" && station == 1) continue;
      write("RS00" + std::to_string(station) + ".OUT", left);
      if (!file.starts_with("old ")) driver.resultFiles[station] = left;
    }
  }
  void resetRows() {
    Transaction transaction(*engine);
    db().execute("delete from ComStatus");
    journal().DB()->execute("delete from Journal");
    db().execute("update WeeklyPrograms set WeeklyProgramFlagD = (ProgNum = 3)");
    db().execute("update Cardholders set CardCodeFlagD = True");
    transaction.commit();
  }
  /// A library that is really looked for, and lacks what it is asked for.
  void beAbsent(const std::string& cell) {
    const auto absent = std::make_shared<LibraryDriver>(cell == "no export" ? "TwoExports" : "NoSuchDriver");
    driver.answer = [absent](const auto& call) {
      return absent->call(call.command, call.station, call.address);
    };
  }
  static bool isAbsent(const std::string& cell) { return cell.starts_with("no "); }
  /// As the table writes it: " / " between lines, " >> " between boxes, no folders.
  [[nodiscard]] std::string written(std::string text) const {
    if (text.starts_with("\r\n")) text.erase(0, 2);
    replaceAll(text, folder + "\\", "");
    replaceAll(text, " \r\n", "\r\n");
    replaceAll(text, "\r\n", " / ");
    return text;
  }
  std::string shown() {
    std::string all;
    for (const auto& box : prompts.boxes) all += (all.empty() ? "" : " >> ") + written(box.prompt);
    return all;
  }
  /// What came of it, against the cells of the row.
  void compare(std::int16_t status, std::int16_t answer, const std::string& expectedStatus,
               std::string errors, std::string boxes, const std::string& operation = "") {
    for (std::string* text : {&errors, &boxes}) {
      replaceAll(*text, "#", std::to_string(answer));
      replaceAll(*text, "*", operation);
    }
    EXPECT_EQ(status, expectedStatus == "=" ? answer : number(expectedStatus));
    const std::string list = written(com.popErrorList());
    EXPECT_TRUE(matches(list, errors)) << "the list is:   " << list << "\ninstead of:    " << errors;
    EXPECT_TRUE(matches(shown(), boxes)) << "the boxes are: " << shown() << "\ninstead of:    " << boxes;
    EXPECT_EQ(prompts.busyDepth, 0);
  }
  std::int16_t send(ComCommandsEnum command, const std::string& to) {
    if (to == "line") return com.sendBrodcast(command);
    if (to == "stations") return com.sendToComp(command);
    if (to == "reader") return com.sendToComp(command, CTReader, "Door");
    if (to == "station") return com.sendToComp(command, CTStation, "Local");
    return com.Send(command, 1, to == "reader, silent" ? std::int16_t{3} : std::int16_t{0}, true);
  }
  std::int16_t run(const std::string& operation) {
    if (operation == "week") return library->QDB().WeeklyPrograms().download("C", 3, CTStation, "Local");
    if (operation == "card") return library->QDB().Cardholders().download(1);
    if (operation == "read") return journal().readTransactions(CTReader, "Door");
    return com.TestCom(CTStation, "Local") ? 1 : 0;
  }
  std::string state(const std::string& operation) {
    if (operation == "week" || operation == "card") {
      return query(operation == "week" ? "select WeeklyProgramFlagD from WeeklyPrograms where ProgNum = 3"
                                       : "select CardCodeFlagD from Cardholders") == "False"
                 ? "sent"
                 : "to send";
    }
    if (operation == "read") {
      const auto rows = journal().DB()->openRecordset("select Id from Journal")->recordCount();
      return std::to_string(rows) + (rows == 1 ? " row" : " rows") +
             (driver.count(CmSendClear) > 0 ? ", cleared" : "");
    }
    std::string all;
    const auto rows = db().openRecordset("select * from ComStatus order by StationID, CtrAddr");
    for (; !rows->eof(); rows->moveNext()) {
      all += (all.empty() ? "" : " ") + rows->get("CtrAddr").toText() + "=" + rows->get("Status").toText();
    }
    return all;
  }
  Journal& journal() { return library->QDB().Journal(); }
  Com& com = glob->Com();
};

TEST_F(LineFaultsTest, Operations) {
  std::map<std::string, std::set<std::string>> answered;  // a single controller's, by operation
  const Cells all(std::begin(driverNames), std::begin(driverNames) + 9);
  for (const Cells& row : rowsOf("operations", 8)) {
    const std::string &to = row[1], &cell = row[2];
    for (const std::string& operation : row[0] == "all" ? all : split(row[0], " ")) {
      const auto command =
          static_cast<ComCommandsEnum>(std::find(all.begin(), all.end(), operation) - all.begin());
      for (const Answers& answers : isAbsent(cell) ? std::vector<Answers>{{0}} : alternatives(cell)) {
        SCOPED_TRACE(operation + " to " + to + " answered " + cell + ": " + std::to_string(answers[0]));
        begin(row[3]);
        if (isAbsent(cell)) {
          beAbsent(cell);
        } else {
          driver.answer = [&](const auto&) { return answerTo(answers, driver.calls.size() - 1); };
        }
        compare(send(command, to), answers[0], row[5], row[6], row[7], operation);
        std::string calls;
        for (const auto& call : driver.calls) {
          calls += (calls.empty() ? "" : " ") + std::string(driverNames[call.command]) + ":" +
                   std::to_string(call.address);
        }
        std::string expected = row[4];
        replaceAll(expected, "*", operation);
        EXPECT_EQ(calls, expected);
        if (to == "reader") answered[operation].insert(isAbsent(cell) ? cell : std::to_string(answers[0]));
      }
    }
  }
  // The table has no holes: 0 to 17, 100, 101, 247, 255, -1, both ends of the numbers, no library, no export.
  for (const std::string& operation : all) {
    const bool exported = operation == "RDDAT" || operation == "CONNECT";  // by TwoExports
    EXPECT_EQ(answered[operation].size(), exported ? 26U : 27U) << operation;
  }
}

TEST_F(LineFaultsTest, PublicOperations) {
  for (const Cells& row : rowsOf("public operations", 7)) {
    const Cells operation = split(row[0], ", ");
    std::map<std::string, std::vector<Answers>> byExport;
    std::string varied;  // the operation whose answers are gone through
    for (const std::string& part : isAbsent(row[1]) ? Cells{} : split(row[1], ";")) {
      const Cells named = split(part, ":");
      if (varied.empty()) varied = named.at(0);
      byExport[named.at(0)] = alternatives(named.at(1));
    }
    for (std::size_t n = 0; n < std::max<std::size_t>(byExport[varied].size(), 1); ++n) {
      SCOPED_TRACE(row[0] + " answered " + row[1] + ", " + std::to_string(n) + ", file " + row[2]);
      begin(row[2]);
      resetRows();
      std::map<ComCommandsEnum, std::size_t> asked;
      driver.answer = [&](const auto& call) -> std::int16_t {
        if (call.command == cmReadMemory && operation.back() != "no dump") {
          write("J.DAT", "03 10241226180500081200\r\n");
        }
        const std::string name(driverNames[call.command]);
        if (!byExport.contains(name)) return 100;
        return answerTo(byExport[name][name == varied ? n : 0], asked[call.command]++);
      };
      if (isAbsent(row[1])) beAbsent(row[1]);
      if (operation.back() == "abort") prompts.answers = {Answer::abort};
      if (operation.back() == "ignore") prompts.answers = {Answer::ignore};
      const std::int16_t answer = varied.empty() ? std::int16_t{0} : byExport[varied][n][0];
      compare(run(operation[0]), answer, row[3], row[5], row[6]);
      EXPECT_EQ(state(operation[0]), row[4]);
      clock.moment.days += 1.0 / 86400;  // archives are named by the second
    }
  }
}

}  // namespace
}  // namespace voxa
