#pragma once

#include <cstdint>
#include <vector>

#include "platform/error.h"

namespace voxa {

/// An engine's error collection: what its last failed call reported.
class Failures {
 public:
  Failures() = default;
  virtual ~Failures() = default;
  Failures(const Failures&) = delete;
  Failures& operator=(const Failures&) = delete;

  /// Runs one public operation. An error that leaves it is put into the collection first.
  template <typename Operation>
  decltype(auto) guarded(Operation&& operation) {
    try {
      return operation();
    } catch (const Error& error) {
      failed(error);
      throw;
    }
  }
  virtual void failed(const Error& error);

  std::vector<ErrorInfo> errors;
  /// Numbers the failures of all engines of the process, so that who has several knows which failed last; 0
  /// before the first one.
  std::uint64_t lastFailure = 0;
};

}  // namespace voxa
