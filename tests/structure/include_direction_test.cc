// Who may include whom. docs/architecture.md draws the same rules for readers.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kelto {
namespace {

namespace fs = std::filesystem;

/// Folder -> folders that its files may include, itself aside.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"platform", {}},
    {"runtime/hfx", {"platform"}},
    {"runtime/ipl", {"platform"}},
    {"runtime/pxcfx", {"platform"}},
    {"runtime/stills", {"platform"}},
    {"runtime/win32", {"platform"}},
    {"curves", {}},
    {"framing", {"platform"}},
    {"resample", {"framing"}},
    {"state", {"platform", "curves"}},
    {"image", {"platform", "framing", "state", "resample"}},
    {"render", {"platform", "framing", "curves", "resample", "state", "image"}},
    {"plugin", {"platform", "framing", "curves", "state", "image", "render"}},
    // The command is a host: it knows modules only through the host interface. Where frames come
    // from in the photo no interface tells: framing says it to both.
    {"host", {"platform", "framing", "runtime/hfx"}},
    // Hosts too, made of the command's parts.
    {"adapters", {"platform", "framing", "runtime/hfx", "host"}},
};

/// The longest folder of the table that holds `path`.
std::string FolderOf(const std::string& path) {
  std::string folder;
  for (const auto& [name, allowed] : kMayInclude) {
    if (path.starts_with(name + "/") && name.size() > folder.size()) folder = name;
  }
  return folder.empty() ? path.substr(0, path.find('/')) : folder;
}

struct Include {
  std::string file, included;
};

/// Every quoted include of the folders above.
std::vector<Include> AllIncludes() {
  const fs::path root(KELTO_SOURCE_DIR);
  const std::string quoted = "#include \"";
  std::vector<Include> includes;
  for (const auto& [folder, allowed] : kMayInclude) {
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cc") continue;
      std::ifstream file(entry.path());
      std::string line;
      while (std::getline(file, line)) {
        if (!line.starts_with(quoted)) continue;
        const size_t end = line.find('"', quoted.size());
        includes.push_back({fs::relative(entry.path(), root).generic_string(),
                            line.substr(quoted.size(), end - quoted.size())});
      }
    }
  }
  return includes;
}

TEST(IncludeDirection, SourcesWereFound) { EXPECT_GT(AllIncludes().size(), 100u); }

TEST(IncludeDirection, EveryIncludeNamesAFileFromTheRoot) {
  for (const Include& i : AllIncludes()) {
    EXPECT_TRUE(fs::exists(fs::path(KELTO_SOURCE_DIR) / i.included))
        << i.file << " includes \"" << i.included << "\": write the path from the project's root";
  }
}

TEST(IncludeDirection, NoFolderIncludesOneAboveIt) {
  for (const Include& i : AllIncludes()) {
    const std::string from = FolderOf(i.file), to = FolderOf(i.included);
    if (from == to) continue;
    const auto rule = kMayInclude.find(from);
    ASSERT_NE(rule, kMayInclude.end()) << i.file << " lies in a folder without a rule";
    EXPECT_TRUE(rule->second.count(to)) << i.file << " must not include " << i.included;
  }
}

TEST(IncludeDirection, RulesHaveNoCycle) {
  std::map<std::string, int> rank;
  for (size_t round = 0; round <= kMayInclude.size(); ++round) {
    for (const auto& [folder, allowed] : kMayInclude) {
      for (const std::string& to : allowed) rank[folder] = std::max(rank[folder], rank[to] + 1);
    }
  }
  for (const auto& [folder, r] : rank) EXPECT_LE(r, static_cast<int>(kMayInclude.size())) << folder;
}

}  // namespace
}  // namespace kelto
