#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "platform/ui/console_prompts.h"
#include "platform/ui/scripted_prompts.h"
#include "temporary_folder.h"

namespace voxa {
namespace {

bool contains(const std::ostringstream& out, const std::string& text) {
  return out.str().find(text) != std::string::npos;
}

TEST(PromptsTest, DefaultButtonBelongsToTheBox) {
  EXPECT_EQ(defaultAnswer(style::yesNo + style::question), Answer::yes);
  EXPECT_EQ(defaultAnswer(style::yesNo + style::critical + style::secondDefault), Answer::no);
  EXPECT_EQ(defaultAnswer(style::yesNoCancel + 2 * style::secondDefault), Answer::cancel);
  EXPECT_EQ(defaultAnswer(style::okOnly + style::exclamation + style::secondDefault), Answer::ok);
}

TEST(PromptsTest, WithoutATerminalTheLeastIsDoneAndSaid) {
  std::istringstream in("n\n");
  std::ostringstream out;
  ConsolePrompts prompts(in, out, false);
  EXPECT_EQ(prompts.messageBox("Delete?\r\nAll of it\x1B[2J", style::yesNo, "Cards"), Answer::no);
  EXPECT_EQ(out.str(), "[Cards]\nDelete?\nAll of it?[2J\nNo terminal to ask on: taking No.\n");
  EXPECT_EQ(prompts.messageBox("Replace?", style::yesNoCancel, ""), Answer::cancel);
  prompts.assume(Answer::yes);
  EXPECT_EQ(prompts.messageBox("Delete?", style::yesNo, ""), Answer::yes);
  EXPECT_EQ(prompts.messageBox("Again?", style::abortRetryIgnore, ""), Answer::abort);
  EXPECT_EQ(prompts.chooseFile({}), "");
}

TEST(PromptsTest, AsksUntilAButtonIsNamed) {
  std::istringstream in("maybe\n CANCEL \nn\n\n");
  std::ostringstream out;
  ConsolePrompts prompts(in, out, true);
  EXPECT_EQ(prompts.messageBox("Done", style::okOnly, ""), Answer::ok);
  EXPECT_EQ(prompts.messageBox("Save?", style::yesNoCancel, ""), Answer::cancel);
  EXPECT_TRUE(contains(out, "Please answer Yes, No or Cancel."));
  EXPECT_EQ(prompts.messageBox("Save?", style::yesNo, ""), Answer::no);
  EXPECT_EQ(prompts.messageBox("Save?", style::yesNo + style::secondDefault, ""), Answer::no);
  // The end of input closes the box.
  EXPECT_EQ(prompts.messageBox("Save?", style::yesNoCancel, ""), Answer::cancel);
  EXPECT_EQ(prompts.messageBox("Save?", style::yesNo, ""), Answer::no);
}

TEST(PromptsTest, FileChoicesMustBeAllowed) {
  const TemporaryFolder folder;
  put(folder / "old.txt", "x");
  const int flags = FileDialog::overwritePrompt + FileDialog::pathMustExist;
  const FileDialog save{"Export", folder / "old.txt", "", flags, true};
  std::istringstream in("\nno\n" + folder.path() + "\n" + folder / "none/new.txt" + "\n" +
                        folder / "new.txt" + "\n\nyes\n");
  std::ostringstream out;
  ConsolePrompts prompts(in, out, true);
  EXPECT_EQ(prompts.chooseFile(save), folder / "new.txt");
  EXPECT_TRUE(contains(out, "already exists. Replace it?"));
  EXPECT_TRUE(contains(out, "is a folder"));
  EXPECT_TRUE(contains(out, "The folder of"));
  EXPECT_EQ(prompts.chooseFile(save), folder / "old.txt");
  EXPECT_EQ(prompts.chooseFile(save), "");

  ConsolePrompts unattended(in, out, false);
  unattended.proposeFile(folder / "old.txt");
  EXPECT_EQ(unattended.chooseFile(save), "");
  unattended.assume(Answer::yes);
  EXPECT_EQ(unattended.chooseFile(save), folder / "old.txt");
  unattended.proposeFile(folder / "none.txt");
  EXPECT_EQ(unattended.chooseFile({"Import", "", "", FileDialog::fileMustExist, false}), "");
}

TEST(PromptsTest, ScriptGivesAnswersInOrderThenDefaults) {
  ScriptedPrompts prompts;
  prompts.answers = {Answer::no, Answer::ok};
  EXPECT_EQ(prompts.messageBox("a", style::yesNo, "t"), Answer::no);
  EXPECT_EQ(errorOf([&] { return prompts.messageBox("b", style::yesNo, "t"); }), err::internalError);
  EXPECT_EQ(prompts.messageBox("c", style::yesNo, "t"), Answer::yes);
  EXPECT_EQ(prompts.boxes.size(), 3U);
  {
    const BusyPointer busy(prompts);
    EXPECT_EQ(prompts.busyDepth, 1);
  }
  EXPECT_EQ(prompts.busyDepth, 0);
}

}  // namespace
}  // namespace voxa
