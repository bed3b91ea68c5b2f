#pragma once

#include <optional>
#include <string>

#include "work/line_test.h"

namespace voxa::cli {

class Session;

/// Tests the lines to a component before something is sent, and asks what to do about controllers that are
/// not known to answer: to go on without them, to test again, or to abort. None when the person aborted; a
/// Refusal when the test failed and nobody can be asked about.
[[nodiscard]] std::optional<LineTest> testedLines(Session& session, const Component& component);

/// Tests the controller of one reader before it is read. When it does not answer the person may have it
/// tested again; otherwise there is nothing to read. test: what the last test found.
[[nodiscard]] bool readerAnswers(Session& session, const std::string& reader, LineTest& test);

}  // namespace voxa::cli
