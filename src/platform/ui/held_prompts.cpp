#include "platform/ui/held_prompts.h"

namespace voxa {

void HeldPrompts::release() {
  if (--depth_ > 0) return;
  while (!held_.empty()) {
    const Message message = std::move(held_.front());
    held_.pop_front();
    (void)show(message.prompt, message.style, message.title);
  }
}

Answer HeldPrompts::show(const std::string& prompt, int style, const std::string& title) {
  beforeEach_();
  return prompts_.messageBox(prompt, style, title);
}

std::string HeldPrompts::chooseFile(const FileDialog& dialog) {
  beforeEach_();
  return prompts_.chooseFile(dialog);
}

Answer HeldPrompts::messageBox(const std::string& prompt, int style, const std::string& title) {
  const bool asks = (style & style::buttonMask) != style::okOnly;
  if (depth_ == 0 || asks) return show(prompt, style, title);
  held_.push_back({prompt, style, title});
  return Answer::ok;
}

}  // namespace voxa
