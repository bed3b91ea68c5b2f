#pragma once

#include <deque>
#include <functional>
#include <string>

#include "platform/ui/prompts.h"

namespace voxa {

/// Prompts that can hold messages back: a box that only tells something waits then, so that nobody's lunch
/// break goes by with something locked. A box that asks, and a dialog, are shown at once. Holds may lie
/// within one another.
class HeldPrompts : public Prompts {
 public:
  /// prompts: what shows them; must outlive this object. beforeEach: called before a box is shown, a person
  /// taking a long time perhaps.
  HeldPrompts(Prompts& prompts, std::function<void()> beforeEach)
      : prompts_(prompts), beforeEach_(std::move(beforeEach)) {}

  void hold() { ++depth_; }
  /// Shows what was held back, in its order, when it is the last of the holds that ends.
  void release();

  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& dialog) override;
  void busy(bool on) override { prompts_.busy(on); }

 private:
  struct Message {
    std::string prompt;
    int style;
    std::string title;
  };

  Answer show(const std::string& prompt, int style, const std::string& title);

  Prompts& prompts_;
  std::function<void()> beforeEach_;
  int depth_ = 0;
  std::deque<Message> held_;
};

}  // namespace voxa
