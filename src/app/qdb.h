#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

class Alarm;
class AccessGroup;
class BadgeFormat;
class Cardholder;
class DailyProgram;
class Database;
class Holidays;
class ITable;
class Journal;
class Library;
class Reader;
class Station;
class Table;
class WeeklyProgram;
struct FailureMessage;
struct TableDef;

/// The container: the open main database and one object per table. States: no database open, or one open;
/// saving and restoring pass through a closed file and end with `Com.AppDB` open again.
class QDB {
 public:
  explicit QDB(Library& library);
  ~QDB();  ///< closes the main database, whatever that says
  QDB(const QDB&) = delete;
  QDB& operator=(const QDB&) = delete;

  /// The open main database; empty when none is open.
  [[nodiscard]] std::shared_ptr<Database> DB() const { return database_; }
  /// The same for whoever cannot do without: raises `err::objectNotSet` when none is open.
  [[nodiscard]] Database& database() const;

  [[nodiscard]] ::voxa::Cardholder& Cardholders() { return *cardholders_; }
  [[nodiscard]] ::voxa::Reader& Readers() { return *readers_; }
  [[nodiscard]] ::voxa::DailyProgram& DailyPrograms() { return *dailyPrograms_; }
  [[nodiscard]] ::voxa::Holidays& Holidays() { return *holidays_; }
  [[nodiscard]] ::voxa::WeeklyProgram& WeeklyPrograms() { return *weeklyPrograms_; }
  [[nodiscard]] ::voxa::AccessGroup& AccessGroups() { return *accessGroups_; }
  [[nodiscard]] ::voxa::Station& Stations() { return *stations_; }
  [[nodiscard]] ::voxa::Alarm& Alarms() { return *alarms_; }
  /// Not registered: an installation without badge formats has no such table (see BadgeFormat::CreateTable).
  [[nodiscard]] ::voxa::BadgeFormat& BadgeFormat() { return *badgeFormat_; }
  [[nodiscard]] ::voxa::Journal& Journal() { return *journal_; }

  /// The registered table of that name, in any case: Stations, DailyPrograms, Holidays, WeeklyPrograms,
  /// Readers, AccessGroups, Cardholders, Journal, Alarms. Raises `err::invalidArgument` for any other name.
  [[nodiscard]] ITable& tables(std::string_view tableName) const;
  /// What createDB makes: every table of a main database with its columns.
  [[nodiscard]] std::vector<TableDef> definitions();

  /// Builds a new database at `Com.AppDB`: every registered table but the journal with its default rows, the
  /// tables that belong to them, then the relations; then a new journal in place of the open one. Asks first
  /// when a database is open. 0, -1 when the person cancelled, or the number of the error that was shown.
  std::int16_t createDB();
  /// Opens `Com.AppDB`; 0, or the number of the error that was shown: then the database that was open stays.
  std::int16_t openCommonDB();
  /// openCommonDB, then the journal. Always 0: failures are known from their messages.
  std::int16_t openDB();
  /// Saves a copy of the database file under a name the person picks / copies a saved file over it, and opens
  /// `Com.AppDB` again. 0, -1 when cancelled or refused, or the number of the error that was shown.
  std::int16_t saveDB();
  std::int16_t restoreDB();

 private:
  void registerTable(Table& table);
  bool confirmReplace();  // true when a new database may be created
  bool mayReplace(const Database& database, const char* mnemonic, bool overwriteAllowed,
                  const std::function<void()>& openAgain);
  void openFile(const std::string& path);  // raises; then the database that was open stays
  void reopen(const std::string& name);
  void buildTables();
  std::int16_t throughClosedFile(const char* method,
                                 const std::function<std::int16_t(const std::string&)>& work);

  Library& library_;
  std::shared_ptr<Database> database_;
  std::unique_ptr<::voxa::Station> stations_;
  std::unique_ptr<::voxa::DailyProgram> dailyPrograms_;
  std::unique_ptr<::voxa::Holidays> holidays_;
  std::unique_ptr<::voxa::WeeklyProgram> weeklyPrograms_;
  std::unique_ptr<::voxa::Reader> readers_;
  std::unique_ptr<::voxa::AccessGroup> accessGroups_;
  std::unique_ptr<::voxa::Cardholder> cardholders_;
  std::unique_ptr<::voxa::Journal> journal_;
  std::unique_ptr<::voxa::Alarm> alarms_;
  std::unique_ptr<::voxa::BadgeFormat> badgeFormat_;
  std::vector<Table*> registry_;  // in the order of building
};

}  // namespace voxa
