#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/access_context.h"
#include "comm/com_types.h"
#include "platform/driver/driver.h"
#include "platform/notice.h"
#include "platform/observer.h"
#include "tables/table.h"

namespace voxa {

/// The journal: what happened at the doors. Table "Journal" in a database file of its own, `dbName` in the
/// current folder, which is opened with the main database.
///
/// Reading empties the transaction memory of controllers into it. The driver writes a memory into the work
/// file "J.DAT" of the current folder; its lines become rows in one database transaction; the file is kept
/// under the controller's base name ("J00305": station 3, controller 5) as ".DAT", the one before as ".OLD",
/// and copied into the archive folder "Backup" of `Com.Chemin`. Only when all of that succeeded for the whole
/// memory is the controller told to clear it, so that at any instant a transaction is in the journal, in a
/// file or on the controller. After a failure the next read takes the same memory again, rows included.
///
/// A line that is no transaction does not stop the others: it goes into base name + ".BAD", with the reason,
/// before the rows are committed.
///
/// The database is in journal.cpp, a read on request in journal_read.cpp, a run over many controllers in
/// journal_auto.cpp and journal_controllers.cpp, from a file to rows in journal_decode.cpp, the files of a
/// dump in journal_files.cpp.
class Journal : public Table {
 public:
  static constexpr const char* dbName = "Journal.MDB";

  explicit Journal(AccessContext& context) : Table(context, "Journal"), access_(context) {}

  /// The journal database; empty when it was never opened.
  [[nodiscard]] std::shared_ptr<Database> DB() const { return database_; }
  [[nodiscard]] std::shared_ptr<Database> getDB() override { return database_; }

  /// Opens the journal of the current folder; 0, or the number of the error that was shown.
  std::int16_t openDB();
  /// Creates a new journal with its table in the current folder; 0, or the number of the error that was
  /// shown.
  std::int16_t createDB();
  void createFile();  ///< the same, raising what fails

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;

  /// Reads the controller of one reader (CTReader) or all controllers of one station (CTStation) and clears
  /// what was read. 0: everything is in the journal. Every failure is shown. Otherwise: -1 when the person
  /// aborted, a reader's controller does not answer, or `compType` is another: what was read of all stations
  /// belongs to none of them, stays on the controllers and goes nowhere; the result of the driver call that
  /// failed; 13 when lines could not be decoded (the rest is in the journal, the memory cleared); the number
  /// of an error.
  std::int16_t readTransactions(ComponentType compType, const std::string& compName);
  /// Reads and clears every controller of every station in use, dialling the stations that have a telephone
  /// number, which are in use then, and hanging up afterwards. What is done, and failures, go to the progress
  /// log "Log.txt", made anew, and the run goes on with the next controller. 0, or the result of the first
  /// line that could not be dialled or controller that failed, numbered as above; a failure of the run itself
  /// is shown.
  std::int16_t readAuto();

  /// What came of reading one controller, or of dialling a station's line and hanging up.
  struct ControllerRead {
    ControllerPlace place;     ///< address 0: the line
    std::string name;          ///< for a person
    std::int16_t result = 0;   ///< 0: read and cleared; else numbered as by readTransactions
    std::string failure = {};  ///< what to tell of it

    void fail(std::string text);  ///< adds to the failure
  };
  /// What came of readAuto. A controller is named by it as in the progress log, "North - 5".
  struct Run {
    std::int16_t status = 0;            ///< what readAuto returns
    std::vector<ControllerRead> reads;  ///< each controller, more than once when more than one step failed
    std::vector<Notice> notices;        ///< of a failure of the run itself
  };
  /// readAuto, which shows nothing. observer: told as each controller is begun; null for none.
  Run readEach(Observer* observer);
  /// readTransactions behind a test of the lines: asks and shows nothing. -1 when there is no such component.
  std::int16_t readTested(const Component& component, const Tell& teller);
  /// Reads and clears the controllers of a station one by one, in the order of their addresses. Whoever does
  /// not answer is passed over; what the others held is in the journal, and cleared. Asks nothing and shows
  /// nothing. A failure of the database or of the station's ini file is raised. goOn: asked before each
  /// controller; none is read any more once it says no.
  std::vector<ControllerRead> readStation(std::int16_t station, const std::function<bool()>& goOn = {});
  /// For who reads every few seconds: of a memory without transactions no file is kept, and it is not
  /// cleared.
  bool passesEmptyOver = false;
  /// The code of the last unknown card shown at a reader today, which is read first; the row leaves the
  /// journal. "" when there is none, which is shown.
  std::string getLastCardCode(const std::string& readerName);
  /// The same of what the journal has, without reading: asks and shows nothing.
  std::string takeLastCardCode(const std::string& readerName, const Tell& teller);

 private:
  class AutoRun;

  /// What tells the reads on request from those of a run.
  struct Route {
    std::function<std::int16_t(ComCommandsEnum)> send;
    /// Asked once the memory was read; none ends the read.
    std::function<std::optional<ControllerPlace>()> source;
    /// Tells of a failure: mnemonic, detail, and the current error, which it clears.
    std::function<void(const char*, const std::string&)> fail;
  };

  /// Told of each step that is about to be done.
  using Begins = std::function<void(ComCommandsEnum)>;
  using Fails = std::function<void(const char* mnemonic, const std::string& detail)>;

  /// One controller, when it answers; 0, or the result of what failed.
  std::int16_t readController(const ControllerPlace& source, const Begins& begins, const Fails& fails);
  std::int16_t transfer(const Route& route);
  std::string takeIn(const ControllerPlace& source);
  std::optional<ControllerPlace> sourceOf(ComponentType compType, const std::string& compName);

  [[nodiscard]] static std::string makeFileName(const ControllerPlace& source);
  static void rotateFile(const std::string& baseName);
  std::string decodeFile(std::int16_t stationId, const std::string& baseName);
  void archiveFile(const std::string& baseName);
  [[nodiscard]] bool removeEmptyDump() const;

  std::shared_ptr<Database> database_;
  AccessContext& access_;
};

}  // namespace voxa
