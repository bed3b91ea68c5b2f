#include "host_texts.h"

#include <string>

#include "messages/strings.h"

namespace voxa {

namespace {

struct HostText {
  const char* mnemonic;
  const char* english;
  bool isName = false;  // of a built-in record
};

constexpr HostText hostTexts[] = {
    {"MDIkrvCaption", "VOXA"},
    {"msgError", "Error"},
    {"msgComErr301", "The line or the controller does not answer"},
    {"msgComErr0", "The driver had nothing to send"},
    {"msgComErr1", "No such controller on the line"},
    {"msgComErr2", "The controller does not answer"},
    {"msgComErr3", "The answer is garbled: the line may run at another speed"},
    {"msgComErr4", "The controller refuses the command"},
    {"msgComErr5", "The line broke"},
    {"msgComErr14", "The driver cannot read or write its files"},
    {"msgComErr15", "The driver does not find the command file"},
    {"msgComErr16", "The driver does not find the ini file of the station"},
    {"msgComErr101", "The controller's transaction memory has overflowed"},
    {"msgComErr247", "These controllers do not answer"},
    {"msgChooseAbort1", "These controllers do not answer:"},
    {"msgChooseAbort2", "Abort: send nothing."},
    {"msgChooseAbort3", "Retry: ask the controllers again."},
    {"msgChooseAbort4", "Ignore: go on without them."},
    {"msgIllegalName", "This file belongs to the installation and cannot be chosen"},
    {"msgCantInsertMessage", "Can't store a message text"},
    {"msgCantFind", "Can't find"},
    {"msgCantFindBadgeFormat", "Can't find badge format"},
    {"msgUICantConnect", "Can't connect to station"},
    {"msgUICantDisconnect", "Can't disconnect from station"},
    {"msgUIStationConnected", "Station connected"},
    {"msgUIStationDisconnected", "Station disconnected"},
    {"msgUIBufferFullNotCompatible", "The controller's transaction memory cannot be read by this version"},
    {"nameWeeklyProgNever", "Never", true},
    {"nameBadgeFormatDefault", "Default", true},
    {"LogProcessStart", "Reading of transactions begins"},
    {"LogProcessEnd", "Reading of transactions ends"},
    {"LogConnect", "Connecting station"},
    {"LogDisconnect", "Disconnecting station"},
    {"LogControllerStart", "Controller begins"},
    {"LogControllerEnd", "Controller ends"},
    {"LogReset", "Resetting the read pointer"},
    {"LogReadTrans", "Reading transactions"},
    {"LogDelete", "Deleting transactions"},
};

}  // namespace

int insertHostTexts(Strings& strings) {
  constexpr std::int16_t nameWidth = 2000;
  for (const HostText& text : hostTexts) {
    const std::int16_t failed = strings.insert(text.mnemonic, text.english, text.isName ? nameWidth : 0,
                                               "VOXA caller", text.isName ? "Name" : "Message");
    if (failed != 0) return failed;
  }
  return 0;
}

}  // namespace voxa
