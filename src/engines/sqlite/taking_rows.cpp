// All rows of a table from another file of this engine, at once.

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"

namespace voxa {

namespace {

constexpr const char* attached = "taken";

}  // namespace

bool SqliteDatabase::takeRows(Database& from, std::string_view table) {
  auto* const other = dynamic_cast<SqliteDatabase*>(&from);
  if (other == nullptr || other == this) return false;
  if (!session_->options.secrets.empty() || !other->session().options.secrets.empty()) return false;
  return session_->guarded([&] {
    OpenFile& open = file();
    // What the other one has not committed another connection does not see.
    if (!open.locked || other->opened().locked) return false;
    if (definition(table).fields != other->definition(table).fields) return false;
    if (!open.takenFrom.empty() && open.takenFrom != other->name()) return false;
    if (open.takenFrom.empty()) {
      open.connection.run("ATTACH " + ddl::quoteText(other->name()) + " AS " + attached);
      open.takenFrom = other->name();
    }
    const std::string name = ddl::quoteName(definition(table).name);
    // Of two tables that are defined alike SQLite copies whole records, when both are named by a star.
    Statement all =
        open.connection.prepareForSchema("INSERT INTO main." + name + " SELECT * FROM " + attached + "." +
                                         ddl::quoteName(other->definition(table).name));
    const int code = all.step();
    if ((code & 0xff) == SQLITE_CONSTRAINT) return false;
    if (code != SQLITE_DONE) open.connection.fail(code);
    ++generation_;
    return true;
  });
}

void SqliteDatabase::letGo() {
  OpenFile& open = opened();
  if (open.takenFrom.empty()) return;
  open.takenFrom.clear();
  open.connection.run(std::string("DETACH ") + attached);
}

}  // namespace voxa
