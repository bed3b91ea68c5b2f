#pragma once

#include <deque>
#include <functional>
#include <string>

#include "platform/ui/console_prompts.h"

namespace voxa::cli {

/// The boxes and dialogs of a command: on the terminal, unless the command line has answered them already.
class CallerPrompts : public ConsolePrompts {
 public:
  CallerPrompts();

  /// Answers the next box that asks something; several in their order.
  void prepare(Answer answer) { prepared_.push_back(answer); }
  /// The file that the next dialogs choose, "" to ask: to save into, to open.
  void files(const std::string& toSave, const std::string& toOpen);
  /// The files that no dialog may choose, those of the installation.
  void protect(std::function<bool(const std::string&)> isProtected) { isProtected_ = std::move(isProtected); }

  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& dialog) override;

 private:
  std::deque<Answer> prepared_;
  std::string toSave_;
  std::string toOpen_;
  std::function<bool(const std::string&)> isProtected_ = [](const std::string&) { return false; };
};

}  // namespace voxa::cli
