// voxa-jet-reader MEMORY SECONDS FILE catalogue
// voxa-jet-reader MEMORY SECONDS FILE rows TABLE
//
// Reads a database file of the Jet engine and writes frames (stream_format.h) to standard output. Such files
// come from strangers: whatever one does to this program, it can neither write nor call anything, and its
// memory (bytes) and processor time are limited.

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "engines/jet_file/reader/library.h"
#include "engines/jet_file/reader/limits.h"
#include "engines/jet_file/reader/output.h"
#include "engines/jet_file/reader/tables.h"

namespace voxa::jet {

namespace {

std::uint64_t numberOf(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value == 0) ::_exit(2);
  return value;
}

// The library has the first page without its mask when it has opened the file. A password lies at 0x42. In
// files of Jet 4 and later the day of their making lies over it. A key lies at 0x3E, and from 0x299 on there
// is another in later ones.
void requireUnlocked(const MdbHandle& file) {
  const std::string_view page(reinterpret_cast<const char*>(file.pg_buf), 4096);
  const bool jet3 = isJet3(file);
  std::string password(page.substr(0x42, jet3 ? 20 : 40));
  if (!jet3) {
    double made = 0;
    std::memcpy(&made, page.data() + 0x72, sizeof made);
    const bool known = std::isfinite(made) && std::fabs(made) < 1e9;
    const auto day = static_cast<std::uint32_t>(static_cast<std::int32_t>(known ? made : 0));
    for (std::size_t i = 0; i < password.size(); ++i)
      password[i] = static_cast<char>(password[i] ^ static_cast<char>(day >> (8 * (i % 4))));
  }
  const bool later = file.f->jet_version >= MDB_VER_ACCDB_2007;
  const bool keyed = wholeAt(page, 0x3E, 4) != 0 || (later && wholeAt(page, 0x299, 2) != 0);
  if (keyed || password.find_first_not_of('\0') != std::string::npos) throw Failed{Failure::locked};
}

bool startsAsJet(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  std::array<char, 20> head{};
  if (file == nullptr || std::fread(head.data(), 1, head.size(), file.get()) != head.size()) return false;
  const std::string_view start(head.data(), head.size());
  constexpr std::string_view jet("\0\1\0\0Standard Jet DB\0", 20);
  constexpr std::string_view ace("\0\1\0\0Standard ACE DB\0", 20);
  return start == jet || start == ace;
}

void run(const std::vector<std::string>& arguments, Output& out) {
  const std::string& path = arguments[2];
  struct stat status {};
  if (!startsAsJet(path) || ::stat(path.c_str(), &status) != 0) throw Failed{Failure::notJet};
  const File file(mdb_open(path.c_str(), MDB_NOFLAGS));
  if (file == nullptr) throw Failed{Failure::damaged};
  if (status.st_size < file->fmt->pg_size) throw Failed{Failure::cutOff};
  requireUnlocked(*file);
  Texts texts(!isJet3(*file), file->f->code_page);
  limitCalls();
  Tables tables(*file, static_cast<std::uint64_t>(status.st_size), texts, out);
  if (arguments[3] == "catalogue") {
    tables.writeCatalogue();
  } else {
    tables.writeRows(arguments[4]);
  }
  out.begin(Frame::end);
  out.number(tables.count(), 4);
  out.end();
}

}  // namespace

}  // namespace voxa::jet

int main(int argc, char** argv) {
  using namespace voxa::jet;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool catalogue = arguments.size() == 4 && arguments[3] == "catalogue";
  if (!catalogue && !(arguments.size() == 5 && arguments[3] == "rows")) {
    (void)std::fputs("Usage: voxa-jet-reader MEMORY SECONDS FILE (catalogue | rows TABLE)\n", stderr);
    return 2;
  }
  limitResources(numberOf(arguments[0]), numberOf(arguments[1]));
  Output out;
  const auto fail = [&](Failure failure) {
    out.begin(Frame::failure);
    out.number(static_cast<std::uint8_t>(failure), 1);
    out.end();
  };
  try {
    run(arguments, out);
  } catch (const Failed& failed) {
    fail(failed.failure);
  } catch (const std::bad_alloc&) {
    ::_exit(12);  // there may be no memory left to tell it with
  }
  out.flush();
  ::_exit(0);  // what the library holds goes with the process
}
