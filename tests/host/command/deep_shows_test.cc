// Shows of deep and of transparent photos, and that all that shows a film draws it as it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue/parameters.h"
#include "host/deep/shown_film.h"
#include "host/jobs/show_film.h"
#include "host/plan/default_plan.h"
#include "host/sources/photos.h"
#include "tests/host/command/deep_films.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

constexpr size_t kShowSide = 64;

class DeepShows : public DeepFilms {
 protected:
  /// A show of the photos, each for ten frames, the last two of them fading into the next.
  std::string Show(const std::vector<std::string>& photos, const std::string& name,
                   const Words& more) {
    Words words{"slideshow"};
    words.insert(words.end(), photos.begin(), photos.end());
    words.insert(words.end(),
                 {"-o", folder_ / name, "--fps", "10", "--each", "1", "--fade", "0.2"});
    words.insert(words.end(), more.begin(), more.end());
    const Outcome made = RunKelto(words);
    EXPECT_EQ(made.code, 0) << made.err;
    return folder_ / name;
  }

  /// Frames of an rgba64 film of 64x64.
  static std::vector<uint16_t> WordsOf(const std::string& film) {
    const std::string bytes = BytesOf(film);
    std::vector<uint16_t> words(bytes.size() / 2);
    std::memcpy(words.data(), bytes.data(), words.size() * 2);
    return words;
  }
  static const uint16_t* At(const std::vector<uint16_t>& film, size_t frame, size_t x, size_t y) {
    return &film[4 * ((frame * kShowSide + y) * kShowSide + x)];
  }

  /// A photo of eight bits, so that the effect draws it where nothing more is asked for.
  std::string WriteWaves(const std::string& name, double phase) {
    return WritePhoto(
        name, 48, 96,
        [=](int x, int y) {
          return DeepPixel{0.5 + 0.4 * std::sin(x / 7.0 + phase), 0.5 + 0.4 * std::sin(y / 9.0),
                           0.3, 1.0};
        },
        "rgb24");
  }
};

const Words kSmallShow = {"--size", "64x64", "--move", "hold"};

Words WordsWith(const Words& some, const Words& more) {
  Words all = some;
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

TEST_F(DeepShows, AFadeBetweenSkiesHasNoBands) {
  const auto other = [](int x, int y) {
    const double grey = Sky(x, kSkyHeight - 1 - y)[0] / 2 + 0.1;
    return DeepPixel{grey, grey, grey, 1.0};
  };
  const auto show = [&](const char* photos, const char* name) {
    const std::string first = WritePhoto("1.png", kSkyWidth, kSkyHeight, Sky, photos);
    const std::string second = WritePhoto("2.png", kSkyWidth, kSkyHeight, other, photos);
    return BytesOf(Show({first, second}, name, {"--size", "64x1080", "--move", "hold"}));
  };
  const std::string deep = show("rgb48", "s.rgba64"), flat = show("rgb24", "s.bgra");
  // Green of the fade's first frame.
  constexpr size_t kPixels = size_t{kSkyWidth} * kSkyHeight;
  std::vector<uint16_t> words(kPixels);
  std::vector<uint8_t> bytes(kPixels);
  ASSERT_EQ(deep.size(), kPixels * 8 * 18);
  for (size_t i = 0; i < kPixels; ++i) {
    std::memcpy(&words[i], &deep[8 * (8 * kPixels + i) + 2], 2);
    bytes[i] = static_cast<uint8_t>(flat[4 * (8 * kPixels + i) + 1]);
  }
  const Column<uint16_t> fine(words, kSkyWidth, kSkyHeight);
  const Column<uint8_t> coarse(bytes, kSkyWidth, kSkyHeight);
  EXPECT_GE(fine.levels.size(), 1000u) << "a level for each row";
  EXPECT_LE(fine.longest, 2);
  EXPECT_LE(coarse.levels.size(), 60u);
  EXPECT_GE(coarse.longest, 20);
}

TEST_F(DeepShows, HaveTheBitsThatTheDeepestPhotoAndTheCodecHave) {
  const std::string deep = WritePhoto("deep.png", kSkyWidth, kSkyHeight, Sky);
  const std::string flat = WritePhoto("flat.png", kSkyWidth, kSkyHeight, Sky, "rgb24");
  const auto format = [&](const std::vector<std::string>& photos, const Words& more) {
    return PixelFormatOf(
        Show(photos, "s.mkv", WordsWith(WordsWith(kSmallShow, {"--codec", "ffv1"}), more)));
  };
  EXPECT_EQ(format({flat, deep}, {}), "gbrp16le\n");
  EXPECT_EQ(format({flat, deep}, {"--depth", "10"}), "yuv422p10le\n");
  EXPECT_EQ(format({flat, flat}, {}), "yuv422p\n") << "of eight bits, as ever";
  EXPECT_EQ(format({flat, flat}, {"--depth", "16"}), "gbrp16le\n");
}

TEST_F(DeepShows, OfEightBitsAreDithered) {
  const std::string photo = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string flat = WritePhoto("flat.png", kSkyWidth, kSkyHeight, Sky, "rgb24");
  const auto longest = [&](const std::string& picture) {
    const std::string film =
        BytesOf(Show({picture, picture}, "s.yuyv", {"--size", "64x1080", "--move", "hold"}));
    const size_t frame = size_t{2} * kSkyWidth * kSkyHeight;
    std::vector<uint8_t> luma;
    for (size_t i = 8 * frame; i < 9 * frame; i += 2) luma.push_back(static_cast<uint8_t>(film[i]));
    return Column<uint8_t>(luma, kSkyWidth, kSkyHeight).longest;
  };
  EXPECT_LE(2 * longest(photo), longest(flat));
}

TEST_F(DeepShows, ShowWhatTheEffectShows) {
  const std::string first = WriteWaves("1.png", 0.0), second = WriteWaves("2.png", 1.0);
  const Words looks[] = {
      {"--to", "2@0.1,0.05", "--caption", "Waves", "--fade-in", "0.3"},
      {"--move", "hold", "--beside", "blur", "--title", "Sea", "--fade-colour", "#402010"},
      {"--fade-kind", "dip", "--fade-colour", "#ff8000", "--fields", "top"}};
  for (const Words& look : looks) {
    const Words words = WordsWith({"--size", "64x64"}, look);
    const std::string effect = BytesOf(Show({first, second}, "s.bgra", words));
    const auto deep = WordsOf(Show({first, second}, "s.rgba64", words));
    ASSERT_EQ(effect.size(), deep.size());
    double sum = 0;
    for (size_t i = 0; i < deep.size(); ++i) {
      const size_t sample = i % 4 == 3 ? i : i - i % 4 + 2 - i % 4;
      sum += std::abs(static_cast<uint8_t>(effect[sample]) - deep[i] / 257.0);
    }
    EXPECT_LE(sum / static_cast<double>(deep.size()), 2.5) << look[1];
  }
}

TEST_F(DeepShows, CaptionsAreDrawnOverDeepFilms) {
  const std::string photo = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const Words words = WordsWith(kSmallShow, {"--frames", "20", "--depth", "16"});
  const auto plain = WordsOf(Film(photo, "1.rgba64", words));
  const auto lettered = WordsOf(Film(photo, "2.rgba64", WordsWith(words, {"--caption", "Sky"})));
  ASSERT_EQ(plain.size(), size_t{4} * kShowSide * kShowSide * 20);
  ASSERT_EQ(lettered.size(), plain.size());
  int white = 0;
  for (size_t y = 0; y < kShowSide; ++y) {
    for (size_t x = 0; x < kShowSide; ++x) {
      white += *At(lettered, 10, x, y) > 40000;
      EXPECT_EQ(At(lettered, 10, x, y)[3], 65535);
      ASSERT_TRUE(y >= kShowSide / 2 || *At(lettered, 10, x, y) == *At(plain, 10, x, y))
          << x << "," << y;
    }
  }
  EXPECT_GE(white, 5);
}

TEST_F(DeepShows, OverNothingKeepTheirTransparency) {
  const std::string disc = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const auto film = WordsOf(Show({disc, disc}, "s.rgba64",
                                 WordsWith(kSmallShow, {"--background", "none", "--title", "MM",
                                                        "--fade-in", "0.3", "--caption", "Disc"})));
  const size_t frames = film.size() / (4 * kShowSide * kShowSide);
  ASSERT_EQ(frames, 40u + 10 - 2 + 10 - 2);
  int letters = 0;
  for (size_t frame = 0; frame < frames; ++frame) {
    EXPECT_EQ(At(film, frame, 0, 0)[3], 0) << "nothing in the corner of frame " << frame;
    for (size_t i = 0; i < kShowSide * kShowSide; ++i) {
      const uint16_t* pixel = &film[4 * (frame * kShowSide * kShowSide + i)];
      letters += frame == 20 && pixel[3] > 50000 && pixel[0] > 30000;
      ASSERT_TRUE(frame > 0 || pixel[3] == 0) << "out of nothing";
    }
  }
  EXPECT_GE(letters, 5) << "of the card";
  // The disc, alone, and through the fade into itself.
  EXPECT_EQ(At(film, 45, kShowSide / 2, kShowSide / 2)[3], 65535);
  EXPECT_EQ(At(film, 46, kShowSide / 2, kShowSide / 2)[3], 65535);
  for (const auto& [name, codec] : {std::pair{"s.mov", "prores"}, std::pair{"s.webm", "vp9"}}) {
    const auto rgba = Decoded<uint8_t>(
        Show({disc, disc}, name, WordsWith(kSmallShow, {"--codec", codec, "--background", "none"})),
        "rgba", std::string(codec) == "vp9" ? "-c:v libvpx-vp9" : "");
    const size_t fade = size_t{4} * kShowSide * kShowSide * 9,
                 middle = 4 * (kShowSide * kShowSide / 2 + kShowSide / 2);
    ASSERT_EQ(rgba.size(), size_t{4} * kShowSide * kShowSide * 18) << name;
    EXPECT_LE(rgba[fade + 3], 3) << name;
    EXPECT_GE(rgba[fade + middle + 3], 250) << name;
  }
}

TEST_F(DeepShows, ProjectsKeepTransparencyAndLinearLight) {
  const std::string disc = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const std::string project = folder_ / "show.json";
  const std::string film =
      BytesOf(Show({disc, disc}, "1.rgba64",
                   WordsWith(kSmallShow, {"--background", "none", "--linear-light",
                                          "--save-project", project})));
  const Outcome again = RunKelto({"slideshow", project, "-o", folder_ / "2.rgba64"});
  EXPECT_EQ(again.code, 0) << again.err;
  EXPECT_EQ(BytesOf(folder_ / "2.rgba64"), film);
}

TEST_F(DeepShows, ATransparentPhotoLiesOverItsBackground) {
  const std::string disc = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const std::string plain = WriteWaves("plain.png", 0.0);
  const std::string film =
      BytesOf(Show({plain, disc}, "s.bgra",
                   WordsWith(kSmallShow, {"--fit", "whole", "--background", "#204060"})));
  const size_t corner = size_t{4} * kShowSide * kShowSide * 15;
  ASSERT_EQ(film.size(), size_t{4} * kShowSide * kShowSide * 18);
  const int background[] = {96, 64, 32};
  for (size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(static_cast<uint8_t>(film[corner + c]), background[c], 2);
  }
}

TEST_F(DeepShows, WhatTheyCannotBeIsRefusedInOneLine) {
  const std::string disc = WritePhoto("disc.png", 64, 64, Disc, "rgba");
  const struct {
    const char* name;
    Words more;
    const char* text;
  } kRefused[] = {
      {"s.mp4", {"--depth", "16"}, "--depth 16: H.264 films have 8 bits"},
      {"s.mp4", {"--background", "none"}, "--background none: H.264 films have no transparency"},
      {"s.webm",
       {"--background", "none", "--depth", "10"},
       "--depth 10: VP9 films with transparency have 8 bits; use --codec prores (mov), ffv1 (mkv)"},
      {"s.webm",
       {"--background", "none", "--display", "source"},
       "disc.png: --background none: cannot be had with the source display"},
  };
  for (const auto& refused : kRefused) {
    const Outcome outcome = RunKelto(WordsWith(
        {"slideshow", disc, disc, "-o", folder_ / refused.name, "--size", "64x64"}, refused.more));
    EXPECT_EQ(outcome.code, 2) << refused.text;
    EXPECT_THAT(outcome.err, HasSubstr(refused.text));
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
}

/// What screens show against pictures of the film.
class OnScreen : public DeepShows {
 protected:
  host::RenderPlan PlanOf(const std::string& photo) {
    host::RenderPlan plan = host::DefaultPlan(photo);
    plan.format.size = {kShowSide, kShowSide};
    plan.format.rate = {10, 1};
    plan.frames = 10;
    return plan;
  }
  static void ExpectShown(const host::FrameView& shown, const std::string& film) {
    const Picture picture = ReadPng(film);
    ASSERT_EQ(picture.width, shown.size.width);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const uint8_t* pixel = shown.Row(y) + 4 * x;
        ASSERT_EQ(ToString({pixel[2], pixel[1], pixel[0]}), ToString(picture.At(x, y)))
            << x << "," << y << " of " << film;
      }
    }
  }
};

TEST_F(OnScreen, AFilmLooksAsItsFile) {
  const std::string photos[] = {WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky),
                                WritePhoto("disc.png", 128, 128, Disc, "rgba"),
                                WriteWaves("waves.png", 0.0)};
  for (const std::string& photo : photos) {
    for (const bool linear : {false, true}) {
      host::RenderPlan plan = PlanOf(photo);
      plan.linearLight = linear;
      plan.Set(key::kBackgroundColor, host::BackgroundFor({32, 64, 96}));
      Words words = {"--size", "64x64",   "--frames", "10",           "--fps",
                     "10",     "--depth", "8",        "--background", "#204060"};
      if (linear) words.push_back("--linear-light");
      Film(photo, "f-%d.png", WordsWith(words, {"--move", "hold", "--fit", "whole"}));
      host::ShownFilm film(KELTO_MODULE, plan, host::LookThroughPhoto(photo));
      ExpectShown(film.Render(5, 1.0), folder_ / "f-5.png");
    }
  }
}

TEST_F(OnScreen, AShowLooksAsItsFile) {
  const std::string sky = WritePhoto("sky.png", kSkyWidth, kSkyHeight, Sky);
  const std::string waves = WriteWaves("waves.png", 0.0);
  Show({waves, sky}, "s-%d.png", WordsWith(kSmallShow, {"--fit", "whole", "--depth", "8"}));
  host::ShowScenes scenes;
  for (const std::string& photo : {waves, sky}) {
    scenes.plans.push_back(PlanOf(photo));
    scenes.photos.push_back(host::LookThroughPhoto(photo));
  }
  scenes.fades = {2};
  host::ShowFilm film(KELTO_MODULE, scenes);
  for (const int32_t frame : {3, 8, 9, 14}) {
    ExpectShown(film.Render(frame, 1.0), folder_ / ("s-" + std::to_string(frame) + ".png"));
  }
}

#if defined(KELTO_CAIRO)
TEST_F(OnScreen, AStoryboardShowsTheBackgroundThroughItsPhoto) {
  const std::string disc = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  const Outcome drawn = RunKelto({"storyboard", disc, "-o", folder_ / "sheet.png", "--size",
                                  "64x64", "--frames", "9", "--background", "#204060"});
  ASSERT_EQ(drawn.code, 0) << drawn.err;
  const Picture sheet = ReadPng(folder_ / "sheet.png");
  int through = 0, black = 0;
  for (int y = 0; y < sheet.height; ++y) {
    for (int x = 0; x < sheet.width; ++x) {
      const Rgb colour = sheet.At(x, y);
      through += Distance(colour, {32, 64, 96}) <= 2;
      black += colour.r + colour.g + colour.b == 0;
    }
  }
  EXPECT_GT(through, 20000) << "in the corners of photo and frames";
  EXPECT_LT(black, 2000) << "which are not black";
}
#endif

TEST_F(OnScreen, AChangeThatTheEffectAloneDrawsIsShownAndTakenBack) {
  const std::string disc = WritePhoto("disc.png", 128, 128, Disc, "rgba");
  host::RenderPlan plan = PlanOf(disc);
  plan.Set(key::kBackgroundColor, host::BackgroundFor({255, 0, 0}));
  plan.Set(key::kDisplay, std::string(entry::kDisplayTarget));
  host::ShownFilm film(KELTO_MODULE, plan, host::LookThroughPhoto(disc));
  const auto corner = [&] { return int{film.Render(0, 1.0).Row(4)[4 * 4 + 2]}; };
  EXPECT_GE(corner(), 254);
  film.Change({key::kDisplay, std::string(entry::kDisplaySource), {}, -1});
  EXPECT_LE(corner(), 1) << "the effect sees no transparency";
  film.Change({key::kDisplay, std::string(entry::kDisplayTarget), {}, -1});
  EXPECT_GE(corner(), 254);
}

}  // namespace
}  // namespace kelto::test
