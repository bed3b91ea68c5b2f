#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Installation;

/// "swipe" of the group "sim".
void addSwipeCommand(CLI::App& group, Installation& installation);

}  // namespace voxa::cli
