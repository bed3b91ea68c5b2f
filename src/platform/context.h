#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "platform/error.h"
#include "platform/ui/held_prompts.h"
#include "platform/value.h"

namespace voxa {

class Clock;
class DatabaseEngine;
class Driver;

/// What a message may add to its text: nothing, a value shown as text, or an error object whose number and
/// description become the current error.
using DisplayArgument = std::variant<std::monostate, Value, ErrorInfo>;

/// A message about a failure: the mnemonic of its text, the name that a person reads for the method that
/// failed ("Station.getId"), and what the failure was about.
struct FailureMessage {
  std::string_view mnemonic;
  std::string method;
  DisplayArgument argument = {};
  ErrorInfo error =
      {};  ///< of a message that is kept: the current error that it is shown with (Context::kept)
};

/// A message as a value, for whoever shows it later.
struct Notice {
  enum class Kind : std::uint8_t {
    warning,   ///< done; a person is to know something of it
    leftover,  ///< done, with something left that needs a person
    failure
  };
  Kind kind = Kind::failure;
  FailureMessage message;
};

/// The texts for a person, as the rooms that only use them see them.
class Messages {
 public:
  virtual ~Messages() = default;
  /// The text of a mnemonic; "" for one that is not known. Never fails.
  [[nodiscard]] virtual std::string read(std::string_view mnem) = 0;
  /// Shows one message box: the text, the argument, the current error, the method. msgStyle: of prompts.h.
  virtual void display(std::string_view mnem, const std::string& method, const DisplayArgument& arg,
                       int msgStyle) = 0;
};

/// What everything that works shares: the seams to the outside world, the current error, and how a public
/// operation ends. The rooms above add their own parts (FileContext, TableContext, CommContext,
/// AccessContext, Installation). Each class takes the narrowest of these contexts that has what it needs.
/// There is no other shared state. One thread.
class Context {
 public:
  /// The seams, owned by whoever makes the context; they must outlive it.
  struct Seams {
    DatabaseEngine& engine;
    Driver& driver;
    Prompts& prompts;
    Clock& clock;
  };

  explicit Context(const Seams& seams);
  virtual ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  [[nodiscard]] DatabaseEngine& engine() const { return seams_.engine; }
  [[nodiscard]] virtual Driver& driver() { return seams_.driver; }
  [[nodiscard]] HeldPrompts& prompts() { return prompts_; }
  [[nodiscard]] Clock& clock() const { return seams_.clock; }
  [[nodiscard]] virtual Messages& messages() = 0;

  /// The current error: what the last operation that failed left; number 0 when there is none.
  [[nodiscard]] ErrorInfo& error() { return error_; }

  /// Runs the body of a public operation. The first failure inside ends it, becomes the current error, and
  /// its number is returned. Otherwise the result of the body is returned, 0 if it has none.
  template <typename Body>
  std::int16_t attempt(Body&& body) {
    error_.clear();
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        std::forward<Body>(body)();
        return 0;
      } else {
        return std::forward<Body>(body)();
      }
    } catch (...) {
      return recordFailure();
    }
  }

  /// The boundary of most public operations: attempt(), and after a failure the message about it.
  template <typename Body>
  std::int16_t attempt(const FailureMessage& message, Body&& body) {
    bool failed = true;
    const auto status = attempt([&] {
      if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        std::forward<Body>(body)();
        failed = false;
        return std::int16_t{0};
      } else {
        const std::int16_t result = std::forward<Body>(body)();
        failed = false;
        return result;
      }
    });
    if (failed) report(message);
    return status;
  }

  /// Shows a message as critical, with the current error if there is one, and clears the error.
  void report(const FailureMessage& message);
  /// The same as a warning: nothing failed.
  void warn(const FailureMessage& message);
  /// The message with the current error, which it is shown with later; the error is cleared.
  [[nodiscard]] FailureMessage kept(FailureMessage message);
  /// Shows messages in their order: warnings as warn does, others as report does.
  void show(const std::vector<Notice>& notices);

  /// Runs `body`, which locks a database file, and shows the messages of the body when it has ended. Other
  /// programs wait for the file, and a person may take long to answer. The body must not ask a question.
  void showLater(const std::function<void()>& body);

  /// Numbers of open sequential files, 1 to 511. Each is in use once; 67 when all are taken.
  std::int16_t takeFileNumber();
  void releaseFileNumber(std::int16_t number) { fileNumbers_.erase(number); }

 private:
  std::int16_t recordFailure();  // makes the exception being handled the current error; returns its number

  Seams seams_;
  HeldPrompts prompts_;
  ErrorInfo error_;
  std::set<std::int16_t> fileNumbers_;
};

}  // namespace voxa
