#pragma once

namespace voxa::cli {

class Command;
class Session;

/// "swipe" of the group "sim".
void addSwipeCommand(Command& group, Session& session);

}  // namespace voxa::cli
