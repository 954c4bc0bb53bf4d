#include "host/files/output_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "host/base/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using testing::HasSubstr;

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

int FilesIn(const TempFolder& folder) {
  const fs::directory_iterator files(folder / "");
  return static_cast<int>(std::distance(begin(files), end(files)));
}

std::string ErrorOf(const std::string& name) {
  try {
    OutputFile file(name);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

TEST(OutputFile, HasItsNameOnlyWhenFinished) {
  const TempFolder folder;
  OutputFile file(folder / "film");
  file.Write("abc", 3);
  EXPECT_FALSE(fs::exists(folder / "film"));
  file.Finish();
  EXPECT_EQ(Content(folder / "film"), "abc");
  EXPECT_EQ(FilesIn(folder), 1);
}

TEST(OutputFile, WaitsForAPipeThatIsSetNotToWait) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
  constexpr size_t kBytes = 1 << 20;  // many times what a pipe holds
  const pid_t writer = fork();
  ASSERT_GE(writer, 0);
  if (writer == 0) {
    dup2(ends[1], STDOUT_FILENO);
    try {
      OutputFile file("-");
      file.Write(std::string(kBytes, 'x').data(), kBytes);
      file.Finish();
      _exit(0);
    } catch (const Error&) {
      _exit(1);
    }
  }
  close(ends[1]);
  size_t seen = 0;
  for (pollfd waiting{ends[0], POLLIN, 0}; poll(&waiting, 1, 20000) > 0;) {
    char part[30000];
    const ssize_t count = read(ends[0], part, sizeof part);
    if (count <= 0) break;
    seen += static_cast<size_t>(count);
  }
  close(ends[0]);
  int status = -1;
  ASSERT_EQ(waitpid(writer, &status, 0), writer);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(seen, kBytes);
}

TEST(OutputFile, LeavesNothingWhenNotFinished) {
  const TempFolder folder;
  { OutputFile(folder / "film").Write("abc", 3); }
  EXPECT_EQ(FilesIn(folder), 0);
}

TEST(OutputFile, KeepsTheFileBeforeUntilTheNewOneIsWhole) {
  const TempFolder folder;
  Put(folder / "film", "old");
  { OutputFile(folder / "film").Write("new", 3); }
  EXPECT_EQ(Content(folder / "film"), "old");
  OutputFile file(folder / "film");
  file.Write("new", 3);
  EXPECT_EQ(Content(folder / "film"), "old");
  file.Finish();
  EXPECT_EQ(Content(folder / "film"), "new");
}

TEST(OutputFile, WritesAgainWhereItSeeksTo) {
  const TempFolder folder;
  OutputFile file(folder / "film");
  file.Write("abcdef", 6);
  file.Seek(1);
  file.Write("XY", 2);
  EXPECT_EQ(file.Size(), 6);
  EXPECT_EQ(Content(file.WorkPath().string()), "aXYdef") << "not there before the end";
  file.Finish();
  EXPECT_EQ(Content(folder / "film"), "aXYdef");
}

TEST(OutputFile, FollowsASymbolicLinkAndLeavesItInPlace) {
  const TempFolder folder;
  fs::create_directory(folder / "elsewhere");
  Put(folder / "elsewhere/film", "old");
  fs::create_symlink("elsewhere/film", folder / "link");
  OutputFile file(folder / "link");
  file.Write("new", 3);
  file.Finish();
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(Content(folder / "elsewhere/film"), "new");
}

TEST(OutputFile, TakesNamesThatAreAsLongAsNamesCanBe) {
  const TempFolder folder;
  const std::string name(255, 'n');
  OutputFile file(folder / name);
  file.Finish();
  EXPECT_TRUE(fs::exists(folder / name));
}

TEST(OutputFile, RefusesAFolder) {
  const TempFolder folder;
  EXPECT_THAT(ErrorOf(folder / ""), HasSubstr("is a folder"));
  fs::create_directory(folder / "sub");
  EXPECT_THAT(ErrorOf(folder / "sub"), HasSubstr("is a folder"));
}

TEST(OutputFile, RefusesAFolderThatIsNotThere) {
  const TempFolder folder;
  EXPECT_THAT(ErrorOf(folder / "no/film"), HasSubstr("there is no folder"));
}

TEST(OutputFile, RefusesAFileInPlaceOfAFolder) {
  const TempFolder folder;
  Put(folder / "file", "");
  EXPECT_THAT(ErrorOf(folder / "file/film"), HasSubstr(folder / "file/film"));
  EXPECT_EQ(FilesIn(folder), 1);
}

TEST(OutputFile, NeverReplacesADevice) {
  EXPECT_THAT(ErrorOf("/dev/null"), HasSubstr("not an ordinary file"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  const TempFolder folder;
  fs::create_symlink("/dev/null", folder / "link");
  EXPECT_THAT(ErrorOf(folder / "link"), HasSubstr("not an ordinary file"));
}

TEST(OutputFile, RefusesLinksThatLeadInACircle) {
  const TempFolder folder;
  fs::create_symlink("b", folder / "a");
  fs::create_symlink("a", folder / "b");
  EXPECT_NE(ErrorOf(folder / "a"), "none");
  EXPECT_EQ(FilesIn(folder), 2);
}

}  // namespace
}  // namespace kelto::host
