// Which libraries and modules are loaded, and from where.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/base/windows_text.h"
#include "tests/support/photo.h"
#include "tests/windows/command.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kModule = "KeltoPanAndZoom.hfx";

/// What the command and its module ask for, ship or find in the system, and what parts of the
/// system ask for in turn.
constexpr const char* kLibraries[] = {
    "hfx.dll",     "kelto_ipl.dll",     "kelto_win32.dll", "libgcc_s_dw2-1.dll",  "libstdc++-6.dll",
    "mpr.dll",     "netapi32.dll",      "comdlg32.dll",    "libwinpthread-1.dll", "ole32.dll",
    "shell32.dll", "windowscodecs.dll", "version.dll",     "cryptbase.dll",       "uxtheme.dll",
    "dwmapi.dll",  "propsys.dll",       "comctl32.dll",    "shlwapi.dll",         "zlib1.dll"};

/// An installed program in a folder that is below the user's own, with photographs in another.
class Planted : public testing::Test {
 protected:
  Planted() {
    fs::create_directories(program_);
    fs::create_directories(photos_);
    fs::create_directories(current_);
    const fs::path built = fs::path(KELTO_COMMAND).parent_path();
    for (const char* file : {"kelto.exe", "hfx.dll", "kelto_ipl.dll", "kelto_win32.dll",
                             "libgcc_s_dw2-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll"}) {
      fs::copy_file(built / file, program_ / file);
    }
    fs::copy_file(KELTO_MODULE, program_ / kModule);
    WritePhoto((photos_ / "photo.bmp").string(), 8, 6, [](int, int) { return Rgb{1, 2, 3}; });
  }

  void Plant(const fs::path& folder, const std::string& name) {
    fs::create_directories(folder);
    fs::copy_file(KELTO_PLANTED_LIBRARY, folder / name);
  }

  CommandResult Render() {
    return RunProgram((program_ / "kelto.exe").native(),
                      {"render", (photos_ / "photo.bmp").string(), "-o", "film.yuyv", "--size",
                       "64x48", "--frames", "1"},
                      current_.native(), {{"KELTO_PLANTED", note_.string()}});
  }

  const TempFolder folder_;
  const fs::path parent_ = folder_ / "parent", program_ = parent_ / "program",
                 photos_ = folder_ / "photos", current_ = folder_ / "current",
                 note_ = folder_ / "loaded";
};

TEST_F(Planted, LibrariesInTheCurrentTheParentAndThePhotosFolderAreNotLoaded) {
  for (const fs::path& folder : {current_, parent_, photos_, parent_ / "lib"}) {
    for (const char* library : kLibraries) Plant(folder, library);
  }
  const CommandResult result = Render();
  EXPECT_EQ(result.code, 0u) << result.err;
  EXPECT_FALSE(fs::exists(note_));
}

TEST_F(Planted, ModulesInTheCurrentTheParentAndThePhotosFolderAreNotLoaded) {
  for (const fs::path& folder : {current_, current_ / "lib", parent_, parent_ / "lib",
                                 parent_ / "lib" / "kelto", photos_, photos_ / "lib"}) {
    Plant(folder, kModule);
  }
  EXPECT_EQ(Render().code, 0u);
  EXPECT_FALSE(fs::exists(note_));
  // Nor where there is none in its place.
  fs::remove(program_ / kModule);
  const CommandResult result = Render();
  EXPECT_EQ(result.code, 1u);
  EXPECT_THAT(result.err, testing::HasSubstr("KeltoPanAndZoom.hfx: not found as"));
  EXPECT_FALSE(fs::exists(note_));
}

// Or the two tests above would prove nothing.
TEST_F(Planted, TheLibraryIsNotedWhereItIsLoaded) {
  fs::remove(program_ / kModule);
  Plant(program_, kModule);
  EXPECT_EQ(Render().code, 1u);
  EXPECT_TRUE(fs::exists(note_));
}

TEST_F(Planted, AModuleInTheProgramsOwnLibIsLoaded) {
  fs::create_directories(program_ / "lib");
  fs::rename(program_ / kModule, program_ / "lib" / kModule);
  const CommandResult result = Render();
  EXPECT_EQ(result.code, 0u) << result.err;
}

// The README says which call.
TEST_F(Planted, AForeignHostLoadsTheModuleByItsFullPath) {
  const fs::path host = current_ / "host.exe";
  fs::copy_file(KELTO_FOREIGN_HOST, host);
  const std::string module = (program_ / kModule).string();
  EXPECT_EQ(RunProgram(host.native(), {module, "altered"}, current_.native()).code, 0u);
  EXPECT_EQ(RunProgram(host.native(), {module, "plain"}, current_.native()).code,
            static_cast<unsigned long>(ERROR_MOD_NOT_FOUND));
}

}  // namespace
}  // namespace kelto::test
