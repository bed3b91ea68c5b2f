#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "platform/error.h"
#include "platform/ui/held_prompts.h"
#include "platform/value.h"

namespace voxa {

class Clock;
class Com;
class CommandFile;
class DatabaseEngine;
class Driver;
class QDB;
class Strings;

/// What `Strings::display` may add to a message: nothing, a value shown as text, or an error object whose
/// number and description become the current error.
using DisplayArgument = std::variant<std::monostate, Value, ErrorInfo>;

/// A message about a failure: mnemonic of its text, the method that failed as a person reads it
/// ("Station.getId"), and what it was about.
struct FailureMessage {
  std::string_view mnemonic;
  std::string method;
  DisplayArgument argument = {};
};

/// The one context of the library: the seams to the outside world, the four service objects, each created at
/// first use and kept until the context ends, and the current error. Everything that works takes a Library&;
/// there is no other shared state. One thread.
class Library {
 public:
  /// The seams, owned by whoever makes the context; they must outlive it.
  struct Seams {
    DatabaseEngine& engine;
    Driver& driver;
    Prompts& prompts;
    Clock& clock;
  };

  explicit Library(const Seams& seams);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  [[nodiscard]] DatabaseEngine& engine() const { return seams_.engine; }
  [[nodiscard]] Driver& driver() const { return seams_.driver; }
  [[nodiscard]] HeldPrompts& prompts() { return prompts_; }
  [[nodiscard]] Clock& clock() const { return seams_.clock; }

  [[nodiscard]] ::voxa::Strings& Strings();
  [[nodiscard]] ::voxa::Com& Com();
  [[nodiscard]] ::voxa::CommandFile& CommandFile();
  [[nodiscard]] ::voxa::QDB& QDB();

  /// The current error: what the last failing operation left, number 0 when there is none.
  [[nodiscard]] ErrorInfo& error() { return error_; }

  /// Runs the body of a public operation. The first failure inside abandons it, becomes the current error,
  /// and its number is returned; otherwise what the body returns (0 for a body without a result).
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

  /// The boundary of most public operations: attempt, and after a failure the message about it.
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

  /// Runs `body`, which locks a database file, and then shows the messages that came up in it: others wait
  /// for the file, and a person may take a long time. No question may come up in it.
  void showLater(const std::function<void()>& body);

  /// Numbers of open sequential files, 1 to 511, each in use once; 67 when all are taken.
  std::int16_t takeFileNumber();
  void releaseFileNumber(std::int16_t number) { fileNumbers_.erase(number); }

 private:
  std::int16_t recordFailure();  // the exception being handled becomes the current error; its number

  Seams seams_;
  HeldPrompts prompts_;
  ErrorInfo error_;
  std::set<std::int16_t> fileNumbers_;
  // Destroyed from the last to the first: the table objects go before what they use.
  std::unique_ptr<::voxa::Strings> strings_;
  std::unique_ptr<::voxa::Com> com_;
  std::unique_ptr<::voxa::CommandFile> commandFile_;
  std::unique_ptr<::voxa::QDB> qdb_;
};

}  // namespace voxa
