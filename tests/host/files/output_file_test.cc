#include "host/files/output_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/files/part_name.h"
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
  std::fflush(stdout);                // or the child would write what is held back, too
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

TEST(OutputFile, ReplacesASymbolicLinkAndNotWhatItLeadsTo) {
  const TempFolder folder;
  fs::create_directory(folder / "elsewhere");
  Put(folder / "elsewhere/film", "old");
  for (const char* target : {"elsewhere/film", "elsewhere/none", "link"}) {
    fs::remove(folder / "link");
    fs::create_symlink(target, folder / "link");
    OutputFile file(folder / "link");
    file.Write("new", 3);
    file.Finish();
    EXPECT_FALSE(fs::is_symlink(folder / "link")) << target;
    EXPECT_EQ(Content(folder / "link"), "new") << target;
  }
  EXPECT_EQ(Content(folder / "elsewhere/film"), "old");
  EXPECT_FALSE(fs::exists(folder / "elsewhere/none"));
}

TEST(OutputFile, DoesNotFollowALinkThatIsPutInItsPlaceMeanwhile) {
  const TempFolder folder;
  Put(folder / "precious", "old");
  OutputFile file(folder / "film");
  file.Write("new", 3);
  fs::create_symlink("precious", folder / "film");
  file.Finish();
  EXPECT_EQ(Content(folder / "precious"), "old");
  EXPECT_EQ(Content(folder / "film"), "new");
}

TEST(OutputFile, WritesIntoTheFolderThatItHasOpened) {
  const TempFolder folder;
  fs::create_directory(folder / "films");
  fs::create_directory(folder / "precious");
  OutputFile file(folder / "films/film");
  file.Write("new", 3);
  fs::rename(folder / "films", folder / "moved");
  fs::create_symlink("precious", folder / "films");
  file.Finish();
  EXPECT_EQ(Content(folder / "moved/film"), "new");
  EXPECT_TRUE(fs::is_empty(folder / "precious"));
}

/// Does `work` as a user without privileges, where this one has some; its failed assertions count.
template <typename Work>
void AsAnybody(const TempFolder& folder, const Work& work) {
  constexpr uid_t kAnybody = 65534;
  if (geteuid() != 0) GTEST_SKIP() << "only root has other users";
  const pid_t process = fork();
  ASSERT_GE(process, 0);
  if (process == 0) {
    if (setgid(kAnybody) != 0 || setuid(kAnybody) != 0) _exit(2);
    work();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(process, &status, 0), process);
  EXPECT_EQ(status, 0) << "see above; in " << folder / "";
}

TEST(OutputFile, RefusesInAStickyFolderWhatIsAnotherUsers) {
  const TempFolder folder;
  const fs::path shared = folder / "";
  fs::permissions(shared, fs::perms::all | fs::perms::sticky_bit);
  Put(folder / "precious", "old");
  fs::create_symlink("precious", folder / "planted");
  Put(folder / "film", "old");
  AsAnybody(folder, [&] {
    EXPECT_THAT(ErrorOf(folder / "planted"), HasSubstr("is another user's"));
    EXPECT_THAT(ErrorOf(folder / "film"), HasSubstr("is another user's"));
    OutputFile file(folder / "own");
    file.Finish();
    EXPECT_EQ(ErrorOf(folder / "own"), "none");
  });
  EXPECT_EQ(Content(folder / "precious"), "old");
}

mode_t ModeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

TEST(OutputFile, KeepsThePermissionsOfTheFileThatItReplaces) {
  const TempFolder folder;
  const mode_t before = umask(022);
  for (const mode_t mode : {0600, 0640, 0444, 0666, 0755}) {
    Put(folder / "film", "old");
    ASSERT_EQ(chmod((folder / "film").c_str(), mode), 0);
    OutputFile file(folder / "film");
    EXPECT_EQ(ModeOf(file.WorkPath().string()), 0600u) << "while it is written";
    file.Finish();
    EXPECT_EQ(ModeOf(folder / "film"), mode);
    fs::remove(folder / "film");
  }
  OutputFile(folder / "film").Finish();
  EXPECT_EQ(ModeOf(folder / "film"), 0644u) << "of a new one";
  fs::create_symlink("film", folder / "link");
  ASSERT_EQ(chmod((folder / "film").c_str(), 0600), 0);
  OutputFile(folder / "link").Finish();
  EXPECT_EQ(ModeOf(folder / "link"), 0644u) << "not those behind a link";
  umask(before);
}

TEST(OutputFile, KeepsTheOwnerOfTheFileThatItReplaces) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  const TempFolder folder;
  Put(folder / "film", "old");
  ASSERT_EQ(chown((folder / "film").c_str(), 1234, 2345), 0);
  OutputFile(folder / "film").Finish();
  struct stat status {};
  ASSERT_EQ(stat((folder / "film").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 1234u);
  EXPECT_EQ(status.st_gid, 2345u);
}

/// What a run leaves that is killed while it writes these files.
void LeaveParts(const std::vector<std::string>& names) {
  const pid_t process = fork();
  ASSERT_GE(process, 0);
  if (process == 0) {
    std::vector<std::unique_ptr<OutputFile>> files;
    for (const std::string& name : names) {
      files.push_back(std::make_unique<OutputFile>(name));
      files.back()->Write("half", 4);
    }
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(process, &status, 0), process);
  ASSERT_TRUE(WIFSIGNALED(status));
}

TEST(OutputFile, ClearsAwayWhatKilledRunsHaveLeft) {
  const TempFolder folder;
  LeaveParts({folder / "film", folder / "other film"});
  EXPECT_EQ(FilesIn(folder), 2);
  RemoveAbandonedParts(folder / "");
  EXPECT_EQ(FilesIn(folder), 0);
}

TEST(OutputFile, LeavesAloneWhatOthersStillWrite) {
  const TempFolder folder;
  OutputFile first(folder / "film");
  first.Write("first", 5);
  // Another process, since one looks only once.
  const pid_t process = fork();
  ASSERT_GE(process, 0);
  if (process == 0) {
    RemoveAbandonedParts(folder / "");
    OutputFile second(folder / "film");
    second.Write("second", 6);
    second.Finish();
    _exit(0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(process, &status, 0), process);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Content(folder / "film"), "second");
  first.Finish();
  EXPECT_EQ(Content(folder / "film"), "first");
}

TEST(OutputFile, LeavesAloneWhatOnlyLooksLikeItsOwn) {
  const TempFolder folder;
  const std::string own = NewPartName("film");
  ASSERT_TRUE(IsPartName(own));
  EXPECT_TRUE(IsPartOfThisMachine(own));
  std::string another = own;  // machine
  char& letter = another[another.find("kelto-") + 6];
  letter = letter == 'a' ? 'b' : 'a';
  EXPECT_TRUE(IsPartName(another));
  EXPECT_FALSE(IsPartOfThisMachine(another));
  std::set<std::string> kept{"film.part",
                             ".film.part",
                             ".film.mp4.abcdefgh.part",
                             another,
                             ".kelto-0000aaaaaaaa.part",
                             ".film.kelto-0000AAAAAAAA.part"};
  for (const std::string& name : kept) Put(folder / name, "x");
  fs::create_directory(folder / NewPartName("a folder"));
  fs::create_symlink("film.part", folder / NewPartName("a link"));
  Put(folder / own, "x");
  RemoveAbandonedParts(folder / "");
  EXPECT_FALSE(fs::exists(folder / own));
  for (const std::string& name : kept) EXPECT_TRUE(fs::exists(folder / name)) << name;
  EXPECT_EQ(FilesIn(folder), static_cast<int>(kept.size()) + 2);
}

TEST(OutputFile, ClearsAwayAnotherMachinesAfterADay) {
  const TempFolder folder;
  std::string another = NewPartName("film");
  char& letter = another[another.find("kelto-") + 6];
  letter = letter == 'a' ? 'b' : 'a';
  Put(folder / another, "x");
  fs::last_write_time(folder / another, fs::file_time_type::clock::now() - std::chrono::hours(25));
  RemoveAbandonedParts(folder / "");
  EXPECT_EQ(FilesIn(folder), 0);
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

TEST(OutputFile, NeverReplacesTheStandardOutputsLink) {
  const TempFolder folder;
  Put(folder / "redirected", "");
  fs::create_symlink("redirected", folder / "stdout");
  const int kept = dup(STDOUT_FILENO);
  std::fflush(stdout);
  const int file = open((folder / "redirected").c_str(), O_WRONLY);
  ASSERT_GE(dup2(file, STDOUT_FILENO), 0);
  const std::string error = ErrorOf(folder / "stdout");
  dup2(kept, STDOUT_FILENO);
  close(kept);
  close(file);
  EXPECT_THAT(error, HasSubstr("write to the standard output (-)"));
}

}  // namespace
}  // namespace kelto::host
