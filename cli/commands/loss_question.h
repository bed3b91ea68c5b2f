#pragma once

#include <string>

namespace voxa::cli {

class Session;

/// Asks before something is done to much at once, or that cannot be taken back; --yes and --answer yes are
/// Yes. A Refusal when the person does not say Yes, and without a terminal to ask on. question: a sentence
/// that ends with "?".
void requireYes(Session& session, const std::string& question);

}  // namespace voxa::cli
