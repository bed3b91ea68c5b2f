#include "app/engine_choice.h"
#include "app/glob.h"
#include "app/library.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/library_driver.h"
#include "platform/ui/prompts.h"
#include "platform/ui/system_prompts.h"

namespace voxa {

namespace {

struct ProcessLibrary {
  SystemClock clock;
  std::shared_ptr<DatabaseEngine> embedded = makeSqliteEngine(clock);
  std::unique_ptr<DatabaseEngine> engine = makeEngine(clock, embedded);
  LibraryDriver driver;
  std::unique_ptr<Prompts> prompts = makeSystemPrompts();
  Library library{{*engine, driver, *prompts, clock}};
};

ProcessLibrary& process() {
  static ProcessLibrary made;
  return made;
}

}  // namespace

Library& processLibrary() {
  return process().library;
}

DatabaseEngine& processEmbeddedEngine() {
  return *process().embedded;
}

}  // namespace voxa
