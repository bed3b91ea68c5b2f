#pragma once

#include <deque>
#include <string>

#include "platform/ui/prompts.h"

namespace voxa {

/// Prompts that can hold messages back: a box that only tells something waits then, so that nobody's lunch
/// break goes by with something locked. A box that asks, and a dialog, are shown at once.
class HeldPrompts : public Prompts {
 public:
  /// prompts: what shows them; must outlive this object.
  explicit HeldPrompts(Prompts& prompts) : prompts_(prompts) {}

  void hold() { ++depth_; }
  /// Shows what was held back, in its order, when it is the last of the holds that ends.
  void release();

  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& dialog) override { return prompts_.chooseFile(dialog); }
  void busy(bool on) override { prompts_.busy(on); }

 private:
  struct Message {
    std::string prompt;
    int style;
    std::string title;
  };

  Prompts& prompts_;
  int depth_ = 0;
  std::deque<Message> held_;
};

}  // namespace voxa
