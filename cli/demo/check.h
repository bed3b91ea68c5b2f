#pragma once

#include <iostream>

namespace voxa::cli {

/// What the demonstration finds out about itself.
class DemoCheck {
 public:
  void expect(bool asItShouldBe, const char* what) {
    if (asItShouldBe) return;
    asTold_ = false;
    std::cout << "   NOT AS IT SHOULD BE: " << what << '\n';
  }
  [[nodiscard]] bool asTold() const { return asTold_; }

 private:
  bool asTold_ = true;
};

}  // namespace voxa::cli
