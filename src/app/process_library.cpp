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
  std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock);
  LibraryDriver driver;
  std::unique_ptr<Prompts> prompts = makeSystemPrompts();
  Library library{{*engine, driver, *prompts, clock}};
};

}  // namespace

Library& processLibrary() {
  static ProcessLibrary process;
  return process.library;
}

}  // namespace voxa
