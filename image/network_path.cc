#include "image/network_path.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace kelto {
namespace {

struct Share {
  std::string name;
  std::string localPath;
};

/// A buffer of the network calls', freed by them.
class NetBuffer {
 public:
  NetBuffer() = default;
  NetBuffer(const NetBuffer&) = delete;
  NetBuffer& operator=(const NetBuffer&) = delete;
  ~NetBuffer() {
    if (bytes != nullptr) win32().NetApiBufferFree(bytes);
  }

  template <typename T>
  const T* As() const {
    return static_cast<const T*>(static_cast<const void*>(bytes));
  }

  uint8_t* bytes = nullptr;
};

/// 8-bit form in the current locale; nothing when a character has none.
std::optional<std::string> Narrow(const wchar_t* wide) {
  if (wide == nullptr) return std::nullopt;
  const size_t length = std::wcstombs(nullptr, wide, 0);
  if (length == static_cast<size_t>(-1)) return std::nullopt;
  std::string text(length, '\0');
  // Some C libraries measure what they then refuse to convert.
  if (std::wcstombs(text.data(), wide, length) != length) return std::nullopt;
  return text;
}

std::optional<std::string> UniversalName(const std::string& path) {
  std::vector<char> buffer(264);
  DWORD size = static_cast<DWORD>(buffer.size());
  const auto ask = [&] {
    return win32().WNetGetUniversalNameA(path.c_str(), UNIVERSAL_NAME_INFO_LEVEL, buffer.data(),
                                         &size);
  };
  DWORD answer = ask();
  while (answer == ERROR_MORE_DATA) {
    buffer.resize(size);
    answer = ask();
  }
  if (answer != NO_ERROR) return std::nullopt;
  const void* info = buffer.data();
  return static_cast<const UNIVERSAL_NAME_INFOA*>(info)->lpUniversalName;
}

/// Nothing when a call fails, also after a part of the list.
std::optional<std::vector<Share>> SharesOfThisMachine() {
  std::vector<Share> shares;
  DWORD resume = 0;
  NET_API_STATUS status;
  do {
    NetBuffer buffer;
    DWORD count = 0, total = 0;
    status = win32().NetShareEnum(nullptr, 2, &buffer.bytes, MAX_PREFERRED_LENGTH, &count, &total,
                                  &resume);
    if (status != NO_ERROR && status != ERROR_MORE_DATA) return std::nullopt;
    for (DWORD i = 0; i < count; ++i) {
      const SHARE_INFO_2& entry = buffer.As<SHARE_INFO_2>()[i];
      const auto name = Narrow(entry.shi2_netname), localPath = Narrow(entry.shi2_path);
      // Left out rather than kept empty: an empty path would be the start of every path.
      if (name && localPath) shares.push_back({*name, *localPath});
    }
  } while (status == ERROR_MORE_DATA);
  return shares;
}

bool IsHidden(const Share& share) { return share.name.ends_with('$'); }

/// Plain prefix: "D:\Pic" also starts "D:\Pictures". Kept so, and likewise no separator is put
/// between share name and rest, since saved projects hold such names.
bool Covers(const Share& share, const std::string& path) {
  const auto same = [](unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
  };
  return path.size() >= share.localPath.size() &&
         std::equal(share.localPath.begin(), share.localPath.end(), path.begin(), same);
}

std::optional<std::string> ComputerName() {
  NetBuffer buffer;
  if (win32().NetWkstaGetInfo(nullptr, 100, &buffer.bytes) != NO_ERROR) return std::nullopt;
  return Narrow(buffer.As<WKSTA_INFO_100>()->wki100_computername);
}

std::optional<std::string> NetworkForm(const std::string& path) {
  if (path.starts_with("\\\\")) return std::nullopt;
  if (auto name = UniversalName(path)) return name;
  const auto shares = SharesOfThisMachine();
  if (!shares) return std::nullopt;
  for (const Share& share : *shares) {
    if (IsHidden(share) || !Covers(share, path)) continue;
    const auto computer = ComputerName();
    if (!computer) return std::nullopt;
    return "\\\\" + *computer + "\\" + share.name + path.substr(share.localPath.size());
  }
  return std::nullopt;
}

}  // namespace

bool ResolveNetworkPath(const char* path, char* output, uint32_t capacity) {
  const auto name = NetworkForm(path);
  if (!name || capacity == 0) return false;
  const size_t length = std::min<size_t>(name->size(), capacity - 1);
  name->copy(output, length);
  std::memset(output + length, 0, capacity - length);
  return true;
}

}  // namespace kelto
