// Text over films, and cards before them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

// The commands' sandbox keeps the sanitizer from its list of leaks that are others'.
[[maybe_unused]] const int kCaptionsWithoutLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

using testing::HasSubstr;

constexpr int kAcross = 192, kDown = 108;
constexpr size_t kFilmFrame = size_t{4} * kAcross * kDown;
constexpr Rgb kSea{40, 90, 160};

class Captions : public testing::Test {
 protected:
  Captions() {
    WriteJpeg(photo_, MakePicture(kAcross, kDown, [](int, int) { return kSea; }));
    // Metadata are found wherever they stand in the file.
    std::ofstream(photo_, std::ios::app | std::ios::binary)
        << R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF)"
        << R"( xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description)"
        << R"( xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:exif="http://ns.adobe.com/exif/1.0/")"
        << R"( exif:DateTimeOriginal="2019-03-12T10:11:12"><dc:description><rdf:Alt>)"
        << R"(<rdf:li xml:lang="x-default">Sea &amp; sky</rdf:li></rdf:Alt></dc:description>)"
        << R"(</rdf:Description></rdf:RDF></x:xmpmeta>)";
  }
  std::string Film(const Words& more, const std::string& name = "f.bgra") {
    Words words{"render", photo_, "-o", folder_ / name, "--size", "192x108", "--move", "hold"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.err, "");
    return BytesOf(folder_ / name);
  }
  /// The lightest level of a frame's lower third, where captions stand.
  static int Lightest(const std::string& film, size_t frame) {
    int level = 0;
    for (size_t at = kFilmFrame * 2 / 3; at < kFilmFrame; at += 4) {
      level = std::max<int>(level, static_cast<uint8_t>(film[frame * kFilmFrame + at + 2]));
    }
    return level;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "At_the sea.jpg";
};

TEST_F(Captions, ComeSoftlyAndGoSoftly) {
  const std::string film = Film({"--frames", "100", "--caption", "Beach"});
  ASSERT_EQ(film.size(), 100 * kFilmFrame);
  EXPECT_LT(Lightest(film, 0), 60) << "hardly there yet";
  for (size_t i = 1; i < 15; ++i) EXPECT_GE(Lightest(film, i), Lightest(film, i - 1)) << i;
  for (size_t i = 15; i < 85; ++i) EXPECT_GT(Lightest(film, i), 220) << i;
  EXPECT_LT(Lightest(film, 99), 60);
}

TEST_F(Captions, StandForWhatThePhotoSaysOfItself) {
  const auto same = [&](const char* caption, const char* text) {
    EXPECT_EQ(Film({"--frames", "8", "--caption", caption}, "a.bgra"),
              Film({"--frames", "8", "--caption", text}, "b.bgra"))
        << caption;
  };
  same("{name}", "At the sea");
  same("{description}, {date}", "Sea & sky, 2019-03-12");
  same("  One\\nTwo ", "One\nTwo");
}

/// A record of IPTC's second section: what it is of, and its text.
std::string IptcRecord(uint8_t section, uint8_t set, const std::string& text) {
  const auto length = static_cast<char>(text.size());
  return std::string{'\x1c', static_cast<char>(section), static_cast<char>(set), '\0', length} +
         text;
}

/// A JPEG's segment with these records, as Photoshop keeps them.
std::string IptcSegment(const std::string& records) {
  using namespace std::string_literals;
  const auto sizeOf = [](size_t size) {
    return std::string{static_cast<char>(size >> 8), static_cast<char>(size)};
  };
  const std::string body = "Photoshop 3.0\0"s + "8BIM\x04\x04\0\0\0\0"s + sizeOf(records.size()) +
                           records + std::string(records.size() % 2, '\0');
  return "\xff\xed" + sizeOf(body.size() + 2) + body;
}

TEST_F(Captions, StandForWhatIptcSaysOfThePhoto) {
  WriteJpeg(photo_, MakePicture(kAcross, kDown, [](int, int) { return kSea; }));
  const std::string photo = BytesOf(photo_);
  std::ofstream(photo_, std::ios::binary)
      << photo.substr(0, 2)
      << IptcSegment(IptcRecord(1, 90, "\x1b%G") + IptcRecord(2, 55, "20190312") +
                     IptcRecord(2, 120, "Sète, boats"))
      << photo.substr(2);
  EXPECT_EQ(Film({"--frames", "8", "--caption", "{description}: {date}"}, "a.bgra"),
            Film({"--frames", "8", "--caption", "Sète, boats: 2019-03-12"}, "b.bgra"));
  EXPECT_NE(BytesOf(folder_ / "a.bgra"), Film({"--frames", "8"}, "c.bgra"));
}

TEST_F(Captions, OfNothingThatThePhotoSaysAreNone) {
  WriteJpeg(photo_, MakePicture(kAcross, kDown, [](int, int) { return kSea; }));
  EXPECT_EQ(Film({"--frames", "8", "--caption", "{description}"}, "a.bgra"),
            Film({"--frames", "8"}, "b.bgra"));
}

TEST_F(Captions, NameWhatBracesStandFor) {
  const Outcome outcome = Render(photo_, folder_ / "f.bgra", {"--caption", "{place}"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err,
            "kelto: --caption {place}: {place} stands for nothing; choose one of {name}, {date}, "
            "{description}\n");
}

TEST_F(Captions, SayWhichLettersNoFontHas) {
  const Outcome outcome =
      Render(photo_, folder_ / "f.bgra", {"--caption", "\U0010FF00", "--jobs", "2"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("no font on this machine has 1 of its caption's letters"));
}

TEST_F(Captions, AreTheSameForEveryNumberOfJobsAndInBothFields) {
  const Words words{"--frames", "12", "--caption", "Beach", "--fields", "top", "--jobs"};
  const auto with = [&](const char* jobs) {
    Words asked = words;
    asked.emplace_back(jobs);
    return Film(asked);
  };
  const std::string film = with("1");
  EXPECT_EQ(film, with("3"));
  for (const int field : {0, 1}) {
    int lightest = 0;
    for (int y = kDown * 2 / 3 + field; y < kDown; y += 2) {
      for (int x = 0; x < kAcross; ++x) {
        const size_t at = 6 * kFilmFrame + size_t{4} * (size_t(y) * kAcross + x);
        lightest = std::max<int>(lightest, static_cast<uint8_t>(film[at + 2]));
      }
    }
    EXPECT_GT(lightest, 200) << field;
  }
}

TEST_F(Captions, AreKeptInProjects) {
  const std::string film =
      Film({"--frames", "12", "--caption", "Beach", "--save-project", folder_ / "p.json"});
  const Outcome outcome = RunKelto({"render", folder_ / "p.json", "-o", folder_ / "g.bgra"});
  ASSERT_EQ(outcome.err, "");
  EXPECT_EQ(BytesOf(folder_ / "g.bgra"), film);
}

/// A show of two pictures, each with a caption of its own.
class CaptionedShow : public Captions {
 protected:
  std::string Show(const Words& more) {
    WritePng(folder_ / "dark.png", MakePicture(kAcross, kDown, [](int, int) { return Rgb{}; }));
    std::ofstream(folder_ / "list.txt")
        << "\"At_the sea.jpg\" --caption Sea\ndark.png --caption Night\n";
    Words words{"slideshow", folder_ / "list.txt",
                "-o",        folder_ / "s.bgra",
                "--size",    "192x108",
                "--each",    "2",
                "--fade",    "0.4",
                "--move",    "hold"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.err, "");
    return BytesOf(folder_ / "s.bgra");
  }
};

TEST_F(CaptionedShow, HasNoTwoCaptionsAtATime) {
  const std::string film = Show({});
  ASSERT_EQ(film.size(), 90 * kFilmFrame);
  EXPECT_GT(Lightest(film, 20), 220);
  for (size_t i = 40; i < 50; ++i) EXPECT_LT(Lightest(film, i), 60) << "in the fade: " << i;
  EXPECT_GT(Lightest(film, 70), 220);
}

TEST_F(CaptionedShow, BeginsWithItsTitle) {
  const std::string film = Show({"--title", "Summer", "--fade-colour", "#102040"});
  ASSERT_EQ(film.size(), (90 + 100 - 10) * kFilmFrame);
  const auto corner = [&](size_t frame) {
    const size_t at = frame * kFilmFrame;
    return Rgb{uint8_t(film[at + 2]), uint8_t(film[at + 1]), uint8_t(film[at])};
  };
  int lightest = 0;
  for (size_t at = 50 * kFilmFrame; at < 51 * kFilmFrame; at += 4) {
    lightest = std::max<int>(lightest, static_cast<uint8_t>(film[at]));
  }
  EXPECT_EQ(lightest, 255) << "letters on the card";
  for (const size_t frame : {0, 50, 89}) {
    EXPECT_EQ(ToString(corner(frame)), ToString(Rgb{16, 32, 64})) << frame;
  }
  EXPECT_LE(Distance(corner(101), kSea), 4);
}

TEST_F(CaptionedShow, IsTheSameFromItsProject) {
  const std::string film =
      Show({"--title", "Summer", "--beside", "blur", "--save-project", folder_ / "show.json"});
  const Outcome outcome =
      RunKelto({"slideshow", folder_ / "show.json", "-o", folder_ / "again.bgra"});
  ASSERT_EQ(outcome.err, "");
  EXPECT_EQ(BytesOf(folder_ / "again.bgra"), film);
  // The card is counted where the show is looked at, too.
  EXPECT_THAT(RunKelto({"inspect", folder_ / "show.json"}).out,
              HasSubstr(", " + std::to_string(film.size() / kFilmFrame) + " frames at "));
}

}  // namespace
}  // namespace kelto::test
