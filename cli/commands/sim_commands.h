#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Session;

/// "swipe" of the group "sim".
void addSwipeCommand(CLI::App& group, Session& session);

}  // namespace voxa::cli
