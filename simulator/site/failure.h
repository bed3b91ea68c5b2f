#pragma once

#include <stdexcept>

namespace site {

/// What went wrong with a site, as a sentence for a person: a wrong argument, an unknown controller, or a
/// site file that cannot be opened, read or written.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace site
