// Films of more than eight bits, dithered ones, and transparency.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/command/deep_films.h"

namespace kelto::test {
namespace {

// The commands' sandbox keeps the sanitizer from its list of leaks that are others'.
[[maybe_unused]] const int kDeepFilmsWithoutLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

using testing::HasSubstr;

TEST_F(DeepFilms, ASkyOf16BitsKeepsItsLevelsInTenBits) {
  const std::string deep = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string flat = WritePhoto("flat.png", kSkyWidth, kSkyHeight, FlatSky, "rgb24");
  Words words = kSkyFilm;
  words.insert(words.end(), {"--codec", "h265", "--quality", "best"});
  const std::string ten = Film(deep, "ten.mkv", words), eight = Film(flat, "eight.mkv", words);
  EXPECT_EQ(PixelFormatOf(ten), "yuv420p10le\n") << "as many bits as photo and codec have";
  EXPECT_EQ(PixelFormatOf(eight), "yuv420p\n") << "a photo of eight bits needs no more";
  const Column<uint16_t> fine(Decoded<uint16_t>(ten, "yuv420p10le"), kSkyWidth, kSkyHeight);
  const Column<uint8_t> coarse(Decoded<uint8_t>(eight, "yuv420p"), kSkyWidth, kSkyHeight);
  EXPECT_EQ(coarse.levels.size(), 38u);
  EXPECT_GE(fine.levels.size(), 4 * coarse.levels.size());
  EXPECT_LE(4 * fine.longest, coarse.longest);
}

TEST_F(DeepFilms, InEightBitsASkyIsDitheredAndStandsStill) {
  const std::string deep = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string flat = WritePhoto("flat.png", kSkyWidth, kSkyHeight, FlatSky, "rgb24");
  const Words words = {"--size", "64x1080", "--frames", "2", "--move", "hold", "--depth", "8"};
  const std::string film = BytesOf(Film(deep, "deep.yuyv", words));
  const std::string banded = BytesOf(Film(flat, "flat.yuyv", words));
  const size_t frame = size_t{kSkyWidth} * kSkyHeight * 2;
  ASSERT_EQ(film.size(), 2 * frame);
  EXPECT_EQ(film.substr(0, frame), film.substr(frame)) << "nothing flickers";
  std::vector<uint8_t> luma, bands;
  double off = 0;
  for (size_t i = 0; i < frame; i += 2) {
    luma.push_back(static_cast<uint8_t>(film[i]));
    bands.push_back(static_cast<uint8_t>(banded[i]));
    const double level = SkyLevel(static_cast<int>(i / 2 / kSkyWidth));
    // Rows of frame and photo lie up to half a row apart.
    ASSERT_LE(std::abs(luma.back() - level), 1.05) << "noise of a level at most";
    off += luma.back() - level;
    ASSERT_NEAR(static_cast<uint8_t>(film[i + 1]), 128, 0) << "greys stay grey";
  }
  EXPECT_NEAR(off / (frame / 2), 0.0, 0.02) << "as light as the photo";
  const int run = Column<uint8_t>(luma, kSkyWidth, kSkyHeight).longest;
  const int band = Column<uint8_t>(bands, kSkyWidth, kSkyHeight).longest;
  EXPECT_GE(band, 25);
  EXPECT_LE(run, band / 2) << "no band to be seen";
}

TEST_F(DeepFilms, PhotosOfEightBitsWithoutTransparencyAreTheEffectsFilms) {
  const auto pixel = [](int x, int y) { return DeepPixel{x / 95.0, y / 63.0, 0.5, 1.0}; };
  const std::string plain = WritePhoto("plain.png", 96, 64, pixel, "rgb24");
  // With an alpha that is full throughout.
  const std::string opaque = WritePhoto("opaque.png", 96, 64, pixel, "rgba");
  const Words words = {"--size", "96x64", "--frames", "3", "--to", "2"};
  const std::string film = BytesOf(Film(plain, "plain.mkv", words));
  EXPECT_EQ(film, BytesOf(Film(opaque, "opaque.mkv", words)));
  Words eight = words;
  eight.insert(eight.end(), {"--depth", "8"});
  EXPECT_EQ(film, BytesOf(Film(plain, "eight.mkv", eight)));
}

TEST_F(DeepFilms, ShowWhatTheEffectShowsInFieldsToo) {
  const auto pixel = [](int x, int y) {
    return DeepPixel{0.5 + 0.4 * std::sin(x / 9.0), 0.5 + 0.4 * std::sin(y / 7.0), 0.4, 1.0};
  };
  const std::string photo = WritePhoto("photo.png", 192, 128, pixel, "rgb24");
  for (const char* fields : {"progressive", "top", "bottom"}) {
    const Words words = {"--size",  "96x64",  "--frames",     "3",        "--from",
                         "0.8",     "--to",   "2@0.1,0.05",   "--fields", fields,
                         "--codec", "prores", "--background", "#204060"};
    Words deep = words;
    deep.insert(deep.end(), {"--depth", "10"});
    const auto effect = Decoded<uint16_t>(Film(photo, "effect.mov", words), "yuv422p10le");
    const auto engine = Decoded<uint16_t>(Film(photo, "deep.mov", deep), "yuv422p10le");
    ASSERT_EQ(effect.size(), engine.size());
    ASSERT_EQ(effect.size(), size_t{96} * 64 * 2 * 3);
    double sum = 0;
    for (size_t frame = 0; frame < 3; ++frame) {
      for (size_t i = 0; i < size_t{96} * 64; ++i) {
        const size_t at = frame * 96 * 64 * 2 + i;
        sum += std::abs(effect[at] - engine[at]);
      }
    }
    // In levels of ten bits, of which the effect's rounding takes two on the average.
    EXPECT_LE(sum / (96 * 64 * 3), 4.0) << fields;
  }
}

TEST_F(DeepFilms, AWhiteDiscOverRedHasNoDarkFringe) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  for (const auto& [view, size] : {std::pair{"3@0.2,0", "128x128"}, std::pair{"1", "40x40"}}) {
    const std::string film = Film(photo, "disc-%d.png",
                                  {"--size", size, "--frames", "1", "--view", view, "--background",
                                   "#ff0000", "--filter", "ultra"});
    const Picture picture = ReadPng(folder_ / "disc-0.png");
    int white = 0, red = 0;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const Rgb colour = picture.At(x, y);
        ASSERT_GE(colour.r, 254) << view << " at " << x << "," << y;
        ASSERT_NEAR(colour.g, colour.b, 1);
        white += colour.g >= 254;
        red += colour.g == 0;
      }
    }
    EXPECT_GT(white, 100) << view;
    EXPECT_GT(red, 100) << view;
  }
}

TEST_F(DeepFilms, FilmsOverNothingKeepTheirTransparency) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba64be");
  const struct {
    const char *name, *codec, *format, *decoder;
  } kFilms[] = {{"a.mov", "prores", "yuva444p10le", ""},
                {"q.mov", "qtrle", "argb", ""},
                {"a.mkv", "ffv1", "gbrap16le", ""},
                {"a.webm", "vp9", "yuv420p", "-c:v libvpx-vp9"}};
  for (const auto& film : kFilms) {
    const std::string path = Film(photo, film.name,
                                  {"--codec", film.codec, "--size", "64x64", "--frames", "2",
                                   "--view", "1", "--background", "none"});
    EXPECT_THAT(PixelFormatOf(path), HasSubstr(std::string(film.format).substr(0, 7)));
    const auto rgba = Decoded<uint8_t>(path, "rgba", film.decoder);
    ASSERT_EQ(rgba.size(), size_t{64} * 64 * 4 * 2) << film.name;
    EXPECT_LE(rgba[3], 3) << film.name << ": nothing in the corner";
    const size_t middle = size_t{4} * (32 * 64 + 32);
    EXPECT_GE(rgba[middle + 3], 252) << film.name;
    EXPECT_GE(rgba[middle], 250) << film.name;
  }
  for (const char* depth : {"8", "16"}) {
    for (const char* kind : {"png", "tiff"}) {
      const std::string name = std::string("a%d.") + kind;
      Film(photo, name,
           {"--size", "64x64", "--frames", "1", "--view", "1", "--background", "none", "--depth",
            depth});
      const std::string path = folder_ / (std::string("a0.") + kind);
      EXPECT_THAT(PixelFormatOf(path), HasSubstr(std::string(depth) == "8" ? "rgba" : "rgba64"));
      const auto rgba = Decoded<uint8_t>(path, "rgba");
      ASSERT_EQ(rgba.size(), size_t{64} * 64 * 4);
      EXPECT_EQ(rgba[3], 0);
      EXPECT_EQ(rgba[4 * (32 * 64 + 32) + 3], 255);
      EXPECT_EQ(rgba[4 * (32 * 64 + 32)], 255);
    }
  }
}

TEST_F(DeepFilms, RawFormsHoldAllBits) {
  const std::string photo = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string words =
      BytesOf(Film(photo, "f.rgba64", {"--size", "64x1080", "--frames", "1", "--move", "hold"}));
  ASSERT_EQ(words.size(), size_t{64} * 1080 * 8);
  uint16_t pixel[4];
  std::memcpy(pixel, words.data() + size_t{64} * 500 * 8, sizeof pixel);
  EXPECT_NEAR(pixel[1], (SkyLevel(500) - 16) / 219 * 65535, 11);
  EXPECT_EQ(pixel[3], 65535);
  const std::string planes =
      BytesOf(Film(photo, "f.yuv422p10", {"--size", "64x1080", "--frames", "1", "--move", "hold"}));
  ASSERT_EQ(planes.size(), size_t{64} * 1080 * 4);
  uint16_t luma = 0;
  std::memcpy(&luma, planes.data() + size_t{64} * 500 * 2, sizeof luma);
  EXPECT_NEAR(luma, SkyLevel(500) * 4, 1);
  // White is as white as with eight bits.
  const std::string white = WritePhoto("white.png", 64, 64, [](int, int) {
    return DeepPixel{1, 1, 1, 1};
  });
  const std::string bright =
      BytesOf(Film(white, "w.yuv422p10", {"--size", "64x64", "--frames", "1", "--move", "hold"}));
  std::memcpy(&luma, bright.data() + size_t{64} * 32 * 2, sizeof luma);
  EXPECT_EQ(luma, 940);
}

TEST_F(DeepFilms, RgbCodecsKeepFramesToTheBit) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba64be");
  const Words common = {"--size", "64x64", "--frames", "2", "--to", "2"};
  const auto film = [&](const char* name, const Words& more) {
    Words words = common;
    words.insert(words.end(), more.begin(), more.end());
    return Film(photo, name, words);
  };
  for (const Words& behind : {Words{"--background", "none"}, Words{"--background", "#204060"}}) {
    Words codec = {"--codec", "ffv1"};
    codec.insert(codec.end(), behind.begin(), behind.end());
    const auto coded = Decoded<uint16_t>(film("f.mkv", codec), "rgba64le");
    const std::string raw = BytesOf(film("f.rgba64", behind));
    ASSERT_EQ(coded.size() * 2, raw.size());
    EXPECT_EQ(std::memcmp(coded.data(), raw.data(), raw.size()), 0) << behind.back();
  }
  const auto animation =
      Decoded<uint8_t>(film("f.mov", {"--codec", "qtrle", "--background", "none"}), "rgba");
  film("f-%d.png", {"--background", "none", "--depth", "8"});
  const auto still = Decoded<uint8_t>(folder_ / "f-0.png", "rgba");
  ASSERT_EQ(animation.size(), 2 * still.size());
  EXPECT_TRUE(std::equal(still.begin(), still.end(), animation.begin()));
}

TEST_F(DeepFilms, AnOpaqueFilmOfAnRgbCodecHasThePhotosColours) {
  const std::string photo = WritePhoto(
      "halves.png", 128, 128,
      [](int x, int) {
        return x < 64 ? DeepPixel{0.9, 0.2, 0.1, 1} : DeepPixel{0.1, 0.3, 0.8, 1};
      },
      "rgb24");
  const auto rgb = Decoded<uint8_t>(
      Film(photo, "f.mov",
           {"--codec", "qtrle", "--size", "64x64", "--frames", "1", "--move", "hold"}),
      "rgb24");
  ASSERT_EQ(rgb.size(), size_t{64} * 64 * 3);
  const int expected[2][3] = {{230, 51, 26}, {26, 77, 204}};
  for (size_t half = 0; half < 2; ++half) {
    for (size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(rgb[3 * (32 * 64 + 16 + 32 * half) + c], expected[half][c], 3);
    }
  }
}

TEST_F(DeepFilms, AnRgbCodecKeepsColouredEdgesOfOnePixel) {
  const auto stripes = [](int x, int y) {
    if (y % 8 == 3) return DeepPixel{0, 1, 0, 1};
    return x % 2 == 0 ? DeepPixel{1, 0, 0, 1} : DeepPixel{0, 0, 1, 1};
  };
  const Words words = {"--size", "64x64",    "--frames", "1",       "--move",
                       "hold",   "--filter", "realtime", "--depth", "8"};
  Words animation = words;
  animation.insert(animation.end(), {"--codec", "qtrle"});
  for (const char* format : {"rgb24", "rgb48"}) {
    const std::string photo = WritePhoto("stripes.png", 64, 64, stripes, format);
    const auto film = Decoded<uint8_t>(Film(photo, "f.mov", animation), "rgb24");
    Film(photo, "f-%d.png", words);
    EXPECT_EQ(film, Decoded<uint8_t>(folder_ / "f-0.png", "rgb24")) << "as every RGB film has it";
    if (format == std::string("rgb24")) continue;  // the effect's colours are shared by pairs
    const size_t pixel = size_t{3} * (32 * 64 + 32);
    EXPECT_GE(film[pixel] - film[pixel + 2], 254) << "red beside blue";
    EXPECT_GE(film[pixel + 5] - film[pixel + 3], 254);
  }
}

TEST_F(DeepFilms, TenBitsGoIntoEveryCodecThatHasThem) {
  const std::string photo = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::pair<const char*, const char*> kFilms[] = {
      {"vp9", "f.webm"}, {"av1", "f.mkv"}, {"ffv1", "f.mkv"}, {"prores", "f.mov"}};
  for (const auto& [codec, name] : kFilms) {
    const std::string film = Film(photo, name,
                                  {"--codec", codec, "--size", "64x1080", "--frames", "1", "--move",
                                   "hold", "--depth", "10"});
    EXPECT_THAT(PixelFormatOf(film), HasSubstr("p10le")) << codec;
    const Column<uint16_t> column(Decoded<uint16_t>(film, "yuv422p10le"), kSkyWidth, kSkyHeight);
    EXPECT_NEAR(column.last, SkyLevel(1079) * 4, 3) << codec;
    EXPECT_GE(column.levels.size(), 60u) << codec;
  }
}

TEST_F(DeepFilms, LinearLightKeepsTheBrightnessOfFineDetail) {
  const auto checks = [](int x, int y) {
    const double level = (x + y) % 2;
    return DeepPixel{level, level, level, 1.0};
  };
  const std::string photo = WritePhoto("checks.png", 256, 256, checks, "rgb24");
  const auto level = [&](const Words& more) {
    Words words = {"--size", "32x32", "--frames", "1", "--move", "hold"};
    words.insert(words.end(), more.begin(), more.end());
    Film(photo, "f-%d.png", words);
    return int{ReadPng(folder_ / "f-0.png").At(16, 16).g};
  };
  EXPECT_NEAR(level({}), 128, 3);
  // Half the light is this level of sRGB.
  EXPECT_NEAR(level({"--linear-light"}), 188, 2);
}

TEST_F(DeepFilms, FadeAtTheirEnds) {
  const std::string photo = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string film = Film(photo, "f.rgba64",
                                {"--size", "64x64", "--frames", "25", "--fps", "25", "--move",
                                 "hold", "--fade-in", "0.4", "--fade-colour", "#ff8000"});
  uint16_t first[4];
  const std::string bytes = BytesOf(film);
  std::memcpy(first, bytes.data(), sizeof first);
  EXPECT_THAT(first, testing::ElementsAre(65535, 0x8080, 0, 65535));
}

TEST_F(DeepFilms, EveryNumberOfJobsMakesTheSame) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const auto film = [&](const char* name, const char* jobs) {
    return BytesOf(
        Film(photo, name, {"--size", "64x64", "--frames", "9", "--to", "2", "--jobs", jobs}));
  };
  EXPECT_EQ(film("1.rgba64", "1"), film("3.rgba64", "3"));
}

TEST_F(DeepFilms, WhatAFilmCannotHoldIsRefusedInOneLine) {
  const std::string photo = WritePhoto("photo.png", 64, 64, Disc, "rgba");
  const struct {
    const char* name;
    Words more;
    const char* text;
  } kRefused[] = {
      {"f.mp4", {"--depth", "10"}, "--depth 10: H.264 films have 8 bits; use --codec h265 (mp4)"},
      {"f.gif",
       {"--depth", "16"},
       "--depth 16: gif films have 8 bits; use --codec ffv1 (mkv); or --format png, tiff, rgba64"},
      {"f.mov",
       {"--codec", "prores", "--depth", "8"},
       "--depth 8: ProRes 4:2:2 HQ films have 10 bits; use "},
      {"f.mp4", {"--depth", "9"}, "--depth 9: choose one of 8, 10, 16, auto"},
      {"f.mp4",
       {"--background", "none"},
       "--background none: H.264 films have no transparency; use --codec prores (mov), ffv1 (mkv), "
       "vp9 (webm), qtrle (mov); or --format png, tiff, rgba64"},
      {"f-%d.png",
       {"--background", "none", "--display", "source"},
       "--background none: cannot be had with the source display"},
      {"f-%d.png",
       {"--depth", "16", "--levels", "601"},
       "--depth 16: cannot be had with 601 levels"},
  };
  for (const auto& refused : kRefused) {
    Words words{"render", photo, "-o", folder_ / refused.name, "--frames", "1", "--size", "64x64"};
    words.insert(words.end(), refused.more.begin(), refused.more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_NE(outcome.code, 0) << refused.text;
    EXPECT_THAT(outcome.err, HasSubstr(refused.text));
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
}

TEST_F(DeepFilms, ColoursOf422StayInTheirRows) {
  const std::string photo = WritePhoto("edge.png", 64, 64, [](int, int y) {
    return y < 32 ? DeepPixel{1, 0, 0, 1} : DeepPixel{0, 0, 1, 1};
  });
  const std::string film =
      BytesOf(Film(photo, "e.yuv422p10",
                   {"--size", "64x64", "--frames", "1", "--move", "hold", "--filter", "realtime"}));
  constexpr size_t kSide = 64, kLumaSamples = kSide * kSide;
  ASSERT_EQ(film.size(), kLumaSamples * 2 * 2);
  const auto cr = [&](size_t row) {
    uint16_t level = 0;
    const size_t sample = kLumaSamples + kLumaSamples / 2 + row * kSide / 2 + kSide / 4;
    std::memcpy(&level, film.data() + sample * 2, 2);
    return int{level};
  };
  EXPECT_GT(cr(20) - cr(44), 300) << "red above, blue below";
  EXPECT_NEAR(cr(31), cr(20), 1);
  EXPECT_NEAR(cr(32), cr(44), 1);
}

TEST_F(DeepFilms, FilmsHaveTheMatrixOfTheirSize) {
  const std::string photo = WritePhoto("green.png", 64, 64, [](int, int) {
    return DeepPixel{0, 1, 0, 1};
  });
  const auto luma = [&](const std::string& size) {
    const std::string film = BytesOf(Film(
        photo, size + ".yuv422p10", {"--size", size, "--frames", "1", "--from", "3", "--to", "3"}));
    // In the middle of every slice that the work may have been cut into.
    std::set<int> levels;
    for (const double part : {0.1, 0.4, 0.6, 0.9}) {
      uint16_t level = 0;
      const auto pixel = static_cast<size_t>(part * static_cast<double>(film.size() / 4)) * 2;
      std::memcpy(&level, film.data() + pixel, 2);
      levels.insert(level);
    }
    return levels;
  };
  // 64 + 876 times green's weight in BT.601 and in BT.709.
  EXPECT_EQ(luma("640x360"), std::set<int>{578});
  EXPECT_EQ(luma("1280x720"), std::set<int>{691});
}

TEST_F(DeepFilms, ListsWithOptionsMayBeOfAnyDepth) {
  WritePhoto("a.png", 64, 64, [](int, int) { return DeepPixel{1, 0, 0, 1}; });
  std::ofstream(folder_ / "list.txt") << "a.png --move left\n";
  const Outcome outcome =
      RunKelto({"batch", folder_ / "list.txt", "-o", folder_ / "films", "--format", "y4m",
                "--depth", "8", "--size", "64x64", "--frames", "2"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
}

TEST_F(DeepFilms, ProjectsKeepTransparencyAndLinearLight) {
  const std::string photo = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const std::string project = folder_ / "p.json";
  const Words words = {"--size", "64x64", "--frames", "1", "--view", "1"};
  Words saving = words;
  saving.insert(saving.end(),
                {"--background", "none", "--linear-light", "--save-project", project});
  const std::string film = BytesOf(Film(photo, "1.rgba64", saving));
  EXPECT_THAT(BytesOf(project), HasSubstr("\"linearLight\": true"));
  EXPECT_EQ(BytesOf(Film(project, "2.rgba64", {})), film);
}

}  // namespace
}  // namespace kelto::test
