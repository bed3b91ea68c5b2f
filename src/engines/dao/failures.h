#pragma once

#include <oaidl.h>

#include <string>
#include <vector>

#include "platform/error.h"

namespace voxa {

struct DaoSession;

namespace dao {

/// A failure of the library, with all that it reported.
class LibraryError : public Error {
 public:
  LibraryError(std::vector<ErrorInfo> entries, int number, const std::string& description)
      : Error(number, description), entries_(std::move(entries)) {}
  [[nodiscard]] const std::vector<ErrorInfo>& entries() const { return entries_; }

 private:
  std::vector<ErrorInfo> entries_;
};

/// What a call that failed gave back.
struct Failure {
  HRESULT result = S_OK;
  EXCEPINFO info{};

  Failure() = default;
  ~Failure();
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;

  /// The library's own number.
  [[nodiscard]] int number();
  /// Throws the LibraryError: with the entries of the library's collection of errors when the last one is
  /// this failure, since not every failure gets there. call: "Database.Execute"
  [[noreturn]] void raise(DaoSession& session, const std::string& call);
};

/// The number by which this system's callers know a failure for which the library has another number.
[[nodiscard]] int numberOf(int published);

}  // namespace dao
}  // namespace voxa
