#include "platform/win32.h"

#include <gtest/gtest.h>

namespace kelto {
namespace {

int KELTO_WINAPI Answer42(HWND, const char*, const char*, unsigned) { return 42; }

TEST(Win32Table, NoEntryIsNull) {
  for (const Win32Calls& calls : {win32(), DefaultWin32Calls()}) {
    EXPECT_NE(calls.GetDesktopWindow, nullptr);
    EXPECT_NE(calls.GetOpenFileNameA, nullptr);
    EXPECT_NE(calls.MessageBoxA, nullptr);
    EXPECT_NE(calls.WNetGetUniversalNameA, nullptr);
    EXPECT_NE(calls.NetShareEnum, nullptr);
    EXPECT_NE(calls.NetWkstaGetInfo, nullptr);
    EXPECT_NE(calls.NetApiBufferFree, nullptr);
  }
}

TEST(Win32Table, EntriesCanBeReplacedAndPutBack) {
  win32().MessageBoxA = Answer42;
  EXPECT_EQ(win32().MessageBoxA(nullptr, "", "", MB_OK), 42);
  win32() = DefaultWin32Calls();
  EXPECT_NE(win32().MessageBoxA, nullptr);
  EXPECT_EQ(win32().MessageBoxA, DefaultWin32Calls().MessageBoxA);
}

#if !defined(_WIN32)

TEST(Win32Table, DialogsAreCancelledUntilAHostAnswersThem) {
  char path[16] = "kept.png";
  OPENFILENAMEA dialog = {};
  dialog.lpstrFile = path;
  dialog.nMaxFile = sizeof(path);
  EXPECT_EQ(win32().GetOpenFileNameA(&dialog), 0);
  EXPECT_STREQ(path, "kept.png");
}

TEST(Win32Table, MessagesGoToTheErrorStream) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(win32().MessageBoxA(nullptr, "Text.", "Caption", MB_OK), IDOK);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Caption: Text.\n");
}

TEST(Win32Table, NoNetworkNamesExist) {
  char buffer[64] = {};
  DWORD size = sizeof(buffer);
  EXPECT_EQ(win32().WNetGetUniversalNameA("Z:\\a.jpg", UNIVERSAL_NAME_INFO_LEVEL, buffer, &size),
            ERROR_NOT_CONNECTED);

  uint8_t* shares = nullptr;
  DWORD count = 9, total = 9, resume = 0;
  EXPECT_EQ(
      win32().NetShareEnum(nullptr, 2, &shares, MAX_PREFERRED_LENGTH, &count, &total, &resume),
      NO_ERROR);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(shares, nullptr);

  uint8_t* machine = nullptr;
  EXPECT_NE(win32().NetWkstaGetInfo(nullptr, 100, &machine), NO_ERROR);
  EXPECT_EQ(machine, nullptr);
}

#endif

}  // namespace
}  // namespace kelto
