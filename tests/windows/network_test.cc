// Network names with the system's own calls in the table, and records that such names end in.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "image/network_path.h"
#include "platform/win32.h"
#include "tests/frames/host.h"

namespace kelto {
namespace {

TEST(SystemCalls, StandInTheTable) {
  const auto system = [](const char* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(LoadLibraryA(library), name));
  };
  const Win32Calls calls = DefaultWin32Calls();
  EXPECT_EQ(reinterpret_cast<void*>(calls.GetOpenFileNameA),
            system("comdlg32.dll", "GetOpenFileNameA"));
  EXPECT_EQ(reinterpret_cast<void*>(calls.MessageBoxA), system("user32.dll", "MessageBoxA"));
}

TEST(SystemCalls, DescribeThisMachine) {
  uint8_t* buffer = nullptr;
  ASSERT_EQ(win32().NetWkstaGetInfo(nullptr, 100, &buffer), DWORD{NO_ERROR});
  ASSERT_NE(buffer, nullptr);
  const auto* info = reinterpret_cast<const WKSTA_INFO_100*>(buffer);
  EXPECT_NE(info->wki100_computername[0], 0);
  EXPECT_EQ(win32().NetApiBufferFree(buffer), DWORD{NO_ERROR});
}

TEST(SystemCalls, LeaveAPathThatNothingSharesAsItIs) {
  char path[2048];
  std::memset(path, '#', sizeof path);
  std::strcpy(path, "C:\\nowhere\\a.jpg");
  EXPECT_FALSE(ResolveNetworkPath(path, path, sizeof path));
  EXPECT_STREQ(path, "C:\\nowhere\\a.jpg");
  EXPECT_EQ(path[sizeof path - 1], '#') << "nothing is written";
}

std::string mapped;  // the folder that stands for a mapped drive

/// Z:\NAME is \\SERVER\pictures\NAME.
DWORD WINAPI MappedDrive(const char* path, DWORD, void* buffer, DWORD* size) {
  if (std::strncmp(path, mapped.c_str(), mapped.size()) != 0) return ERROR_NOT_CONNECTED;
  const std::string name = "\\\\SERVER\\pictures" + std::string(path + mapped.size());
  const size_t needed = sizeof(UNIVERSAL_NAME_INFOA) + name.size() + 1;
  if (*size < needed) return *size = static_cast<DWORD>(needed), DWORD{ERROR_MORE_DATA};
  auto* info = static_cast<UNIVERSAL_NAME_INFOA*>(buffer);
  info->lpUniversalName = static_cast<char*>(buffer) + sizeof *info;
  std::memcpy(info->lpUniversalName, name.c_str(), name.size() + 1);
  return NO_ERROR;
}

TEST(SavedRecord, HoldsTheNetworkNameOfAPathOnAMappedDriveAndZeros) {
  test::TempFolder folder;
  mapped = folder / "";
  mapped.pop_back();
  test::HostedEffect effect(64, 36);
  effect.SetPhoto(folder / "a.bmp");
  win32().WNetGetUniversalNameA = MappedDrive;
  effect.Render();
  win32() = DefaultWin32Calls();

  int32_t size = 0;
  const void* record = effect.instance().GetInstanceData(&size);
  const std::string name = "\\\\SERVER\\pictures\\a.bmp";
  EXPECT_EQ(std::string(static_cast<const char*>(record), static_cast<size_t>(size)),
            name + std::string(2048 - name.size(), '\0'));
}

}  // namespace
}  // namespace kelto
