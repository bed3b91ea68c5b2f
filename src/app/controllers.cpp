#include "app/controllers.h"

#include <algorithm>

#include "platform/clock.h"
#include "work/access_questions.h"
#include "work/card_values.h"
#include "work/carry_out.h"
#include "work/controllers.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::optional<std::set<ControllerPlace>> places(Installation& context, const std::string& stationName,
                                                const std::string& readerName) {
  if (!stationName.empty() && !readerName.empty())
    throw Refusal("give the name of a station or of a reader, not both");
  return placesOf(context, stationName, readerName);
}

/// Why a controller did not get a thing: what it said to that one, or why it could not be sent anything.
std::string whyMissing(const CarriedOut& controller, const std::string& thing) {
  for (const std::string& refused : controller.refused) {
    if (refused == thing || refused.starts_with(thing + ": "))
      return "; refused" + refused.substr(thing.size());
  }
  return controller.reason.empty() ? "" : "; " + controller.reason;
}

void addItems(std::vector<Controllers::Item>& items, const std::string& controller,
              const std::vector<PlanItem>& missing, const std::vector<LeftOut>& leftOut,
              const CarriedOut& tried = {}) {
  for (const PlanItem& item : missing) {
    const std::string thing = nameOf(item.kind, item.number);
    items.push_back({controller, thing, textOf(item.action), textOf(item.reason) + whyMissing(tried, thing)});
  }
  for (const LeftOut& row : leftOut) items.push_back({controller, row.row, "leave out", row.reason});
}

/// A line for each answer, whatever characters the names have.
std::string linesOf(const std::vector<AccessAnswer>& answers) {
  std::string lines;
  for (const AccessAnswer& answer : answers) {
    const bool asksCode = answer.opens && answer.personalCode;
    std::string line = sentenceOf(answer) + (asksCode ? "; the reader may ask for the personal code" : "") +
                       "; known at " + whereKnown(answer);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' '; }, ' ');
    lines += (lines.empty() ? "" : "\r\n") + line;
  }
  return lines;
}

}  // namespace

std::int16_t Controllers::attempt(const char* mnemonic, const char* member,
                                  const std::function<void()>& body) {
  std::optional<Refusal> refused;
  const std::int16_t status = context_.attempt({mnemonic, member}, [&] {
    try {
      body();
    } catch (const Refusal& refusal) {
      refused = refusal;
    }
  });
  if (!refused) return status;
  DisplayArgument about = Value(refused->what());
  if (refused->mnemonic().empty()) about = ErrorInfo{err::invalidArgument, refused->what()};
  context_.report({refused->mnemonic(), member, about});
  return err::invalidArgument;
}

std::int32_t Controllers::plan(const std::string& stationName, const std::string& readerName) {
  items_.clear();
  const std::int16_t status = attempt("msgUnexpecErr", "Controllers.plan", [&] {
    const WholePlan whole = planAll(context_, {{}, places(context_, stationName, readerName), false});
    std::vector<Item> items;
    for (const PlannedController& controller : whole.controllers)
      addItems(items, controller.name, controller.plan.items, controller.plan.leftOut);
    addItems(items, "", {}, whole.leftOut);
    items_ = std::move(items);
  });
  return status == 0 ? static_cast<std::int32_t>(items_.size()) : -1;
}

Controllers::Item Controllers::item(std::int32_t index) const {
  const bool there = index >= 0 && static_cast<std::size_t>(index) < items_.size();
  return there ? items_[static_cast<std::size_t>(index)] : Item();
}

std::int16_t Controllers::download(const std::string& stationName, const std::string& readerName, bool full,
                                   bool dial) {
  return carryOut("Controllers.download", [&] {
    return CarryOut{{{}, places(context_, stationName, readerName), full}, dial};
  });
}

std::int16_t Controllers::downloadCard(std::int32_t cardNum) {
  return carryOut("Controllers.downloadCard", [&] {
    return CarryOut{{cardNumber(std::to_string(cardNum)), {}, false}};
  });
}

std::int16_t Controllers::carryOut(const char* member, const std::function<CarryOut()>& how) {
  items_.clear();
  bool complete = false;
  const std::int16_t status = attempt("msgCantDownload", member, [&] {
    const CarriedOutPlan carried = voxa::carryOut(context_, how());
    for (const CarriedOut& controller : carried.controllers)
      addItems(items_, controller.name, controller.missing, controller.leftOut, controller);
    addItems(items_, "", {}, carried.leftOut);
    context_.show(carried.notices);
    complete = carried.isComplete();
  });
  return status != 0 || complete ? status : somethingMissing;
}

std::int16_t Controllers::replaced(const std::string& stationName, std::int16_t address, bool usedElsewhere) {
  return attempt("msgUnexpecErr", "Controllers.replaced",
                 [&] { noteReplaced(context_, stationName, std::to_string(address), usedElsewhere); });
}

bool Controllers::mayOpen(const std::string& card, const std::string& door, std::optional<DateTime> at) {
  const auto answers = ask("Controllers.mayOpen", at, [&](AccessQuestions& questions, DateTime moment) {
    return std::vector{questions.mayOpen(card, door, moment)};
  });
  return !answers.empty() && answers.front().opens;
}

std::string Controllers::whyOpen(const std::string& card, const std::string& door,
                                 std::optional<DateTime> at) {
  return linesOf(ask("Controllers.whyOpen", at, [&](AccessQuestions& questions, DateTime moment) {
    return std::vector{questions.mayOpen(card, door, moment)};
  }));
}

std::string Controllers::whoOpens(const std::string& door, std::optional<DateTime> at) {
  return linesOf(ask("Controllers.whoOpens", at, [&](AccessQuestions& questions, DateTime moment) {
    return questions.whoOpens(door, moment);
  }));
}

std::string Controllers::whatOpens(const std::string& card, std::optional<DateTime> at) {
  return linesOf(ask("Controllers.whatOpens", at, [&](AccessQuestions& questions, DateTime moment) {
    return questions.whatOpens(card, moment);
  }));
}

std::vector<AccessAnswer> Controllers::ask(const char* member, std::optional<DateTime> at,
                                           const Question& question) {
  std::vector<AccessAnswer> answers;
  (void)attempt("msgUnexpecErr", member, [&] {
    AccessQuestions questions(context_);
    answers = question(questions, at.value_or(context_.clock().now()));
  });
  return answers;
}

}  // namespace voxa
