#include "controllers/pending_sends.h"

#include <charconv>
#include <limits>
#include <map>

#include "platform/text.h"

namespace voxa {

namespace {

// As the ledger stores them: a line with the places that get the same lines, "1,1 1,2", the lines, an empty
// one.

std::string textOf(const std::vector<PlannedSend>& sends) {
  std::map<std::string, std::string> placesOf;  // by lines; in what order they are sent does not matter
  for (const PlannedSend& send : sends) {
    std::string lines;
    for (const std::string& line : send.lines) (lines += line) += '\n';
    std::string& places = placesOf[lines];
    if (!places.empty()) places += ' ';
    ((places += std::to_string(send.place.station)) += ',') += std::to_string(send.place.address);
  }
  std::string text;
  for (const auto& [lines, places] : placesOf) (((text += places) += '\n') += lines) += '\n';
  return text;
}

std::int16_t numberOf(std::string_view digits) {
  std::int16_t number = 0;
  (void)std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

void addFrom(std::string_view text, std::vector<PlannedSend>& sends) {
  while (!text.empty()) {
    std::string_view places = takeUntil(text, '\n');
    std::vector<std::string> lines;
    for (std::string_view line = takeUntil(text, '\n'); !line.empty(); line = takeUntil(text, '\n'))
      lines.emplace_back(line);
    while (!places.empty()) {
      std::string_view place = takeUntil(places, ' ');
      const std::int16_t station = numberOf(takeUntil(place, ','));
      sends.push_back({{station, numberOf(place)}, lines});
    }
  }
}

}  // namespace

PendingSends::~PendingSends() {
  leave();
}

std::string PendingSends::fileOf(std::int16_t owner) const {
  return file_.folder() + "\\Ledger" + std::to_string(owner) + ".own";
}

void PendingSends::join() {
  if (sign_) return;
  for (std::int16_t number = 0; number < std::numeric_limits<std::int16_t>::max(); ++number) {
    if ((sign_ = files::OwnedFile::create(fileOf(number)))) {
      owner_ = number;
      // What the last process of that number has left is nobody's.
      file_.database().execute("update Unfinished set Owner = " + std::to_string(nobody) +
                               " where Owner = " + std::to_string(number));
      file_.database().execute("update Dialled set Owner = " + std::to_string(nobody) +
                               " where Owner = " + std::to_string(number));
      return;
    }
    if (!isAtWork(number)) --number;  // it was left behind, and its number is free now
  }
  throw Error(err::tooManyFiles, "Too many programs send to the controllers at once");
}

void PendingSends::leave() noexcept {
  mine_.clear();
  owner_ = nobody;
  if (!sign_) return;
  try {
    sign_->remove();
  } catch (const Error&) {
    // It says nothing wrong: nobody owns it.
  }
  sign_.reset();
}

bool PendingSends::isAtWork(std::int16_t owner) const {
  if (owner == nobody) return false;
  if (owner == owner_) return true;
  const std::string sign = fileOf(owner);
  if (!files::exists(sign)) return false;
  auto left = files::OwnedFile::takeOver(sign);
  if (!left) return files::exists(sign);
  left->remove();
  return false;
}

std::int32_t PendingSends::add(const std::vector<PlannedSend>& sends) {
  const auto rows = file_.database().openRecordset("select * from Sends where Id = 0");
  rows->addNew();
  rows->set("Owner", owner_);
  rows->set("Lines", textOf(sends));
  rows->update();
  const std::int32_t id =
      file_.database().openRecordset("select max(Id) as Last from Sends")->get("Last").toInt32();
  mine_.insert(id);
  return id;
}

bool PendingSends::remove(std::int32_t id) {
  mine_.erase(id);
  return file_.database().execute("delete from Sends where Id = " + std::to_string(id)) != 0;
}

std::vector<PlannedSend> PendingSends::takeAbandoned() {
  std::vector<PlannedSend> sends;
  const auto rows = file_.database().openRecordset("select * from Sends order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t owner = rows->get("Owner").toInt16();
    const bool mine = owner == owner_ && mine_.contains(rows->get("Id").toInt32());
    if (mine || (owner != owner_ && isAtWork(owner))) continue;
    addFrom(rows->get("Lines").toText(), sends);
    rows->remove();
  }
  return sends;
}

std::vector<PlannedSend> PendingSends::sends(const std::string& where) const {
  std::vector<PlannedSend> sends;
  const auto rows = file_.database().openRecordset("select Lines from Sends" + where + " order by Id");
  for (; !rows->eof(); rows->moveNext()) addFrom(rows->get("Lines").toText(), sends);
  return sends;
}

std::vector<PlannedSend> PendingSends::all() const {
  return sends("");
}

std::vector<PlannedSend> PendingSends::ofOthers() const {
  return sends(" where Owner <> " + std::to_string(owner_));
}

}  // namespace voxa
