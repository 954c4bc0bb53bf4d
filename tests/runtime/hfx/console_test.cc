#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/runtime/hfx/console_capture.h"

namespace kelto {
namespace {

using testing::ElementsAre;

TEST(Console, HandsEachFormattedTextToTheSinkOnce) {
  std::vector<std::string> texts;
  hfx::SetConsole([&](const std::string& text) { texts.push_back(text); });
  hfxGlobal::ConsolePrintf("%d of %s\n", 3, "four");
  hfxGlobal::ConsolePrintf("again");
  hfx::SetConsole({});
  EXPECT_THAT(texts, ElementsAre("3 of four\n", "again"));
}

TEST(Console, KeepsTextsOfAnyLength) {
  ConsoleCapture console;
  const std::string longText(100000, 'x');
  hfxGlobal::ConsolePrintf("%s!", longText.c_str());
  EXPECT_EQ(console.text(), longText + "!");
}

TEST(Console, WritesToTheErrorStreamWithoutASink) {
  hfx::SetConsole({});
  testing::internal::CaptureStderr();
  hfxGlobal::ConsolePrintf("no sink: %d\n", 7);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "no sink: 7\n");
}

TEST(Console, LetsASinkReplaceItselfWhileItRuns) {
  std::string first, second;
  hfx::SetConsole([&, padding = std::string(100, 'p')](const std::string& text) {
    hfx::SetConsole([&](const std::string& later) { second += later; });
    first += text + padding.substr(0, 1);
  });
  hfxGlobal::ConsolePrintf("a");
  hfxGlobal::ConsolePrintf("b");
  hfx::SetConsole({});
  EXPECT_EQ(first, "ap");
  EXPECT_EQ(second, "b");
}

TEST(PlayMode, IsRenderUntilTheHostSaysOtherwise) {
  EXPECT_EQ(hfxGetPlayMode(), hfxPlayModeRender);
  hfx::SetPlayMode(hfxPlayModePreview);
  EXPECT_EQ(hfxGetPlayMode(), hfxPlayModePreview);
  hfx::SetPlayMode(hfxPlayModeRender);
}

}  // namespace
}  // namespace kelto
