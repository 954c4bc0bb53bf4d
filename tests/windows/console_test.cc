// What the command draws in a console, letter by letter.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <string>

#include "host/base/windows_text.h"
#include "host/terminal/terminal.h"
#include "host/terminal/text_stream.h"

namespace kelto::host {
namespace {

/// The error stream goes to a console's buffer for the time of a test; one that obeys no control
/// sequences, as consoles before Windows 10.
class Console : public testing::Test {
 protected:
  Console() {
    // What a test is started from may be no more than a pipe.
    FreeConsole();
    AllocConsole();
    handle_ = MakeBuffer();
    SetConsoleMode(handle_, ENABLE_PROCESSED_OUTPUT | ENABLE_WRAP_AT_EOL_OUTPUT);
    std::fflush(stderr);
    kept_ = _dup(_fileno(stderr));
    const int file = _open_osfhandle(reinterpret_cast<intptr_t>(handle_), _O_TEXT);
    _dup2(file, _fileno(stderr));
    _close(file);
  }
  ~Console() override {
    std::fflush(stderr);
    _dup2(kept_, _fileno(stderr));
    _close(kept_);
  }

  /// What stands in the first columns of a row.
  static std::string Row(SHORT row, size_t columns) {
    std::wstring text(columns, L'\0');
    DWORD count = 0;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the C library's own form of handles
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stderr)));
    ReadConsoleOutputCharacterW(handle, text.data(), static_cast<DWORD>(columns), {0, row}, &count);
    text.resize(count);
    return Utf8Text(text);
  }

 private:
  static HANDLE MakeBuffer() {
    return CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                     CONSOLE_TEXTMODE_BUFFER, nullptr);
  }

  HANDLE handle_;
  int kept_ = -1;
};

TEST_F(Console, IsATerminalAndAFileIsNone) {
  EXPECT_TRUE(IsTerminal(stderr));
  EXPECT_FALSE(ObeysSequences(stderr));
  std::FILE* const null = std::fopen("NUL", "w");
  EXPECT_FALSE(IsTerminal(null));
  std::fclose(null);
}

TEST_F(Console, ShowsLettersThatNoCodePageHas) {
  EXPECT_TRUE(WriteText(stderr, "Łódź Фото\n写真"));
  EXPECT_EQ(Row(0, 10), "Łódź Фото ");
  EXPECT_EQ(Row(1, 1), "写");
}

TEST_F(Console, HasNothingLeftOfALongerProgressLineNorOfControlSequences) {
  DrawProgress("frame 99 of 100");
  DrawProgress("frame 1 of 9");
  EXPECT_EQ(Row(0, 18), "frame 1 of 9      ");
  ClearProgress();
  EXPECT_EQ(Row(0, 18), std::string(18, ' '));
  PrintMessage("done");
  EXPECT_EQ(Row(0, 14), "kelto: done   ");
}

TEST_F(Console, TakesMoreThanOneCallDoes) {
  std::string text;
  for (int i = 0; i < 30000; ++i) text += "ж";
  EXPECT_TRUE(WriteText(stderr, text + "\nend\n"));
}

}  // namespace
}  // namespace kelto::host
