#include "tests/windows/dialog_driver.h"

#include <windows.h>

#include <dlgs.h>

#include <utility>

namespace kelto::test {
namespace {

/// A visible dialog of this process. File dialogs show themselves when they are filled.
BOOL CALLBACK TakeDialog(HWND window, LPARAM found) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  char kind[16] = "";
  GetClassNameA(window, kind, sizeof kind);
  const bool ours = process == GetCurrentProcessId() && IsWindowVisible(window);
  if (!ours || std::string(kind) != "#32770") return TRUE;  // the class of every dialog
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

/// Asks again and again for two minutes: a dialog that comes after that stays for ever.
template <typename Question>
bool Wait(Question question) {
  for (int i = 0; i < 12000; ++i) {
    if (question()) return true;
    Sleep(10);
  }
  return false;
}

std::string TextOf(HWND window) {
  char text[4096] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

BOOL CALLBACK NotePart(HWND window, LPARAM dialog) {
  SeenDialog& seen = *reinterpret_cast<SeenDialog*>(dialog);
  char kind[16] = "";
  GetClassNameA(window, kind, sizeof kind);
  const std::string text = TextOf(window);
  if (std::string(kind) == "Static" && !text.empty()) seen.texts.push_back(text);
  if (std::string(kind) == "Button" && IsWindowVisible(window)) ++seen.buttons;
  return TRUE;
}

/// The name field: a combination box in dialogs of today's kind, a plain field in older ones.
HWND NameField(HWND dialog) {
  const HWND box = GetDlgItem(dialog, cmb13);
  return box != nullptr ? box : GetDlgItem(dialog, edt1);
}

SeenDialog Answer(HWND dialog, const DialogAnswer& answer) {
  SeenDialog seen;
  seen.title = TextOf(dialog);
  if (const HWND field = NameField(dialog)) {
    seen.name = TextOf(field);
    if (!answer.name.empty()) {
      SendMessageA(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(answer.name.c_str()));
    }
  }
  EnumChildWindows(dialog, NotePart, reinterpret_cast<LPARAM>(&seen));
  PostMessageA(dialog, WM_COMMAND, answer.accept ? IDOK : IDCANCEL, 0);
  return seen;
}

}  // namespace

DialogDriver::DialogDriver(std::vector<DialogAnswer> answers)
    : answers_(std::move(answers)), thread_([this] { Drive(); }) {}

DialogDriver::~DialogDriver() { Seen(); }

const std::vector<SeenDialog>& DialogDriver::Seen() {
  if (thread_.joinable()) thread_.join();
  return seen_;
}

void DialogDriver::Drive() {
  for (const DialogAnswer& answer : answers_) {
    HWND dialog = nullptr;
    const auto comes = [&] {
      EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&dialog));
      return dialog != nullptr;
    };
    if (!Wait(comes)) return;
    seen_.push_back(Answer(dialog, answer));
    Wait([&] { return !IsWindow(dialog); });
  }
}

}  // namespace kelto::test
