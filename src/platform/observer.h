#pragma once

#include <cstddef>

namespace voxa {

/// Told of the progress of work that takes long, from the thread that works.
class Observer {
 public:
  virtual ~Observer() = default;
  /// The work has come to row or controller `number` of `total`. what: "Sending".
  virtual void progress(const char* what, std::size_t number, std::size_t total) = 0;
};

}  // namespace voxa
