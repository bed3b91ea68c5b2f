#include <dlfcn.h>

#include <string>

#include "platform/icu.h"

namespace voxa {

namespace {

// The file's name and those of its functions have the number of the release. Any that has the functions will
// do, since their arguments do not change.
constexpr int newestRelease = 99;
constexpr int oldestRelease = 50;

struct Icu {
  void* library = nullptr;
  std::string suffix;
};

Icu load() {
  for (int release = newestRelease; release >= oldestRelease; --release) {
    const std::string number = std::to_string(release);
    if (void* const library = ::dlopen(("libicui18n.so." + number).c_str(), RTLD_LAZY | RTLD_LOCAL))
      return {library, "_" + number};
  }
  return {};
}

}  // namespace

IcuFunction icuFunction(const char* name) {
  static const Icu icu = load();
  if (icu.library == nullptr) return nullptr;
  return reinterpret_cast<IcuFunction>(::dlsym(icu.library, (name + icu.suffix).c_str()));
}

}  // namespace voxa
