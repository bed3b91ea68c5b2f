#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engines/jet_file/catalogue.h"
#include "platform/scratch_folder.h"
#include "platform/value.h"

namespace voxa {

class Clock;
class Database;

namespace jet {

/// A file's tables, rows and queries as a database of the embedded engine, in a folder for this account
/// alone. The folder goes with this object.
class TemporaryCopy {
 public:
  /// Gives the values of each row of a table to `visit`, which says whether it wants the next one.
  using Rows = std::function<void(const TableDef& table, const std::function<bool(const Value*)>& visit)>;

  /// A table whose rows break its own definition is made without rules and with wider types, so that no value
  /// is lost. note: takes what cannot be in the copy. Errors: those of `rows`, 3026 when the disk is full.
  TemporaryCopy(const Clock& clock, const Catalogue& catalogue, const Rows& rows,
                const std::function<void(const std::string&)>& note);

  [[nodiscard]] std::string path() const { return folder_->path() + "/copy.mdb"; }

 private:
  void fill(const Clock& clock, const Catalogue& catalogue, const Rows& rows,
            const std::function<void(const std::string&)>& note) const;
  std::optional<files::ScratchFolder> folder_;
};

}  // namespace jet
}  // namespace voxa
