#pragma once

#include <optional>

#include "platform/ui/prompts.h"
#include "work/line_test.h"

namespace voxa::cli {

class Session;

/// Tests the lines to a component before something is sent, and asks what to do about controllers that are
/// not known to answer: to go on without them, to test again, or to abort. None when the person aborted; a
/// Refusal when the test failed and nobody can be asked about.
[[nodiscard]] std::optional<LineTest> testedLines(Session& session, const Component& component);

/// One test and its question, to which the answer is ignore when there is nobody to ask about, and where
/// communications are inhibited.
[[nodiscard]] Answer testAndAsk(Session& session, const Component& component, LineTest& test);

}  // namespace voxa::cli
