// Films of 16 bits by the command of this system.
#include <gmock/gmock.h>
#include <windows.h>

#include <wincodec.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/runtime/stills/deep_reading.h"
#include "tests/support/hostile_files.h"
#include "tests/windows/command.h"
#include "tests/windows/png_file.h"
#include "tests/windows/wic_file.h"

namespace kelto::stills {
namespace {

using test::CommandResult;
using Words = std::vector<std::string>;

constexpr int kSide = 64;

class WindowsDeepFilms : public StillTest {
 protected:
  /// Renders a frame of the photo, each pixel as it is.
  CommandResult Render(const std::string& photo, const Words& more) const {
    Words words = {"render", photo,  "--size",   "64x64",    "--frames", "1",
                   "--move", "hold", "--filter", "realtime", "--quiet"};
    words.insert(words.end(), more.begin(), more.end());
    CommandResult made = test::RunCommand(words, std::filesystem::path(Path("")).wstring());
    std::erase(made.err, '\r');
    return made;
  }

  std::string BytesOf(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// A PNG of 4096 levels a channel, of three or four of these; the right half of an alpha is half.
  void WriteLevels(const std::string& name, int channels) const {
    Write(name, EncodePngWords(kSide, kSide, channels, Levels(channels)));
  }

  static std::vector<uint16_t> Levels(int channels) {
    std::vector<uint16_t> words;
    for (int i = 0; i < kSide * kSide; ++i) {
      for (int c = 0; c < channels; ++c) {
        words.push_back(c == 3 ? Alpha(i) : static_cast<uint16_t>(i * 16 + c));
      }
    }
    return words;
  }
  static uint16_t Alpha(int i) { return i % kSide < kSide / 2 ? 65535 : 32768; }
};

TEST_F(WindowsDeepFilms, StillsOf16BitsShowThePhotosLevels) {
  WriteLevels("levels.png", 3);
  for (const char* name : {"film.png", "film.tiff"}) {
    const CommandResult made = Render("levels.png", {"-o", name});
    ASSERT_EQ(made.code, 0u) << made.err;
    const auto read = ReadDeep<WordPixel>(Path(name));
    EXPECT_EQ(read.info.bits, 16) << "as many as the photo has";
    EXPECT_FALSE(read.info.alpha);
    for (int i = 0; i < kSide * kSide; ++i) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_NEAR(read.pixels[static_cast<size_t>(i)][static_cast<size_t>(c)], i * 16 + c, 1)
            << name << " at " << i;
      }
    }
  }
}

TEST_F(WindowsDeepFilms, RawWordsAreThePhotosWithItsTransparency) {
  WriteLevels("levels.png", 4);
  const CommandResult made = Render("levels.png", {"-o", "film.rgba64", "--background", "none"});
  ASSERT_EQ(made.code, 0u) << made.err;
  const std::string bytes = BytesOf("film.rgba64");
  const std::vector<uint16_t> levels = Levels(4);
  ASSERT_EQ(bytes.size(), levels.size() * 2);
  for (size_t i = 0; i < levels.size(); ++i) {
    uint16_t word = 0;
    std::memcpy(&word, &bytes[2 * i], 2);
    // Colours are multiplied by alpha and whole again, which takes a level where it is half.
    ASSERT_NEAR(word, levels[i], 2) << i;
  }
}

TEST_F(WindowsDeepFilms, TransparentStillsHaveEightOrSixteenBits) {
  WriteLevels("levels.png", 4);
  for (const char* name : {"film.png", "film.tiff"}) {
    for (const int bits : {8, 16}) {
      const CommandResult made = Render(
          "levels.png", {"-o", name, "--background", "none", "--depth", std::to_string(bits)});
      ASSERT_EQ(made.code, 0u) << made.err;
      const auto read = ReadDeep<WordPixel>(Path(name));
      EXPECT_EQ(read.info.bits, bits) << name;
      EXPECT_TRUE(read.transparent) << name;
      EXPECT_EQ(read.at(8, 40)[3], 65535);
      EXPECT_NEAR(read.at(56, 40)[3], 32768, bits == 8 ? 257 : 0);
      EXPECT_NEAR(read.at(8, 40)[0], (40 * kSide + 8) * 16, bits == 8 ? 257 : 1);
    }
  }
}

TEST_F(WindowsDeepFilms, TheBackgroundShowsThroughTransparentPhotos) {
  Write("clear.png",
        EncodeByWic(GUID_ContainerFormatPng,
                    {kSide, kSide, std::vector<Pixel>(kSide * kSide, {0, 0, 255, 0})}, true));
  const CommandResult made = Render("clear.png", {"-o", "film.bgra", "--background", "#4080c0"});
  ASSERT_EQ(made.code, 0u) << made.err;
  const std::string bytes = BytesOf("film.bgra");
  ASSERT_EQ(bytes.size(), size_t{4} * kSide * kSide);
  const uint8_t expected[] = {0xc0, 0x80, 0x40};
  for (size_t c = 0; c < 3; ++c) EXPECT_NEAR(static_cast<uint8_t>(bytes[c]), expected[c], 1) << c;
}

TEST_F(WindowsDeepFilms, InDepth8APhotoOfMoreBitsIsDithered) {
  WriteLevels("levels.png", 3);
  const Loaded eight = LoadStill(Path("levels.png"));
  ASSERT_EQ(eight.error, noErr) << eight.text;
  Write("eight.png", EncodeByWic(GUID_ContainerFormatPng, eight.picture));
  for (const char* name : {"film.bgra", "film.yuyv"}) {
    ASSERT_EQ(Render("eight.png", {"-o", name}).code, 0u);
    const std::string effect = BytesOf(name);
    ASSERT_EQ(Render("levels.png", {"-o", name}).code, 0u);
    const std::string dithered = BytesOf(name);
    EXPECT_NE(dithered, effect) << name;
    ASSERT_EQ(Render("levels.png", {"-o", name, "--depth", "8"}).code, 0u);
    EXPECT_EQ(BytesOf(name), dithered) << name;
  }
}

TEST_F(WindowsDeepFilms, WhatCannotBeHadIsAnErrorOfOneLineThatSaysWhatToUse) {
  WriteLevels("levels.png", 4);
  const struct {
    Words words;
    const char* message;
  } cases[] = {
      {{"-o", "f.png", "--depth", "10"},
       "kelto: --depth 10: png films have 8 or 16 bits; use --format yuv422p10\n"},
      {{"-o", "f.yuyv", "--depth", "16"},
       "kelto: --depth 16: yuyv films have 8 bits; use --format png, tiff, rgba64\n"},
      {{"-o", "f.y4m", "--background", "none"},
       "kelto: --background none: y4m films have no transparency; use --format png, tiff, "
       "rgba64\n"},
      {{"-o", "f.png", "--depth", "12"}, "kelto: --depth 12: choose one of 8, 10, 16, auto\n"},
  };
  for (const auto& [words, message] : cases) {
    const CommandResult made = Render("levels.png", words);
    EXPECT_EQ(made.code, 2u) << message;
    EXPECT_EQ(made.err, message);
  }
}

// A process of 32 bits has room for what eight bits of it take.
TEST_F(WindowsDeepFilms, APhotoThatIsTooLargeForAllItsBitsIsRefusedWhereTheseAreAskedFor) {
  Write("large.tif", test::SharedStripsTiff(15000, 2, 10, 30000));
  const CommandResult made = Render("large.tif", {"-o", "film.rgba64"});
  EXPECT_EQ(made.code, 1u);
  EXPECT_EQ(made.err, "kelto: large.tif: is too large to be read with all its bits; reduce it\n");
  EXPECT_FALSE(std::filesystem::exists(Path("film.rgba64")));
}

TEST_F(WindowsDeepFilms, ADamagedDeepPhotoLeavesNoFilm) {
  Bytes cut = EncodePngWords(kSide, kSide, 3, Levels(3));
  cut.resize(cut.size() / 2);
  Write("cut.png", cut);
  const CommandResult made = Render("cut.png", {"-o", "film.png"});
  EXPECT_EQ(made.code, 1u);
  EXPECT_THAT(made.err, testing::StartsWith("kelto: cut.png: cannot be read as a picture: "));
  EXPECT_FALSE(std::filesystem::exists(Path("film.png")));
}

}  // namespace
}  // namespace kelto::stills
