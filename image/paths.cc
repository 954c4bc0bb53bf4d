#include "image/paths.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstring>

#include "platform/win32.h"
#include "state/PanZoomState.h"
#include "state/module.h"

namespace kelto {

namespace fs = boost::filesystem;

namespace {

/// Parses a text in which both separators count, on every system.
fs::path Parse(std::string text) {
  std::replace(text.begin(), text.end(), '\\', '/');
  return fs::path(text);
}

/// The text with the system's own separators, as files are opened and folders are kept.
std::string NativeText(fs::path path) { return path.make_preferred().string(); }

/// Puts `text` into `buffer`, cut to fit.
void Store(const std::string& text, char* buffer, uint32_t capacity) {
  if (capacity == 0) return;
  const size_t length = std::min<size_t>(text.size(), capacity - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

bool Exists(const fs::path& path) {
  boost::system::error_code error;
  return fs::exists(path, error);
}

}  // namespace

bool ChooseImageFile(char* buffer, uint32_t capacity, const char* title) {
  OPENFILENAMEA dialog = {};
  dialog.lStructSize = kOpenFileNameSize;
  dialog.hwndOwner = win32().GetDesktopWindow();
  dialog.hInstance = Module().handle;
  dialog.nFilterIndex = 1;
  dialog.lpstrFile = buffer;
  dialog.nMaxFile = capacity;
  dialog.lpstrTitle = title != nullptr ? title : "Please choose an image:";
  dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
  return win32().GetOpenFileNameA(&dialog) == 1;
}

bool LocateImageFile(char* buffer, uint32_t capacity) {
  if (FindInKnownFolders(buffer)) return true;
  const fs::path path = Parse(buffer);
  if (path.empty()) return false;
  const std::string name = path.filename().string();
  const std::string title = "Please locate the image: " + name;
  Store(name, buffer, capacity);
  if (!ChooseImageFile(buffer, capacity, title.c_str())) return false;
  RememberImageFolder(buffer);
  return true;
}

bool FindInKnownFolders(char* buffer) {
  const fs::path path = Parse(buffer);
  if (path.empty()) return false;
  for (const std::string& folder : Module().knownFolders) {
    const fs::path candidate = Parse(folder) / path.filename();
    const std::string text = NativeText(candidate);
    // A longer path could not be saved either.
    if (text.size() >= size_t{kPathRecordSize} || !Exists(candidate)) continue;
    Store(text, buffer, kPathRecordSize);
    return true;
  }
  return false;
}

void RememberImageFolder(const char* path) {
  Module().knownFolders.insert(NativeText(Parse(path).parent_path()));
}

}  // namespace kelto
