#include "platform/ui/held_prompts.h"

namespace voxa {

void HeldPrompts::release() {
  if (--depth_ > 0) return;
  while (!held_.empty()) {
    const Message message = std::move(held_.front());
    held_.pop_front();
    (void)prompts_.messageBox(message.prompt, message.style, message.title);
  }
}

Answer HeldPrompts::messageBox(const std::string& prompt, int style, const std::string& title) {
  const bool asks = (style & style::buttonMask) != style::okOnly;
  if (depth_ == 0 || asks) return prompts_.messageBox(prompt, style, title);
  held_.push_back({prompt, style, title});
  return Answer::ok;
}

}  // namespace voxa
