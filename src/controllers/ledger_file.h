#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/database/database.h"

namespace voxa {

/// The database of the ledger, in the working folder of an installation. It is opened when it is first
/// needed, in an engine of its own: whoever takes back changes of another database takes back nothing of it.
///
/// Its tables: "Controllers", a row a controller and generation; "Things", a row a card, program, holiday or
/// badge format and controller, with what is known of it as text; "Sends", what is being sent; "Unfinished",
/// cards of batches that did not come to their end; "NotUnderstood", command lines of unknown kind;
/// "Digests", what the rows wanted of a part of a controller when it was in order; "CreditsSent", cards of
/// which the marked credit is on its way; "Dialled", stations that somebody has called; "Settings".
class LedgerFile {
 public:
  static constexpr const char* name = "Ledger.MDB";
  [[nodiscard]] static std::string pathIn(const std::string& folder) { return folder + "\\" + name; }

  /// engine: with databases that wait for the disk once a transaction.
  explicit LedgerFile(DatabaseEngine& engine) : engine_(engine) {}

  enum class Opened : std::uint8_t {
    before,  ///< it was open
    now,     ///< it was opened or made
    none     ///< there is none, and none can be made in this folder
  };
  /// Opens the ledger of a folder. A new one gets its tables, and what `begin` writes into them, in one
  /// transaction. Raises what fails; a damaged file raises `err::dbNotADatabase`, one of a
  /// newer version of this system `err::dbVersion`.
  Opened open(const std::string& folder, const std::function<void()>& begin);
  /// A folder in which none could be made is tried again.
  void tryAgain() { impossible_.clear(); }
  void close();
  /// Whether the ledger of that folder is open, and still the file that has its name.
  [[nodiscard]] bool isCurrent(const std::string& folder) const;
  /// Puts a damaged ledger aside, under a name of its own, which is returned; "" when another file has taken
  /// its place meanwhile.
  std::string setAside();
  /// Whether a ledger of that folder was ever put aside: a new one there believes nothing.
  [[nodiscard]] static bool wasDamaged(const std::string& folder);

  [[nodiscard]] bool isOpen() const { return database_ != nullptr; }
  [[nodiscard]] const std::string& folder() const { return folder_; }
  [[nodiscard]] DatabaseEngine& engine() const { return engine_; }
  // Once it is open:
  [[nodiscard]] Database& database() const { return *database_; }
  [[nodiscard]] Command& insertThing() const { return *insertThing_; }      ///< (Id, State)
  [[nodiscard]] Command& updateThing() const { return *updateThing_; }      ///< (State, Id)
  [[nodiscard]] Command& noteChanges() const { return *noteChanges_; }      ///< (Changes, Id)
  [[nodiscard]] Command& noteContact() const { return *noteContact_; }      ///< (LastContact, Id)
  [[nodiscard]] Command& insertDigest() const { return *insertDigest_; }    ///< (Id, Digest)
  [[nodiscard]] Command& deleteDigests() const { return *deleteDigests_; }  ///< (first Id, last Id)

 private:
  [[nodiscard]] std::string path() const { return pathIn(folder_); }
  void prepare();
  void createTables(const std::function<void()>& begin);

  DatabaseEngine& engine_;
  std::string folder_;
  std::string native_;  ///< the path of the file that is open, as the system has it
  std::uint64_t identity_ = 0;
  std::string impossible_;  ///< the folder in which none could be made
  std::shared_ptr<Database> database_;
  std::unique_ptr<Command> insertThing_;
  std::unique_ptr<Command> updateThing_;
  std::unique_ptr<Command> noteChanges_;
  std::unique_ptr<Command> noteContact_;
  std::unique_ptr<Command> insertDigest_;
  std::unique_ptr<Command> deleteDigests_;
};

}  // namespace voxa
