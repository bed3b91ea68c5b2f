#include "line_question.h"

#include "comm/com.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

Answer testAndAsk(Session& session, const Component& component, LineTest& test) {
  test = testLines(session.library(), component);
  session.show(test.notices);
  if (test.silent.empty() || session.com().inhibitCom) return Answer::ignore;
  std::vector<ControllerPlace> places;
  for (const Report::Controller& controller : test.silent) places.push_back(controller.place);
  return session.com().askAboutSilent(places);
}

std::optional<LineTest> testedLines(Session& session, const Component& component) {
  LineTest test;
  for (;;) {
    const Answer answer = testAndAsk(session, component, test);
    if (test.broken && test.silent.empty()) {
      throw Refusal("the controllers cannot be tested: nothing was sent");
    }
    if (answer == Answer::abort) return std::nullopt;
    if (answer != Answer::retry) return test;
  }
}

}  // namespace voxa::cli
