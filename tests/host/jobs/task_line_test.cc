#include "host/jobs/task_line.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "host/base/error.h"
#include "host/base/shell_word.h"
#include "host/base/shown_text.h"

namespace kelto::host {
namespace {

#if !defined(_WIN32)  // which has no such shell to ask
/// What a shell makes of a word.
std::string ByShell(const std::string& quoted) {
  const std::string line = "printf %s " + quoted;
  std::FILE* shell = popen(line.c_str(), "r");
  std::string text;
  std::array<char, 256> buffer;
  for (size_t n; (n = std::fread(buffer.data(), 1, buffer.size(), shell)) > 0;) {
    text.append(buffer.data(), n);
  }
  pclose(shell);
  return text;
}
#endif

TEST(TaskLine, OrdinaryWordsStayAsTheyAre) {
  EXPECT_EQ(TaskLine({"kelto", "render", "/a/b-1.jpg", "--from", "1@0.5,-0.1"}),
            "kelto render /a/b-1.jpg --from 1@0.5,-0.1");
}

TEST(TaskLine, OtherWordsAreQuoted) {
  EXPECT_EQ(ShellQuoted("a b"), "'a b'");
  EXPECT_EQ(ShellQuoted("it's"), "'it'\\''s'");
  EXPECT_EQ(ShellQuoted(""), "''");
}

#if !defined(_WIN32)
TEST(TaskLine, AShellReadsEveryWordBack) {
  for (const std::string word : {"it's",
                                 "a b",
                                 "$HOME",
                                 "`x`",
                                 "\"",
                                 "\\",
                                 "*",
                                 "#rrggbb",
                                 "~",
                                 "!",
                                 "tab\there",
                                 "Zürich",
                                 "'",
                                 "''",
                                 "-n;ls",
                                 "{1,2}",
                                 "\x1b[31m it's 5 % \\ $HOME",
                                 "-\x7f-n",
                                 "\x9b",
                                 "\xc2\x9b"
                                 "1\xff"
                                 "2"}) {
    EXPECT_EQ(ByShell(ShellQuoted(word)), word);
  }
}
#endif

TEST(TaskLine, ShowsNothingThatATerminalWouldObey) {
  for (const std::string word : {"\x1b[31m", "\x7f", "\x07", "\xc2\x9b", "\xe2\x80\xae"}) {
    EXPECT_EQ(ShownText(ShellQuoted(word)), ShellQuoted(word));
  }
}

TEST(TaskLine, AWordOfTwoLinesIsRefused) { EXPECT_THROW(TaskLine({"a\nb"}), Error); }

}  // namespace
}  // namespace kelto::host
