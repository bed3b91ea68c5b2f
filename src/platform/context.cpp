#include "platform/context.h"

#include <exception>
#include <utility>

#include "platform/database/database.h"

namespace voxa {

namespace {

void tell(Context& context, const FailureMessage& message, int style) {
  if (message.error.number != 0) context.error() = message.error;
  context.messages().display(message.mnemonic, message.method, message.argument, style);
  context.error().clear();
}

}  // namespace

Context::Context(const Seams& seams)
    : seams_(seams), prompts_(seams.prompts, [this] {
        for (const auto& database : engine().databases()) database->endReading();
      }) {}

Context::~Context() = default;

std::int16_t Context::recordFailure() {
  error_ = describeCurrentException();
  return static_cast<std::int16_t>(error_.number);
}

void Context::report(const FailureMessage& message) {
  tell(*this, message, style::critical);
}

void Context::warn(const FailureMessage& message) {
  tell(*this, message, style::exclamation);
}

FailureMessage Context::kept(FailureMessage message) {
  message.error = std::exchange(error_, {});
  return message;
}

void Context::show(const std::vector<Notice>& notices) {
  for (const Notice& notice : notices) {
    notice.kind == Notice::Kind::warning ? warn(notice.message) : report(notice.message);
  }
}

void Context::showLater(const std::function<void()>& body) {
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

std::int16_t Context::takeFileNumber() {
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
