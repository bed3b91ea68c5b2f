#include "simulation/session.h"

#include <stdexcept>

#include "app/qdb.h"
#include "comm/com.h"
#include "engines/sqlite/engine.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/datetime.h"

namespace voxa::simulation {

Session::Session(const World& world, std::uint64_t answers) : world_(world), chance_(answers) {
  fs::current_path(world.folder);
  engine_ = makeSqliteEngine(*this);
  library_ = std::make_unique<Library>(Library::Seams{*engine_, *this, *this, *this});
  glob_ = std::make_unique<Glob>(*library_);
}

Database& Session::db() const {
  return *library_->DB();
}

void Session::makeDatabase() {
  glob_->Strings().createDB();
  glob_->insertStrings();
  static_cast<Paths&>(glob_->Com()) = {world_.folder.string() + "\\KRV.mdb",
                                       world_.folder.string() + "\\S001.ini",
                                       world_.folder.string() + "\\COM.LOG", world_.folder.string()};
  if (glob_->QDB().createDB() != 0 || glob_->QDB().Journal().createDB() != 0) {
    throw std::runtime_error("no database can be made");
  }
}

void Session::open() {
  const std::string folder = world_.folder.string();
  glob_->Initialize(folder + "\\KRV.mdb", folder + "\\S001.ini", folder + "\\COM.LOG", folder);
  if (!library_->DB() || !library_->DB()->isOpen()) throw std::runtime_error("the database does not open");
}

std::int16_t Session::call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) {
  ++calls_;
  if (before) before(calls_);
  const std::int16_t result = driver_.call(command, stationId, controllerAddr);
  if (behind) behind(calls_);
  return result;
}

Answer Session::messageBox(const std::string& /*prompt*/, int style, const std::string& /*title*/) {
  return chance_.of(buttonsOf(style));
}

DateTime Session::now() const {
  const DateTime begin = toDateTime({2026, 12, 24, 18, 5, 0});
  return DateTime{begin.days + static_cast<double>(world_.clockOffset) / 86'400};
}

}  // namespace voxa::simulation
