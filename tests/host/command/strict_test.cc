// What a film would be other than meant: a line that says so, or with --strict no film.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/command/run.h"
#include "tests/host/support/sounds.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/profiles.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using stills::Bytes;
using testing::HasSubstr;

class Strict : public testing::Test {
 protected:
  static void Write(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  static Bytes Jpeg(const Bytes& icc, stills::JpegKind kind = stills::JpegKind::kColor) {
    stills::JpegSpec spec = stills::JpegOf(stills::GradientPicture(64, 48));
    if (kind == stills::JpegKind::kCmyk) {
      spec.kind = kind;
      spec.samples.resize(size_t{4} * 64 * 48, 99);
    }
    spec.icc = icc;
    return stills::EncodeJpeg(spec);
  }
  static Bytes PngWithProfileChunk(const Bytes& content) {
    Bytes png = stills::EncodePng(stills::PngOf(stills::GradientPicture(64, 48)));
    const Bytes chunk = stills::PngChunk("iCCP", content);
    png.insert(png.begin() + stills::kPngAfterHeader, chunk.begin(), chunk.end());
    return png;
  }
  std::string Sound(const char* name, double seconds) const {
    WriteWav(folder_ / name, seconds, 48000, 1,
             [](int, double at) { return std::sin(2764.6 * at); });
    return folder_ / name;
  }

  /// Renders with `more`: one line that has `warning` in it and a film; with --strict no film.
  void ExpectWarning(const std::string& photo, const Words& more, const std::string& warning) {
    const std::string film = folder_ / "film.mkv";
    const Outcome outcome = Render(photo, film, more);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(warning));
    EXPECT_TRUE(fs::exists(film));
    fs::remove(film);
    Words strict = more;
    strict.emplace_back("--strict");
    const Outcome refused = Render(photo, film, strict);
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err, outcome.err);
    EXPECT_FALSE(fs::exists(film));
  }
  /// Renders with --strict: a film, and not a word.
  void ExpectSilence(const std::string& photo, Words more = {}) {
    more.emplace_back("--strict");
    const Outcome outcome = Render(photo, folder_ / "film.mkv", more);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.jpg";
};

TEST_F(Strict, ADamagedColourProfileIsSaid) {
  Bytes damaged = stills::SwappedProfile();
  std::fill(damaged.begin() + 128, damaged.end(), uint8_t{0xee});
  Write(photo_, Jpeg(damaged));
  for (const char* jobs : {"1", "3"}) {
    ExpectWarning(photo_, {"--jobs", jobs}, photo_ + ": its colour profile is damaged");
  }
  Bytes part = Jpeg({});
  part = stills::WithSegment(part, 0xe2, [] {
    const std::string name("ICC_PROFILE\0\2\3half", 18);  // the second part of three
    return Bytes(name.begin(), name.end());
  }());
  Write(photo_, part);
  ExpectWarning(photo_, {}, photo_ + ": its colour profile is damaged");
  const std::string png = folder_ / "photo.png";
  Write(png, PngWithProfileChunk({'p', 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
  ExpectWarning(png, {}, png + ": its colour profile is damaged");
  Write(photo_, Jpeg(stills::SwappedProfile(), stills::JpegKind::kCmyk));
  ExpectWarning(photo_, {}, "made for other samples");
}

TEST_F(Strict, ProfilesThatServeAreNoMatter) {
  for (const Bytes& icc : {Bytes{}, stills::SwappedProfile(), stills::LinearProfile()}) {
    Write(photo_, Jpeg(icc));
    ExpectSilence(photo_);
  }
}

TEST_F(Strict, ABatchSaysItOfEachPicture) {
  Bytes damaged = stills::SwappedProfile();
  damaged.resize(damaged.size() / 2);
  fs::create_directory(folder_ / "photos");
  Write(folder_ / "photos/a.jpg", Jpeg(damaged));
  Write(folder_ / "photos/b.jpg", Jpeg({}));
  Words words{"batch", folder_ / "photos", "-o", folder_ / "films", "--size",
              "96x64", "--frames",         "2",  "--json"};
  const Outcome outcome = RunKelto(words);
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.err, HasSubstr("\"text\":\"" + (folder_ / "photos/a.jpg") +
                                     ": its colour profile is damaged"));
  fs::remove_all(folder_ / "films");
  words.emplace_back("--strict");
  EXPECT_EQ(RunKelto(words).code, 1);
  EXPECT_FALSE(fs::exists(folder_ / "films/a.mp4"));
  EXPECT_TRUE(fs::exists(folder_ / "films/b.mp4"));
  words.back() = "--plan";
  words.emplace_back("--strict");
  EXPECT_THAT(RunKelto(words).out, HasSubstr(" --strict"));
}

TEST_F(Strict, SoundThatEndsBeforeTheFilmIsSaid) {
  Write(photo_, Jpeg({}));
  const std::string sound = Sound("short.wav", 0.5);
  ExpectWarning(photo_, {"--audio", sound, "--seconds", "2"},
                sound + ": its sound ends after 0.50 of the film's 2.00 seconds");
  ExpectSilence(photo_, {"--audio", sound, "--frames", "13"});
  ExpectSilence(photo_, {"--audio", Sound("long.wav", 2.4), "--seconds", "2"});
}

TEST_F(Strict, SoundThatIsCutShortIsSaid) {
  Write(photo_, Jpeg({}));
  const std::string sound = Sound("cut.wav", 2);
  ExpectSilence(photo_, {"--audio", sound, "--seconds", "2"});
  fs::resize_file(sound, fs::file_size(sound) / 4);
  ExpectWarning(photo_, {"--audio", sound, "--seconds", "2"},
                sound + ": its sound ends after 0.50");
}

TEST_F(Strict, AVideoBehindThatEndsBeforeTheFilmIsSaid) {
  Write(photo_, Jpeg({}));
  const std::string video = folder_ / "behind.mkv";
  ASSERT_EQ(Render(photo_, video, {"--frames", "13"}).code, 0);
  for (const char* jobs : {"1", "2"}) {
    ExpectWarning(photo_, {"--over", video, "--frames", "50", "--jobs", jobs},
                  video + ": ends after 0.52 of the film's 2.00 seconds");
  }
  ExpectSilence(photo_, {"--over", video, "--frames", "13"});
  EXPECT_EQ(
      RunKelto({"render", photo_, "-o", folder_ / "as-long.mkv", "--over", video, "--strict"}).err,
      "");
}

}  // namespace
}  // namespace kelto::test
