#pragma once

namespace voxa {
struct ReaderSettingTexts;
}

namespace voxa::cli {

class Command;
class Session;

/// The options that say how a door works.
void addReaderSettings(Command& command, ReaderSettingTexts& texts);
/// Adds "show", which prints one reader with its groups and settings.
void addShowReaderCommand(Command& group, Session& session);

}  // namespace voxa::cli
