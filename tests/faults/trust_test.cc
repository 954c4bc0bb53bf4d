// What no file may decide: which code runs.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kelto {
namespace {

namespace fs = std::filesystem;

std::string TextOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Whether `text` calls `function`, which ends with its parenthesis; longer names do not count.
bool Calls(const std::string& text, const std::string& function) {
  for (size_t at = text.find(function); at != std::string::npos; at = text.find(function, at + 1)) {
    const unsigned char before = at > 0 ? static_cast<unsigned char>(text[at - 1]) : ' ';
    if (!std::isalnum(before) && before != '_') return true;
  }
  return false;
}

/// Whether `text` names the shell other than in the first line of a script that it writes.
bool NamesShell(const std::string& text) {
  for (size_t at = text.find("/bin/sh"); at != std::string::npos;
       at = text.find("/bin/sh", at + 1)) {
    if (at < 2 || text.compare(at - 2, 2, "#!") != 0) return true;
  }
  return false;
}

TEST(NoShell, IsEverCalled) {
  int files = 0;
  for (const char* folder : {"platform", "runtime", "curves", "resample", "deep", "state", "image",
                             "render", "plugin", "host", "adapters"}) {
    for (const auto& entry :
         fs::recursive_directory_iterator(fs::path(KELTO_SOURCE_DIR) / folder)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cc") continue;
      ++files;
      const std::string text = TextOf(entry.path());
      for (const char* function : {"system(", "popen(", "_popen(", "wordexp(", "ShellExecuteA(",
                                   "ShellExecuteW(", "WinExec("}) {
        EXPECT_FALSE(Calls(text, function)) << entry.path() << " calls " << function << ")";
      }
      EXPECT_FALSE(NamesShell(text)) << entry.path();
    }
  }
  EXPECT_GT(files, 200);
}

TEST(AProjectFile, CannotNameCode) {
  const std::string schema =
      TextOf(fs::path(KELTO_SOURCE_DIR) / "host" / "project" / "project.schema.json");
  ASSERT_NE(schema.find("\"properties\""), std::string::npos);
  for (const char* name : {"\"module\"", "\"plugin\"", "\"library\"", "\"command\""}) {
    EXPECT_EQ(schema.find(name), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace kelto
