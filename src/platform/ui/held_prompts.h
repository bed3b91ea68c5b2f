#pragma once

#include <deque>
#include <functional>
#include <string>

#include "platform/ui/prompts.h"

namespace voxa {

/// Prompts that can hold messages back. A box that only tells something then waits until nothing is locked
/// any more, since a person may leave it open for long. A box that asks, and a dialog, are shown at once.
/// Holds can be nested.
class HeldPrompts : public Prompts {
 public:
  /// prompts: shows the boxes; must outlive this object. beforeEach: called before each box, since a person
  /// may take long to answer it.
  HeldPrompts(Prompts& prompts, std::function<void()> beforeEach)
      : prompts_(prompts), beforeEach_(std::move(beforeEach)) {}

  void hold() { ++depth_; }
  /// Ends a hold. The last one to end shows what was held back, in its order.
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
