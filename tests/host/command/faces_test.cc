// Moves to the faces in a photo.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/host/command/run.h"
#include "tests/host/support/drawn_faces.h"

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
  EXPECT_GE(Count(plain, 7, kBall), Count(plain, 0, kBall)) << "all of what catches the eye";
}

TEST_F(FacesInPhotos, AreLookedForWhereTheMetadataNameNone) {
  const std::string photo = folder_ / "drawn.jpg";
  WriteJpeg(photo, MakePicture(960, 540, [](int x, int y) {
              static const Portrait portrait{960, 540, {{700, 100, 80}}, 180, 380, 90};
              const auto rgb = ColourAt(portrait, x, y);
              return Rgb{rgb[0], rgb[1], rgb[2]};
            }));
  const std::string film =
      Film({"render", photo}, {"--frames", "8", "--move", "auto", "--amount", "2"});
  constexpr Rgb kCheek{222, 175, 147};
  EXPECT_GT(Count(film, 7, kCheek), 2 * Count(film, 0, kCheek)) << "twice as close";
  EXPECT_EQ(Count(film, 7, kBall), 0);
  const Outcome drawn = RunKelto({"inspect", photo});
  EXPECT_NE(drawn.out.find("faces:        1, found by OpenCV's cascades\n"), std::string::npos)
      << drawn.out << drawn.err;
  const Outcome named = RunKelto({"inspect", Photo(true)});
  EXPECT_NE(named.out.find("faces:        1, named by the photo's metadata\n"), std::string::npos)
      << named.out << named.err;
  const Outcome plain = RunKelto({"inspect", Photo(false)});
  EXPECT_NE(plain.out.find("faces:        none found\n"), std::string::npos) << plain.out;
}

TEST_F(FacesInPhotos, AreLookedForByAModelThatIsNamed) {
  const std::string model = folder_ / "model.onnx", film = folder_ / "f.y4m";
  const Words words{"--move", "auto", "--face-model", model};
  const Outcome missing = Render(Photo(false), film, words);
  EXPECT_NE(missing.code, 0);
  EXPECT_TRUE(IsOneLine(missing.err)) << missing.err;
  EXPECT_NE(missing.err.find(model), std::string::npos) << missing.err;
  std::ofstream(model) << "not a network";
  const Outcome wrong = Render(Photo(false), film, words);
  EXPECT_NE(wrong.code, 0);
  EXPECT_TRUE(IsOneLine(wrong.err)) << wrong.err;
  EXPECT_NE(wrong.err.find("face_detection_yunet_2022mar.onnx"), std::string::npos) << wrong.err;
  // What is named by the photo needs no model.
  EXPECT_EQ(Render(Photo(true), film, words).code, 0);
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
