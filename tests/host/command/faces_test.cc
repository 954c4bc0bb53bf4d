// Moves to the faces that a photo's metadata name.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

constexpr int kFilmWidth = 192, kFilmHeight = 108;
constexpr Rgb kWall{90, 90, 95}, kBall{230, 40, 30}, kFace{40, 200, 60};

/// A wall with a red ball on the left, which is more eye-catching than the green face on the right.
class FacesInPhotos : public testing::Test {
 protected:
  std::string Photo(bool named) {
    const std::string path = folder_ / (named ? "named.jpg" : "plain.jpg");
    WriteJpeg(path, MakePicture(960, 540, [](int x, int y) {
                const int dx = x - 180, dy = y - 380;
                if (dx * dx + dy * dy < 90 * 90) return kBall;
                return x >= 700 && x < 770 && y >= 100 && y < 180 ? kFace : kWall;
              }));
    if (named) {
      std::ofstream(path, std::ios::app | std::ios::binary)
          << R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF)"
          << R"( xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description)"
          << R"( xmlns:mwg-rs="http://www.metadataworkinggroup.com/schemas/regions/")"
          << R"( xmlns:stArea="http://ns.adobe.com/xmp/sType/Area#"><mwg-rs:Regions)"
          << R"( rdf:parseType="Resource"><mwg-rs:RegionList><rdf:Bag><rdf:li)"
          << R"( rdf:parseType="Resource"><mwg-rs:Type>Face</mwg-rs:Type><mwg-rs:Area)"
          << R"( stArea:x="0.765625" stArea:y="0.259259" stArea:w="0.0729" stArea:h="0.148"/>)"
          << R"(</rdf:li></rdf:Bag></mwg-rs:RegionList></mwg-rs:Regions></rdf:Description>)"
          << R"(</rdf:RDF></x:xmpmeta>)";
    }
    return path;
  }
  /// How many pixels of a frame are of about this colour.
  static int Count(const std::string& film, size_t frame, Rgb colour) {
    int count = 0;
    const size_t bytes = size_t{4} * kFilmWidth * kFilmHeight;
    for (size_t at = frame * bytes; at < (frame + 1) * bytes; at += 4) {
      const Rgb seen{uint8_t(film[at + 2]), uint8_t(film[at + 1]), uint8_t(film[at])};
      count += Distance(seen, colour) < 60 ? 1 : 0;
    }
    return count;
  }
  std::string Film(const Words& inputs, const Words& more) {
    Words words = inputs;
    words.insert(words.end(), {"-o", folder_ / "f.bgra", "--size", "192x108", "--jobs", "2"});
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.err, "");
    return BytesOf(folder_ / "f.bgra");
  }

  TempFolder folder_;
};

TEST_F(FacesInPhotos, AreWhereAutomaticMovesGo) {
  const Words move{"--frames", "8", "--move", "auto", "--amount", "2"};
  const std::string named = Film({"render", Photo(true)}, move);
  EXPECT_GT(Count(named, 7, kFace), 2 * Count(named, 0, kFace)) << "twice as close";
  EXPECT_EQ(Count(named, 7, kBall), 0);
  const std::string plain = Film({"render", Photo(false)}, move);
  EXPECT_GT(Count(plain, 7, kBall), 2 * Count(plain, 0, kBall));
}

TEST_F(FacesInPhotos, AreGoneInToAndDrawnBackFromInTurns) {
  const std::string photo = Photo(true);
  const std::string film =
      Film({"slideshow", photo, photo}, {"--each", "0.4", "--fade", "0", "--move", "mixed"});
  EXPECT_GT(Count(film, 9, kFace), Count(film, 0, kFace)) << "in";
  EXPECT_GT(Count(film, 10, kFace), Count(film, 19, kFace)) << "and back";
}

}  // namespace
}  // namespace kelto::test
