#include "line_question.h"

#include "comm/com.h"
#include "platform/ui/prompts.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

LineTest shownTest(Session& session, const Component& component) {
  LineTest test = testLines(session.library(), component);
  session.show(test.notices);
  return test;
}

// Ignore is the answer when there is nobody to ask about.
Answer askAbout(Session& session, const LineTest& test) {
  std::vector<ControllerPlace> places;
  for (const Report::Controller& controller : test.silent) places.push_back(controller.place);
  return places.empty() ? Answer::ignore : session.com().askAboutSilent(places);
}

}  // namespace

std::optional<LineTest> testedLines(Session& session, const Component& component) {
  for (;;) {
    LineTest test = shownTest(session, component);
    if (test.broken && test.silent.empty()) {
      throw Refusal("the controllers cannot be tested: nothing was sent");
    }
    if (session.com().inhibitCom) return test;
    const Answer answer = askAbout(session, test);
    if (answer == Answer::abort) return std::nullopt;
    if (answer != Answer::retry) return test;
  }
}

bool readerAnswers(Session& session, const std::string& reader, LineTest& test) {
  for (;;) {
    test = shownTest(session, {CTReader, reader});
    if (test.allAnswer || session.com().inhibitCom) return true;
    if (askAbout(session, test) != Answer::retry) return false;
  }
}

}  // namespace voxa::cli
