#include <windows.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/base/windows_text.h"
#include "host/effect/effect_name.h"
#include "host/files/path_text.h"
#include "host/files/start.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// An open file, for what the system says of it.
class OpenedFile {
 public:
  explicit OpenedFile(HANDLE handle) : handle_(handle) {}
  ~OpenedFile() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  bool IsSameAs(const OpenedFile& other) const {
    BY_HANDLE_FILE_INFORMATION a = {}, b = {};
    return GetFileInformationByHandle(handle_, &a) &&
           GetFileInformationByHandle(other.handle_, &b) &&
           a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
  }

 private:
  HANDLE handle_;
};

constexpr DWORD kAnyShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool IsPlain(const std::wstring& name) {
  return std::all_of(name.begin(), name.end(), [](wchar_t unit) { return unit < 0x80; });
}

/// The name's bytes in the code page, if it has all the letters. Not those of code pages with
/// letters of two bytes, whose second may look like a separator to the effect.
std::optional<std::string> InCodePage(const std::wstring& name) {
  CPINFO page = {};
  if (!IsPlain(name) && (!GetCPInfo(CP_ACP, &page) || page.MaxCharSize > 1)) return std::nullopt;
  // One byte more than the effect accepts shows that there are too many.
  char bytes[kEffectPathBytes + 1];
  BOOL replaced = FALSE;
  const int size =
      WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name.data(), static_cast<int>(name.size()),
                          bytes, sizeof bytes, nullptr, &replaced);
  if (size <= 0 || size > static_cast<int>(kEffectPathBytes) || replaced) return std::nullopt;
  return std::string(bytes, static_cast<size_t>(size));
}

/// `name` for the effect if that opens the very file of `path`.
std::optional<std::string> Fitting(const fs::path& name, const fs::path& path) {
  constexpr const wchar_t* kAnyLength = L"\\\\?\\";
  std::wstring wide = name.native();
  // The effect would take it for the name of another machine.
  if (wide.starts_with(kAnyLength)) wide.erase(0, 4);
  auto bytes = InCodePage(wide);
  if (!bytes) return std::nullopt;
  const OpenedFile there(
      CreateFileW(ForCalls(path).c_str(), 0, kAnyShare, nullptr, OPEN_EXISTING, 0, nullptr));
  const OpenedFile byName(
      CreateFileA(bytes->c_str(), 0, kAnyShare, nullptr, OPEN_EXISTING, 0, nullptr));
  return there.IsSameAs(byName) ? bytes : std::nullopt;
}

/// The path with the short name that the system keeps for each of its parts, where it does.
fs::path WithShortNames(const fs::path& path) {
  const fs::path longName = ForCalls(path);
  std::wstring name(GetShortPathNameW(longName.c_str(), nullptr, 0), L'\0');
  const auto room = static_cast<DWORD>(name.size());
  const DWORD size = GetShortPathNameW(longName.c_str(), name.data(), room);
  name.resize(size < room ? size : 0);
  return name;
}

std::optional<std::string> FittingForm(const fs::path& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  const fs::path here = fs::current_path(error);
  const fs::path relative = absolute.lexically_relative(here);
  for (const fs::path& form : {path, absolute, relative, WithShortNames(path),
                               WithShortNames(absolute), WithShortNames(relative)}) {
    if (form.empty()) continue;
    if (auto bytes = Fitting(form, path)) return bytes;
  }
  return std::nullopt;
}

/// Removes a file at its end.
struct RemovedFile {
  explicit RemovedFile(fs::path file) : path(std::move(file)) {}
  ~RemovedFile() { DeleteFileW(path.c_str()); }
  RemovedFile(const RemovedFile&) = delete;
  RemovedFile& operator=(const RemovedFile&) = delete;
  const fs::path path;
};

/// Makes `name` another name of the file, or a copy of it.
bool LinkOrCopy(const fs::path& path, const fs::path& name) {
  // A link could not be removed again without taking the mark from the file itself.
  const fs::path from = ForCalls(path);
  const DWORD marks = GetFileAttributesW(from.c_str());
  const bool readOnly = (marks & FILE_ATTRIBUTE_READONLY) != 0;
  if (!readOnly && CreateHardLinkW(name.c_str(), from.c_str(), nullptr)) return true;
  if (!CopyFileW(from.c_str(), name.c_str(), TRUE)) return false;
  if (readOnly) SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
  return true;
}

/// Decoders go by what is in a file, a few by the ending as well.
std::wstring PlainEnding(const fs::path& path) {
  const std::wstring ending = path.extension().native();
  return IsPlain(ending) && ending.size() <= 5 ? ending : L"";
}

std::optional<EffectName> TemporaryName(const fs::path& path, const fs::path& folder) {
  std::random_device random;
  const std::string mark = "kelto-" + std::to_string(random());
  auto made = std::make_shared<RemovedFile>(folder / (PathOf(mark) += PlainEnding(path)));
  if (!LinkOrCopy(path, made->path)) return std::nullopt;
  if (auto bytes = FittingForm(made->path)) return EffectName{*bytes, made};
  return std::nullopt;
}

}  // namespace

EffectName NameForEffect(const std::string& text) {
  const fs::path path = PathOf(text);
  if (auto bytes = FittingForm(path)) return {*bytes};
  std::error_code error;
  std::vector<fs::path> folders = {fs::temp_directory_path(error)};
  // A user's own folder may bear a name that does not fit either; these are everybody's.
  for (const char* everybodys : {"PUBLIC", "ProgramData"}) {
    folders.push_back(PathOf(EnvironmentVariable(everybodys)));
  }
  for (const fs::path& folder : folders) {
    if (folder.empty()) continue;
    if (auto name = TemporaryName(path, folder)) return *name;
  }
  throw Error(text +
              ": the effect takes 255 letters of the system's code page, and no folder for "
              "temporary files has such a name; set TMP to one that has");
}

std::string TextFromEffect(const std::string& text) { return FromCodePage(text); }

}  // namespace kelto::host
