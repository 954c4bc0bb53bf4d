// Animations, read back by the FFmpeg libraries.
#include "host/film/animation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"
#include "tests/host/film/misuse.h"
#include "tests/host/support/film_reader.h"
#include "tests/support/file_bytes.h"

namespace kelto::host {
namespace {

using test::MisuseOf;
using testing::HasSubstr;

constexpr FrameSize kSize{64, 48};

/// A smooth picture that moves: hard for few colours.
std::vector<uint8_t> Frame(int number) {
  std::vector<uint8_t> bytes;
  for (int y = 0; y < kSize.height; ++y) {
    for (int x = 0; x < kSize.width; ++x) {
      bytes.insert(bytes.end(),
                   {uint8_t(4 * y), uint8_t(3 * x + 5 * number), uint8_t(2 * x + y), uint8_t(x)});
    }
  }
  return bytes;
}

class Animations : public testing::TestWithParam<const char*> {
 protected:
  FilmRequest Request() const {
    FilmRequest request;
    request.output = folder_ / (std::string("f.") + GetParam());
    request.format.size = kSize;
    request.format.rate = {25, 1};
    request.frames = 5;
    return request;
  }
  void Write(const FilmRequest& request) const {
    const FilmKind& kind = KindFor(request.output, "");
    CheckRequest(kind, request);
    const auto film = kind.open(request);
    for (int i = 0; i < request.frames; ++i) {
      const auto bytes = Frame(i);
      film->Write({bytes.data(), ptrdiff_t{4} * kSize.width, kSize});
    }
    film->Finish();
  }
  test::TempFolder folder_;
};

TEST_P(Animations, AreTheSameEachTime) {
  Write(Request());
  const std::string bytes = test::BytesOf(Request().output);
  EXPECT_FALSE(bytes.empty());
  Write(Request());
  EXPECT_EQ(test::BytesOf(Request().output), bytes);
}

TEST_P(Animations, PlayOverAndOver) {
  Write(Request());
  const std::string bytes = test::BytesOf(Request().output);
  // Each form says so in a block of its own, with 0 for no end.
  using namespace std::string_literals;
  const std::string endless = GetParam() == "gif"s    ? "NETSCAPE2.0\x03\x01\0\0"s
                              : GetParam() == "webp"s ? "ANIM\x06\0\0\0\xff\xff\xff\xff\0\0"s
                                                      : "acTL\0\0\0\x05\0\0\0\0"s;
  EXPECT_NE(bytes.find(endless), bytes.npos);
}

TEST_P(Animations, HoldWholeFramesAlone) {
  FilmRequest request = Request();
  request.format.fields = FieldOrder::kTopFirst;
  EXPECT_EQ(MisuseOf([&] { CheckRequest(KindFor(request.output, ""), request); }),
            std::string("--fields: ") + GetParam() +
                " holds whole frames only; use --fields progressive");
}

INSTANTIATE_TEST_SUITE_P(AllForms, Animations, testing::Values("gif", "webp", "apng"),
                         [](const auto& form) { return std::string(form.param); });

class OneAnimation : public Animations {};

TEST_P(OneAnimation, IsReadBackInItsColours) {
  Write(Request());
  const test::DecodedFilm film = test::ReadFilm(Request().output);
  ASSERT_EQ(film.frames.size(), 5u);
  const bool exact = std::string(GetParam()) != "gif";  // which has 256 colours
  for (int i = 0; i < 5; ++i) {
    EXPECT_NEAR(film.frames[i].seconds, i / 25.0, 1e-6) << i;
    const std::vector<uint8_t> drawn = Frame(i);
    double error = 0.0;
    for (size_t pixel = 0; pixel < drawn.size() / 4; ++pixel) {
      // Red, green, blue against blue, green, red, alpha.
      for (size_t c = 0; c < 3; ++c) {
        error += std::abs(film.frames[i].planes[c].at(pixel) - drawn[4 * pixel + 2 - c]);
      }
    }
    EXPECT_LE(error / (3.0 * kSize.width * kSize.height), exact ? 0.0 : 12.0) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(ThatTheLibrariesRead, OneAnimation, testing::Values("gif", "apng"),
                         [](const auto& form) { return std::string(form.param); });

TEST(Gif, ThatWouldNotFitIntoMemoryIsRefused) {
  FilmRequest request;
  request.output = "f.gif";
  request.frames = 1000;
  EXPECT_THAT(MisuseOf([&] { CheckRequest(KindFor("f.gif", ""), request); }),
              HasSubstr("f.gif: a gif of 1000 frames takes 7910 MiB of memory, and 2048 are the "
                        "most; give it a smaller --size"));
}

TEST(Apng, NeedsAFile) {
  FilmRequest request;
  request.output = "-";
  EXPECT_THAT(MisuseOf([&] { CheckRequest(KindFor("-", "apng"), request); }),
              HasSubstr("-o -: an apng has"));
}

}  // namespace
}  // namespace kelto::host
