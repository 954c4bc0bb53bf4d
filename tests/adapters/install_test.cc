// The plug-ins as they are installed.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/adapters/run.h"

namespace kelto {
namespace {

using test::RunProgram;

TEST(FreiInstall, InstalledPluginsFindTheEffectFromWhereTheyLie) {
  const test::TempFolder folder;
  const std::string plugins = folder / "frei0r-1";
  ASSERT_EQ(RunProgram({"cmake", "--install", KELTO_BUILD_FOLDER, "--component", "frei0r",
                        "--prefix", plugins})
                .code,
            0);
  test::WriteTestPhoto(folder / "photo.bmp");
  const std::string out = folder / "out.bgra";
  const auto outcome = RunProgram(
      {"ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
       "frei0r_src=size=320x180:framerate=25:filter_name=kelto_pan_zoom_src:filter_params=" +
           (folder / "photo.bmp"),
       "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "bgra", out},
      plugins);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(outcome.Lines().empty()) << outcome.err;
  test::ExpectSameFrames(test::ReadFrames(out, 320, 180),
                         test::RenderByCommand(folder / "photo.bmp", {320, 180}, {"--frames", "1"}),
                         "installed");
}

TEST(FreiInstall, NothingBesideThePluginsLooksLikeOne) {
  const test::TempFolder folder;
  ASSERT_EQ(RunProgram({"cmake", "--install", KELTO_BUILD_FOLDER, "--component", "frei0r",
                        "--prefix", folder / "frei0r-1"})
                .code,
            0);
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "frei0r-1")) {
    if (entry.path().extension() == ".so") names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"kelto_pan_zoom.so", "kelto_pan_zoom_src.so"}));
}

}  // namespace
}  // namespace kelto
