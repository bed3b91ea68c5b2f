#include "controllers/ledger.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "access/access_context.h"
#include "controllers/assumptions.h"
#include "controllers/ledger_settings.h"
#include "controllers/ledger_view.h"
#include "controllers/replacement.h"
#include "controllers/unfinished_cards.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"

namespace voxa {

namespace {

// The driver finds the name in the station's ini file, where the system always writes this one.
constexpr const char* commandFile = "COMMAND.TXT";

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    std::string_view line = takeUntil(text, '\n');
    while (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.empty()) lines.emplace_back(line);
  }
  return lines;
}

// As the command file has them.
std::string textOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) (text += line) += "\r\n";
  return text += "\r\n";
}

// The controllers that the driver asks when it is told to ask each of a line; none when its file names none.
std::vector<ControllerPlace> askedControllers(std::int16_t station) {
  std::vector<ControllerPlace> places;
  const auto ini = files::contents("S" + zeroPadded(station, 3) + ".ini");
  for (const std::string& line : linesOf(ini.value_or(""))) {
    if (!line.starts_with("TER:")) continue;
    std::string_view list = std::string_view(line).substr(4);
    while (!list.empty()) {
      const std::string_view digits = takeUntil(list, ',');
      std::int16_t address = 0;
      (void)std::from_chars(digits.data(), digits.data() + digits.size(), address);
      if (isOfController(address)) places.push_back({station, address});
    }
  }
  return places;
}

}  // namespace

Ledger::Ledger(AccessContext& context, DatabaseEngine& engine)
    : context_(context), file_(engine), pending_(file_) {}

Ledger::~Ledger() = default;

void Ledger::tell(const Error& error) {
  context_.error() = {error.number(), error.description()};
  context_.report({"msgUnexpecErr", "Ledger"});
}

bool Ledger::open() {
  const std::string& folder = context_.paths().Chemin;
  if (file_.isCurrent(folder)) return true;
  if (file_.folder() != folder) block_.reset();
  pending_.leave();
  ++openings_;
  const auto begin = [&] {
    LedgerFile::wasDamaged(folder) ? assumeNothing(file_, context_) : assumeRows(file_, context_);
  };
  try {
    return file_.open(folder, begin) != LedgerFile::Opened::none;
  } catch (const Error& error) {
    if (error.number() != err::dbNotADatabase) throw;
    putAside(error);
  }
  return file_.open(folder, begin) != LedgerFile::Opened::none;
}

void Ledger::provide() {
  const std::string& folder = context_.paths().Chemin;
  file_.tryAgain();
  if (folder.empty() || files::exists(LedgerFile::pathIn(folder))) return;
  try {
    (void)open();
  } catch (const Error&) {
    // The next send tries again, and says what is wrong.
  }
}

void Ledger::putAside(const Error& error) {
  pending_.leave();
  const std::string aside = file_.setAside();
  if (aside.empty()) return;  // another process has done it
  tell(Error(error.number(), "The ledger of what the controllers hold is damaged. It is kept as " + aside +
                                 ", and a new one begins, which knows nothing of any controller: the next "
                                 "download sends everything again. " +
                                 error.description()));
}

template <typename Body>
void Ledger::write(Body body) {
  pending_.join();
  Transaction transaction(file_.engine(), file_.database());
  body();
  transaction.commit();
}

// For what may wait when the ledger cannot be written.
template <typename Body>
bool Ledger::attempt(Body body) {
  try {
    if (!open()) return false;
    write(body);
    return true;
  } catch (const Error& error) {
    failed(error);
  }
  return false;
}

// What processes that are no longer at work were sending may have arrived.
void Ledger::takeAbandoned(ControllerList& controllers) {
  takeInDoubt(controllers, pending_.takeAbandoned());
}

void Ledger::takeInDoubt(ControllerList& controllers, const std::vector<PlannedSend>& sends) {
  std::vector<Result> results;
  for (const PlannedSend& send : sends) {
    for (const ControllerPlace& place : addressed(controllers, send.place).places) {
      results.push_back({place, send.lines, false});
    }
  }
  apply(controllers, results);
}

// What this process has sent. mine: nobody has taken it for dead meanwhile.
void Ledger::applyMine(ControllerList& controllers, std::vector<Result> results, bool mine) {
  const std::vector<PlannedSend> others = pending_.ofOthers();
  if (!mine || !others.empty()) {
    for (Result& result : results) result.certain = false;
  }
  if (others.empty()) return apply(controllers, results);
  // There is one command file: a process that is sending may send what this one wrote into it.
  std::set<std::vector<std::string>> files;
  for (const Result& result : results) files.insert(result.lines);
  for (const PlannedSend& send : others) {
    for (const ControllerPlace& place : addressed(controllers, send.place).places) {
      for (const auto& lines : files) results.push_back({place, lines, false});
    }
  }
  apply(controllers, results);
}

// What was begun in a ledger that another one has replaced since: it has lost count of what else was sent.
void Ledger::applyAnew(std::vector<Result> results) {
  for (Result& result : results) result.certain = false;
  ControllerList controllers(file_.database(), context_);
  apply(controllers, results);
}

void Ledger::apply(ControllerList& controllers, const std::vector<Result>& results) {
  std::map<ControllerPlace, std::vector<SentLines>> byPlace;
  for (const Result& result : results) {
    SentLines& sent = byPlace[result.place].emplace_back();
    sent.lines.assign(result.lines.begin(), result.lines.end());
    sent.certain = result.certain;
  }
  std::set<ControllerPlace> places;
  for (const auto& [place, sent] : byPlace) places.insert(place);
  const std::set<ControllerPlace> changed = controllers.refresh(places);
  for (auto& [place, sent] : byPlace) {
    // Another process sent to it meanwhile: which of the two came last, nobody knows.
    if (changed.contains(place)) {
      for (SentLines& each : sent) each.certain = false;
    }
    LedgerController& controller = controllers.at(place);
    takeLines(file_, controller, sent, context_.clock().now());
    noteSends(controller, sent);
  }
}

void Ledger::noteSends(LedgerController& controller, const std::vector<SentLines>& sent) {
  file_.noteChanges().execute({++controller.changes, controller.id});
  if (std::any_of(sent.begin(), sent.end(), [](const SentLines& each) { return each.certain; }))
    file_.noteContact().execute({context_.clock().now(), controller.id});
}

Ledger::Addressed Ledger::addressed(const ControllerList& controllers, const ControllerPlace& place) const {
  if (isOfController(place.address)) return {{place}, true};
  if (place.address == CmToEachController) {
    if (auto asked = askedControllers(place.station); !asked.empty()) return {std::move(asked), true};
  }
  return {controllers.ofStation(place.station), false};
}

void Ledger::expect(const std::vector<PlannedSend>& sends) {
  if (block_ || sends.empty()) return;  // within another block a send costs waits of its own
  try {
    if (!open()) return;
    write([&] {
      ControllerList controllers(file_.database(), context_);
      takeAbandoned(controllers);
      std::vector<PlannedSend> each;
      for (const PlannedSend& send : sends) {
        for (const ControllerPlace& place : addressed(controllers, send.place).places)
          each.push_back({place, send.lines});
      }
      block_.emplace(Block{pending_.add(each), std::move(controllers), {}, {}, openings_});
    });
    for (const PlannedSend& send : sends) block_->expected[send.place].insert(textOf(send.lines));
  } catch (const Error&) {
    block_.reset();  // each send is put in doubt by itself then, and says what is wrong
  }
}

void Ledger::settle() {
  if (!block_) return;
  Block block = std::move(*block_);
  block_.reset();
  attempt([&] {
    if (block.opening != openings_) return applyAnew(std::move(block.results));
    const bool mine = pending_.remove(block.row);
    applyMine(block.controllers, std::move(block.results), mine);
  });
}

// What is noted as being sent stays in doubt.
void Ledger::failed(const Error& error) {
  try {
    if (error.number() == err::dbNotADatabase && file_.isOpen()) return putAside(error);
  } catch (const Error&) {
    // It is in use elsewhere: the next send tries again.
  }
  tell(error);
}

Ledger::Block* Ledger::block() {
  return block_ && block_->opening == openings_ ? &*block_ : nullptr;
}

bool Ledger::isExpected(const ControllerPlace& place, const std::string& text) {
  const Block* announced = block();
  if (announced == nullptr) return false;
  const auto has = [&](const ControllerPlace& there) {
    const auto texts = announced->expected.find(there);
    return texts != announced->expected.end() && texts->second.contains(text);
  };
  return has(place) || has({place.station, CmToEachController});
}

Ledger::Call Ledger::begin(const ControllerPlace& driverPlace) {
  try {
    return beginOnce(driverPlace);
  } catch (const Error& error) {
    if (error.number() != err::dbNotADatabase || !file_.isOpen()) throw;
    putAside(error);
  }
  return beginOnce(driverPlace);
}

Ledger::Call Ledger::beginOnce(const ControllerPlace& driverPlace) {
  Call call;
  if (!open()) return call;
  call.kept = true;
  call.opening = openings_;
  ControllerPlace place = driverPlace;
  if (const int own = place.address - driverAddressOffset; isOfController(own)) {
    place.address = static_cast<std::int16_t>(own);
  } else if (place.address != CmToEachController) {
    place.address = CmToAllControllers;  // any other address may be anybody's
  }
  const auto file = files::contents(commandFile);
  call.text = fromCp1252(file.value_or(""));
  call.lines = linesOf(call.text);
  // A file that cannot be read may set anything: a code alone stands for everything of its kind.
  if (!file) call.lines = {"04", "09", "31", "32", "34", "42"};
  if (isExpected(place, call.text)) {
    call.to = addressed(block_->controllers, place);
    return call;
  }
  write([&] {
    ControllerList& controllers =
        block() ? block()->controllers : call.controllers.emplace(file_.database(), context_);
    takeAbandoned(controllers);
    call.to = addressed(controllers, place);
    std::vector<PlannedSend> sends;
    for (const ControllerPlace& each : call.to.places) sends.push_back({each, call.lines});
    call.row = pending_.add(sends);
  });
  return call;
}

void Ledger::end(Call& call, std::optional<std::int16_t> result) {
  if (!call.kept) return;
  // Another process that wrote the file meanwhile may have had the driver send its own lines.
  const std::string text = fromCp1252(files::contents(commandFile).value_or(""));
  const bool certain = call.to.byName && result == driverSuccess && text == call.text;
  const std::vector<std::string> others = text == call.text ? std::vector<std::string>{} : linesOf(text);
  std::vector<Result> results;
  for (const ControllerPlace& place : call.to.places) {
    results.push_back({place, call.lines, certain});
    if (!others.empty()) results.push_back({place, others, false});
  }
  if (!call.row && block_) {
    std::move(results.begin(), results.end(), std::back_inserter(block_->results));
    return;
  }
  const bool noted = attempt([&] {
    const bool known = block() != nullptr || call.controllers;
    if (call.opening != openings_ || !known) return applyAnew(std::move(results));
    // What was sent before it within the block comes first.
    if (block()) applyMine(block()->controllers, block()->results, true);
    const bool mine = !call.row || pending_.remove(*call.row);
    applyMine(block() ? block()->controllers : *call.controllers, std::move(results), mine);
  });
  if (noted && block()) block()->results.clear();
}

void Ledger::withdraw(Call& call) {
  if (!call.row) return;
  attempt([&] {
    if (call.opening == openings_) pending_.remove(*call.row);
  });
}

bool Ledger::look(const std::function<void(LedgerView&)>& body) {
  if (!open()) return false;
  // What is being sent is taken in as if its process were gone, and given back at the end.
  Transaction transaction(file_.engine(), file_.database());
  ControllerList list(file_.database(), context_);
  const std::vector<PlannedSend> pending = pending_.all();
  takeInDoubt(list, pending);
  LedgerView view(file_, list, pending.empty());
  body(view);
  if (pending.empty()) transaction.commit();
  return true;
}

Holdings Ledger::holdings(const ControllerPlace& place) {
  Holdings holdings;
  (void)look([&](const LedgerView& view) { holdings = view.holdings(place); });
  return holdings;
}

void Ledger::replace(const ControllerPlace& place, bool usedElsewhere) {
  if (!open()) return;
  write([&] {
    ControllerList list(file_.database(), context_);
    replaceController(file_, list, place, usedElsewhere);
  });
}

void Ledger::carryOver(const ControllerPlace& from, const ControllerPlace& to) {
  if (!open()) return;
  write([&] { ControllerList(file_.database(), context_).carryOver(from, to); });
}

void Ledger::noteFourIntervals(bool four) {
  if (open()) write([&] { storeFourIntervals(file_.database(), four); });
}

void Ledger::beginCredits(const std::map<std::int32_t, std::vector<ControllerPlace>>& controllers) {
  if (controllers.empty() || !open()) return;
  write([&] {
    ControllerList list(file_.database(), context_);
    voxa::beginCredits(file_, list, controllers);
  });
}

void Ledger::endCredits(const std::vector<std::int32_t>& numbers) {
  if (numbers.empty()) return;
  attempt([&] {
    for (const std::int32_t number : numbers)
      file_.database().execute("delete from CreditsSent where Id = " + std::to_string(number));
  });
}

bool Ledger::noteUnfinished(const std::vector<UnfinishedCards>& cards, bool underWay) {
  return cards.empty() || attempt([&] {
           ControllerList list(file_.database(), context_);
           voxa::noteUnfinished(file_.database(), list, cards,
                                underWay ? pending_.owner() : PendingSends::nobody);
         });
}

std::vector<UnfinishedCards> Ledger::unfinished() {
  std::vector<UnfinishedCards> cards;
  attempt([&] {
    ControllerList list(file_.database(), context_);
    takeAbandoned(list);
    cards = unfinishedCards(file_.database(), list, pending_);
  });
  return cards;
}

void Ledger::forgetUnfinished(const std::vector<UnfinishedCards>& cards) {
  if (cards.empty()) return;
  attempt([&] {
    ControllerList list(file_.database(), context_);
    voxa::forgetUnfinished(file_.database(), list, cards);
  });
}

void Ledger::noteCall(std::int16_t station) {
  attempt([&] {
    const auto row =
        file_.database().openRecordset("select * from Dialled where Id = " + std::to_string(station));
    row->eof() ? row->addNew() : row->edit();
    row->set("Id", static_cast<std::int32_t>(station));
    row->set("Owner", pending_.owner());
    row->update();
  });
}

void Ledger::forgetCall(std::int16_t station) {
  attempt([&] { file_.database().execute("delete from Dialled where Id = " + std::to_string(station)); });
}

std::vector<std::int16_t> Ledger::abandonedCalls() {
  std::vector<std::int16_t> stations;
  attempt([&] {
    const auto rows = file_.database().openRecordset("select * from Dialled order by Id");
    for (; !rows->eof(); rows->moveNext()) {
      const std::int16_t owner = rows->get("Owner").toInt16();
      if (owner == pending_.owner() || pending_.isAtWork(owner)) continue;
      stations.push_back(rows->get("Id").toInt16());
    }
  });
  return stations;
}

}  // namespace voxa
