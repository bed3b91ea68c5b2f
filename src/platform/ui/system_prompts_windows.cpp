#include <windows.h>

#include <commdlg.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <string>

#include "platform/ui/console_prompts.h"
#include "platform/ui/system_prompts.h"

namespace voxa {

namespace {

std::wstring wide(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

/// Boxes and dialogs of the desktop, above the caller's active window.
class DesktopPrompts final : public Prompts {
 public:
  Answer messageBox(const std::string& prompt, int style, const std::string& title) override {
    // `style` has the same bits as the system's own styles. Without a window of the thread's own, the box
    // would come up behind those of the program that waits for the answer.
    const HWND owner = ::GetActiveWindow();
    const int pressed =
        ::MessageBoxW(owner, wide(prompt).c_str(), wide(title).c_str(),
                      static_cast<UINT>(style) | MB_TASKMODAL | (owner == nullptr ? MB_SETFOREGROUND : 0U));
    return pressed == 0 ? defaultAnswer(style) : static_cast<Answer>(pressed);
  }

  std::string chooseFile(const FileDialog& dialog) override {
    // The filter is "description|pattern". The dialog wants a character 0 behind each of the two, and one
    // more at the end.
    std::wstring filter = wide(dialog.filter) + L"||";
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    const std::wstring title = wide(dialog.title);
    std::array<wchar_t, 32768> file{};
    const std::wstring proposed = wide(dialog.proposedName);
    proposed.copy(file.data(), file.size() - 1);
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = ::GetActiveWindow();
    request.lpstrFilter = dialog.filter.empty() ? nullptr : filter.c_str();
    request.lpstrFile = file.data();
    request.nMaxFile = static_cast<DWORD>(file.size());
    request.lpstrTitle = title.empty() ? nullptr : title.c_str();
    // The dialog must not change the current folder: the journal is found there.
    request.Flags = static_cast<DWORD>(dialog.flags) | OFN_NOCHANGEDIR | OFN_EXPLORER | OFN_HIDEREADONLY;
    const BOOL chosen = dialog.save ? ::GetSaveFileNameW(&request) : ::GetOpenFileNameW(&request);
    if (chosen == FALSE) return {};
    const std::u8string path = std::filesystem::path(file.data()).u8string();
    return {path.begin(), path.end()};
  }

  void busy(bool on) override {
    if (on) {
      const HCURSOR before = ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
      if (depth_++ == 0) before_ = before;
    } else if (depth_ > 0 && --depth_ == 0) {
      (void)::SetCursor(before_);
    }
  }

 private:
  HCURSOR before_ = nullptr;
  int depth_ = 0;
};

/// Whether the process runs where a person can see its windows. A service does not.
bool hasDesktop() {
  USEROBJECTFLAGS flags{};
  const BOOL known =
      ::GetUserObjectInformationW(::GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr);
  return known != FALSE && (flags.dwFlags & WSF_VISIBLE) != 0;
}

bool wantsDesktop() {
  const char* const wish = std::getenv("VOXA_PROMPTS");
  if (wish != nullptr && std::string(wish) == "console") return false;
  if (wish != nullptr && std::string(wish) == "windows") return true;
  return hasDesktop();
}

}  // namespace

std::unique_ptr<Prompts> makeSystemPrompts() {
  if (wantsDesktop()) return std::make_unique<DesktopPrompts>();
  return std::make_unique<ConsolePrompts>(std::cin, std::cerr, ConsolePrompts::isTerminal());
}

}  // namespace voxa
