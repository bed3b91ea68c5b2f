#include "app/engine_choice.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "app/engine_by_file.h"

#ifdef _WIN32
#include "engines/dao/engine.h"
#endif

namespace voxa {

namespace {

constexpr const char* setting = "VOXA_ENGINE";

[[noreturn]] void refuse(const std::string& wish, const char* why) {
  throw Error(err::invalidArgument, std::string(setting) + " is '" + wish + "', " + why);
}

}  // namespace

std::unique_ptr<DatabaseEngine> makeEngine(const Clock& clock, std::shared_ptr<DatabaseEngine> embedded) {
  const char* const set = std::getenv(setting);
  const std::string wish = set == nullptr || *set == '\0' ? "embedded" : set;
  const bool installs = wish == "installed" || wish.starts_with("installed:");
  if (!installs && wish != "embedded")
    refuse(wish, "which is none of embedded, installed and installed:CLASS");
#ifdef _WIN32
  DaoOptions options;
  const std::string className = wish.substr(std::min(wish.size(), sizeof "installed:" - 1));
  if (installs && !className.empty()) options.classes = {className};
  const std::shared_ptr<DatabaseEngine> installed = makeDaoEngine(clock, options);
  if (installs && className.starts_with("KORVA."))
    return std::make_unique<EngineByFile>(installed, std::vector<EngineByFile::Further>(), installed);
  // Whether there is one is asked when a file needs it.
  const auto serves = [options](std::string_view head) { return isJetFile(head) && isDaoInstalled(options); };
  return std::make_unique<EngineByFile>(embedded, std::vector<EngineByFile::Further>{{serves, installed}},
                                        installs ? installed : embedded);
#else
  (void)clock;
  if (installs) refuse(wish, "and only Windows can have such a library");
  return std::make_unique<EngineByFile>(embedded, std::vector<EngineByFile::Further>(), embedded);
#endif
}

}  // namespace voxa
