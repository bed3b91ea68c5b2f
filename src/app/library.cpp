#include "app/library.h"

#include <exception>

#include "app/qdb.h"
#include "comm/com.h"
#include "files/command_file.h"
#include "messages/strings.h"
#include "platform/database/database.h"

namespace voxa {

Library::Library(const Seams& seams)
    : seams_(seams), prompts_(seams.prompts, [this] {
        for (const auto& database : engine().databases()) database->endReading();
      }) {}

Library::~Library() = default;

::voxa::Strings& Library::Strings() {
  if (!strings_) strings_ = std::make_unique<::voxa::Strings>(*this);
  return *strings_;
}

::voxa::Com& Library::Com() {
  if (!com_) com_ = std::make_unique<::voxa::Com>(*this);
  return *com_;
}

::voxa::CommandFile& Library::CommandFile() {
  if (!commandFile_) commandFile_ = std::make_unique<::voxa::CommandFile>(*this);
  return *commandFile_;
}

::voxa::QDB& Library::QDB() {
  if (!qdb_) qdb_ = std::make_unique<::voxa::QDB>(*this);
  return *qdb_;
}

std::int16_t Library::recordFailure() {
  error_ = describeCurrentException();
  return static_cast<std::int16_t>(error_.number);
}

void Library::report(const FailureMessage& message) {
  Strings().display(message.mnemonic, message.method, message.argument);
  error_.clear();
}

void Library::warn(const FailureMessage& message) {
  Strings().display(message.mnemonic, message.method, message.argument, style::exclamation);
  error_.clear();
}

void Library::showLater(const std::function<void()>& body) {
  std::exception_ptr failure;
  prompts_.hold();
  try {
    body();
  } catch (...) {
    failure = std::current_exception();
  }
  prompts_.release();
  if (failure) std::rethrow_exception(failure);
}

std::int16_t Library::takeFileNumber() {
  std::int16_t number = 1;
  for (const std::int16_t used : fileNumbers_) {
    if (used != number) break;
    ++number;
  }
  if (number > 511) throw Error(err::tooManyFiles, "Too many files");
  fileNumbers_.insert(number);
  return number;
}

}  // namespace voxa
