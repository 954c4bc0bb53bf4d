// What the module asks of the system and its host, and the answers that the random host chose.
#pragma once

#include <cstdint>
#include <cstring>

#include "fuzz/byte_source.h"
#include "platform/win32.h"
#include "state/PanZoomState.h"

namespace kelto::fuzz {

/// What the host's dialog and host state answer next.
struct Answers {
  const char* picked = nullptr;  ///< null: cancelled
  uint8_t scrap = 0;             ///< left behind the picked path's end
  int32_t hostState = -1;
  bool networkName = false;
};
inline Answers answers;

inline BOOL KELTO_WINAPI AnswerDialog(OPENFILENAMEA* dialog) {
  Require(dialog->lpstrFile != nullptr && dialog->nMaxFile == kPathRecordSize,
          "the dialog is offered a record");
  Require(std::memchr(dialog->lpstrFile, 0, dialog->nMaxFile) != nullptr,
          "the offered name has an end");
  Require(dialog->lpstrTitle != nullptr, "dialogs have a title");
  if (answers.picked == nullptr) return 0;
  std::memset(dialog->lpstrFile, answers.scrap, dialog->nMaxFile);
  std::memcpy(dialog->lpstrFile, answers.picked, std::strlen(answers.picked) + 1);
  return 1;
}

inline int KELTO_WINAPI AnswerMessage(HWND, const char* text, const char* caption, unsigned type) {
  Require(std::strcmp(text, "Not enough memory to load image.") == 0 &&
              std::strcmp(caption, "Kelto Pan & Zoom Error") == 0 && type == MB_OK,
          "there is one message");
  return IDOK;
}

inline DWORD KELTO_WINAPI AnswerUniversalName(const char* path, DWORD, void* buffer, DWORD* size) {
  if (!answers.networkName) return ERROR_NOT_CONNECTED;
  const size_t length = std::strlen(path);
  const DWORD needed = static_cast<DWORD>(sizeof(UNIVERSAL_NAME_INFOA) + length + 1);
  if (*size < needed) {
    *size = needed;
    return ERROR_MORE_DATA;
  }
  // A name as it is: the file stays reachable by it.
  char* text = static_cast<char*>(buffer) + sizeof(UNIVERSAL_NAME_INFOA);
  std::memcpy(text, path, length + 1);
  const UNIVERSAL_NAME_INFOA info = {text};
  std::memcpy(buffer, &info, sizeof info);
  return NO_ERROR;
}

inline int32_t AnswerHostState() { return answers.hostState; }

inline void AnswerWin32Calls() {
  win32().GetOpenFileNameA = AnswerDialog;
  win32().MessageBoxA = AnswerMessage;
  win32().WNetGetUniversalNameA = AnswerUniversalName;
}

}  // namespace kelto::fuzz
