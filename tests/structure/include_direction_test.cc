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
    // What a host makes of its views; the module knows nothing of it.
    {"motion", {"curves"}},
    {"framing", {"platform"}},
    {"catalogue", {"framing"}},
    {"keyframes", {"catalogue", "platform", "framing", "curves"}},
    {"targets", {}},
    {"resample", {"framing", "targets"}},
    // For hosts: the module's own pictures have 8 bits.
    {"deep", {"platform", "framing", "targets", "resample"}},
    {"state", {"platform", "framing", "keyframes"}},
    {"image", {"platform", "framing", "state", "resample"}},
    {"render", {"platform", "framing", "keyframes", "resample", "state", "image"}},
    {"plugin", {"catalogue", "platform", "framing", "keyframes", "state", "image", "render"}},
    // The command is a host: it knows modules only through the host interface. Its floors, from the
    // lowest to the highest.
    {"host/base", {}},
    {"host/terminal", {"host/base"}},
    {"host/live", {"host/base", "host/terminal"}},
    {"host/options", {"catalogue", "framing", "host/base"}},
    {"host/playback", {"host/base"}},
    {"host/files", {"host/base", "host/terminal"}},
    {"host/sandbox", {"host/base"}},
    {"host/processes", {"host/base", "host/sandbox", "host/terminal"}},
    {"host/plan", {"catalogue", "host/base", "host/options"}},
    {"host/film",
     {"deep", "host/base", "host/files", "host/options", "host/processes", "host/terminal"}},
    {"host/video", {"host/base", "host/film"}},
    {"host/project", {"catalogue", "host/base", "host/files", "host/options", "host/plan"}},
    {"host/effect",
     {"catalogue", "platform", "framing", "deep", "runtime/hfx", "runtime/stills", "host/base",
      "host/files", "host/plan"}},
    {"host/sources",
     {"host/base", "host/effect", "host/film", "host/options", "host/processes", "host/terminal",
      "host/video"}},
    {"host/faces",
     {"framing", "host/base", "host/effect", "host/files", "host/options", "host/processes",
      "host/sources"}},
    {"host/lettering", {"platform", "host/base"}},
    {"host/track",
     {"catalogue", "framing", "motion", "runtime/hfx", "host/base", "host/effect", "host/options",
      "host/plan"}},
    {"host/frames",
     {"catalogue", "deep", "platform", "runtime/hfx", "host/base", "host/effect", "host/files",
      "host/lettering", "host/plan", "host/terminal", "host/track", "host/video"}},
    {"host/facts",
     {"catalogue", "platform", "framing", "motion", "runtime/hfx", "host/base", "host/effect",
      "host/files", "host/options", "host/plan", "host/terminal", "host/track"}},
    {"host/deep",
     {"catalogue", "deep", "framing", "runtime/hfx", "host/base", "host/effect", "host/facts",
      "host/film", "host/frames", "host/plan", "host/track"}},
    {"host/drawing",
     {"catalogue", "platform", "runtime/hfx", "host/base", "host/deep", "host/effect", "host/facts",
      "host/files", "host/frames", "host/options", "host/plan", "host/terminal"}},
    {"host/player",
     {"catalogue", "platform", "runtime/hfx", "host/base", "host/deep", "host/drawing",
      "host/effect", "host/facts", "host/files", "host/frames", "host/options", "host/plan",
      "host/playback", "host/sandbox", "host/terminal"}},
    {"host/moves",
     {"catalogue", "platform", "framing", "motion", "runtime/hfx", "host/base", "host/effect",
      "host/options", "host/plan", "host/track"}},
    {"host/machine",
     {"platform", "targets", "runtime/hfx", "host/base", "host/effect", "host/files", "host/film",
      "host/frames", "host/plan"}},
    {"host/jobs",
     {"platform", "runtime/hfx", "host/base", "host/deep", "host/effect", "host/files", "host/film",
      "host/frames", "host/lettering", "host/options", "host/plan", "host/processes",
      "host/project", "host/sandbox", "host/sources", "host/terminal"}},
    {"host/commands",
     {"catalogue",    "platform",       "runtime/hfx",   "host/base",      "host/drawing",
      "host/effect",  "host/faces",     "host/facts",    "host/files",     "host/film",
      "host/jobs",    "host/lettering", "host/live",     "host/machine",   "host/moves",
      "host/options", "host/plan",      "host/player",   "host/processes", "host/project",
      "host/sandbox", "host/sources",   "host/terminal", "host/track",     "host/video"}},
    // main.cc alone.
    {"host",
     {"platform", "runtime/hfx", "host/base", "host/commands", "host/effect", "host/files",
      "host/terminal"}},
    // The editor, a program of its own made of the command's parts. It decodes nothing itself: only
    // editor/drawing, which is another process, may open photos (host/effect).
    {"editor/document",
     {"catalogue", "framing", "motion", "host/base", "host/files", "host/moves", "host/options",
      "host/plan", "host/project", "host/track", "editor/rules"}},
    {"editor/rules",
     {"catalogue", "framing", "host/base", "host/options", "host/plan", "host/track"}},
    {"editor/messages", {"framing", "editor/rules", "host/base", "host/options"}},
    // The process that draws, which has no windows.
    {"editor/drawing",
     {"catalogue", "framing", "runtime/hfx", "host/base", "host/deep", "host/effect", "host/facts",
      "host/film", "host/frames", "host/jobs", "host/options", "host/plan", "host/project",
      "host/sandbox", "host/track", "editor/messages", "editor/rules"}},
    {"editor/preview",
     {"framing", "host/base", "host/plan", "host/playback", "host/project", "editor/messages",
      "editor/rules"}},
    {"editor/widgets", {"host/base", "host/options", "host/playback", "editor/rules"}},
    {"editor/window",
     {"catalogue", "framing", "motion", "host/base", "host/film", "host/jobs", "host/moves",
      "host/options", "host/plan", "host/project", "host/track", "editor/document",
      "editor/messages", "editor/preview", "editor/rules", "editor/widgets"}},
    // main.cc alone.
    {"editor", {"host/base", "host/effect", "host/files", "editor/window"}},
    // Hosts too, made of the command's parts.
    {"adapters",
     {"catalogue", "platform", "framing", "deep", "runtime/hfx", "runtime/stills", "host/base",
      "host/effect", "host/files", "host/options", "host/plan", "host/project", "host/track"}},
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
    if (!fs::exists(root / folder)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cc") continue;
      if (FolderOf(fs::relative(entry.path(), root).generic_string()) != folder) continue;
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

TEST(IncludeDirection, RulesHaveNoCircle) {
  for (const auto& [folder, allowed] : kMayInclude) {
    std::set<std::string> reached;
    std::vector<std::string> ahead(allowed.begin(), allowed.end());
    while (!ahead.empty()) {
      const std::string next = ahead.back();
      ahead.pop_back();
      if (!reached.insert(next).second) continue;
      const auto rule = kMayInclude.find(next);
      ASSERT_NE(rule, kMayInclude.end())
          << folder << " may include " << next << ", which has no row";
      ahead.insert(ahead.end(), rule->second.begin(), rule->second.end());
    }
    EXPECT_FALSE(reached.count(folder)) << folder << " includes itself by way of others";
  }
}

TEST(HostFloors, EachFolderIsALibraryWithARow) {
  for (const auto& entry : fs::directory_iterator(fs::path(KELTO_SOURCE_DIR) / "host")) {
    if (!entry.is_directory()) continue;
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(kMayInclude.count("host/" + name)) << name << " has no row in this test's table";
    std::ifstream file(entry.path() / "CMakeLists.txt");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("kelto_host_" + name), text.npos)
        << name << "/CMakeLists.txt makes no library kelto_host_" << name;
  }
}

/// The names between backticks, as "base/", in `text`.
std::vector<std::string> Quoted(const std::string& text) {
  std::vector<std::string> names;
  size_t at = 0;
  while ((at = text.find('`', at)) != text.npos) {
    const size_t end = text.find('`', at + 1);
    if (end == text.npos) break;
    names.push_back(text.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return names;
}

TEST(HostFloors, TheArchitecturePageHasThisTestsTable) {
  std::ifstream page(fs::path(KELTO_SOURCE_DIR) / "docs/architecture.md");
  std::string line;
  while (std::getline(page, line) && !line.starts_with("| folder of `host/`")) {
  }
  std::getline(page, line);  // the rule below the head
  size_t rows = 0;
  for (; std::getline(page, line) && line.starts_with("|"); ++rows) {
    const size_t last = line.rfind("| ", line.size() - 3);
    const std::vector<std::string> folder = Quoted(line.substr(0, line.find('|', 1)));
    ASSERT_EQ(folder.size(), 1u) << line;
    const std::string name = "host/" + folder[0].substr(0, folder[0].size() - 1);
    const auto rule = kMayInclude.find(name);
    ASSERT_NE(rule, kMayInclude.end()) << name;
    if (line.ends_with("| any of these |")) continue;
    std::set<std::string> drawn, allowed;
    for (const std::string& other : Quoted(line.substr(last))) {
      drawn.insert("host/" + other.substr(0, other.size() - 1));
    }
    for (const std::string& other : rule->second) {
      if (other.starts_with("host/")) allowed.insert(other);
    }
    EXPECT_EQ(drawn, allowed) << line;
  }
  EXPECT_GE(rows, 15u);
}

}  // namespace
}  // namespace kelto
