#include "app/glob.h"
#include "app/library.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/database/sqlite/engine.h"
#include "platform/driver/library_driver.h"
#include "platform/ui/console_prompts.h"

#include <iostream>

namespace voxa {

namespace {

struct ProcessLibrary {
  SystemClock clock;
  std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock);
  LibraryDriver driver;
  ConsolePrompts prompts{std::cin, std::cerr, ConsolePrompts::isTerminal()};
  Library library{{*engine, driver, prompts, clock}};
};

}  // namespace

Library& processLibrary() {
  static ProcessLibrary process;
  return process.library;
}

}  // namespace voxa
