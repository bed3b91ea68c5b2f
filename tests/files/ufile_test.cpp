#include "files/ufile.h"

#include "files/database_files.h"
#include "messages/strings.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class UFileTest : public test::InstallationTest {
 protected:
  void SetUp() override { createInstallation(); }
  /// Makes two files, and queues the answers of the next boxes and of the dialog.
  void prepare(const std::vector<Answer>& answers, const std::string& choice) {
    write("source", "new");
    write("target", "old");
    prompts.answers.assign(answers.begin(), answers.end());
    prompts.choices = {choice};
    prompts.dialogs.clear();
  }
  std::string state() { return textOf("source") + "/" + textOf("target"); }
  /// Styles of the boxes shown since the last call.
  std::vector<int> styles() {
    std::vector<int> all;
    for (const auto& box : prompts.boxes) {
      all.push_back(box.style);
      EXPECT_EQ(box.title, library->Strings().read("MDIkrvCaption"));
    }
    prompts.boxes.clear();
    return all;
  }
};

TEST_F(UFileTest, ChosenNamesAreUsedOrRefused) {
  using Dialog = std::int16_t (UFile::*)(const std::string&);
  const auto remove = [](UFile& dialog) { return dialog.DlgDelete(); };
  const struct {
    Dialog dialog;  // none: the file is deleted
    std::string choice;
    std::vector<Answer> answers;
    int status;
    std::vector<int> styles;  // of the boxes
    const char* after;        // contents of source and target
  } cases[] = {
      {&UFile::DlgRename, "", {}, -1, {}, "new/old"},
      {&UFile::DlgRename, folder + "\\journal.MDB", {}, -1, {16}, "new/old"},
      {&UFile::DlgRename, "target", {}, 0, {}, "/new"},
      {&UFile::DlgRename, "Source", {}, 0, {}, "new/old"},  // the name that it has: it must not be deleted
      {&UFile::DlgSaveAs, folder + "\\Journal.mdb", {}, -1, {16}, "new/old"},
      {&UFile::DlgSaveAs, "krv.mdb", {}, -1, {16}, "new/old"},
      {&UFile::DlgSaveAs, "target", {}, 0, {}, "new/new"},
      {&UFile::DlgRestore, "JOURNAL.mdb", {}, -1, {16}, "new/old"},
      {&UFile::DlgRestore, "target", {Answer::no}, -1, {36}, "new/old"},
      {nullptr, "", {}, -1, {}, "new/old"},
      {nullptr, "target", {Answer::no}, -1, {36}, "new/old"},
      {nullptr, "target", {Answer::yes}, 0, {36}, "new/"}};
  const std::string journal = textOf("Journal.MDB");
  for (const auto& c : cases) {
    prepare(c.answers, c.choice);
    UFile dialog(*library);
    EXPECT_EQ(c.dialog != nullptr ? (dialog.*c.dialog)("source") : remove(dialog), c.status) << c.choice;
    EXPECT_EQ(styles(), c.styles) << c.choice;
    EXPECT_EQ(state(), c.after) << c.choice;
    EXPECT_EQ(prompts.dialogs[0].flags, c.dialog != nullptr ? 0 : 6152);
    EXPECT_EQ(prompts.dialogs[0].title, c.dialog == nullptr              ? "File to delete"
                                        : c.dialog == &UFile::DlgRestore ? "File to restore"
                                                                         : "Save as");
  }
  EXPECT_EQ(textOf("Journal.MDB"), journal);
  prepare({}, folder + "\\KRV.mdb");  // a main database of that name is not refused here
  EXPECT_EQ(UFile(*library).DlgRename("source"), 0);
  EXPECT_EQ(textOf("KRV.mdb"), "new");
}

TEST_F(UFileTest, SavingBeforeReplacing) {
  const struct {
    bool overwriteAllowed;
    std::vector<Answer> answers;
    const char* choice;
    bool cancelled;
    std::vector<int> styles;
    const char* after;
  } cases[] = {{true, {Answer::cancel}, "", true, {35}, "new/old"},
               {false, {Answer::no}, "", false, {35}, "/old"},
               {true, {Answer::no, Answer::yes}, "", false, {35, 276}, "/old"},
               {true, {Answer::no, Answer::no}, "", true, {35, 276}, "new/old"},
               {true, {Answer::no, Answer::no}, "target", false, {35, 276}, "/new"},
               {false, {Answer::yes}, "journal.mdb", true, {35, 16}, "new/old"}};
  for (const auto& c : cases) {
    prepare(c.answers, c.choice);
    EXPECT_EQ(saveBeforeReplace(*library, "source", "msgCreateSaveDBYN", c.overwriteAllowed), c.cancelled);
    EXPECT_EQ(styles(), c.styles);
    EXPECT_EQ(state(), c.after);
    if (prompts.dialogs.empty()) continue;
    EXPECT_EQ(prompts.dialogs[0].filter, "Access Databases   (*.mdb)|*.mdb");
    EXPECT_EQ(prompts.dialogs[0].flags, 2058);
  }
  EXPECT_TRUE(saveBeforeReplace(*library, "missing", "msgCreateSaveDBYN", true));
  EXPECT_EQ(styles(), std::vector<int>{});
}

TEST_F(UFileTest, RestoringSavesFirstWhenAsked) {
  auto database = engine->open("KRV.mdb");
  closeDatabaseFile(*library, "Other.mdb");
  EXPECT_TRUE(database->isOpen());
  prepare({}, "copy.mdb");
  EXPECT_EQ(saveDatabaseAs(*library, "krv.MDB"), 0);  // a bare name means a file of the current folder
  EXPECT_FALSE(database->isOpen());
  write("KRV.mdb", "damaged");
  prepare({Answer::yes}, "");  // no name is chosen to save it under
  EXPECT_EQ(restoreDatabase(*library, "KRV.mdb", "msgReplaceSaveDBYN", [](Database&) {}), -1);
  EXPECT_EQ(textOf("KRV.mdb"), "damaged");
  prepare({Answer::yes, Answer::yes}, "damaged.mdb");
  prompts.choices.emplace_back("copy.mdb");
  EXPECT_EQ(restoreDatabase(*library, "KRV.mdb", "msgReplaceSaveDBYN", [](Database&) {}), 0);
  EXPECT_EQ(textOf("damaged.mdb"), "damaged");
  EXPECT_EQ(textOf("KRV.mdb"), textOf("copy.mdb"));
  EXPECT_EQ(styles(), (std::vector{35, 35, 36}));
}

}  // namespace
}  // namespace voxa
