// Captions and titles, drawn over grey frames.
#include "host/lettering/lettering.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelto::host {
namespace {

constexpr uint8_t kGrey = 110;

FilmFormat LetterFormat(FrameSize size, SampleAspect aspect = {}) {
  FilmFormat format;
  format.size = size;
  format.sampleAspect = aspect;
  return format;
}

/// A grey frame with letters over it.
struct Lettered {
  Lettered(const std::string& text, LetterPlace place, const FilmFormat& format,
           PixelLayout layout = PixelLayout::kBGRA, double opacity = 1.0, double later = 1.0)
      : size(format.size),
        step(BytesPerPixel(layout)),
        bytes(size_t{step} * size.width * size.height, kGrey) {
    const Lettering letters(text, place, format, layout);
    missing = letters.MissingLetters();
    letters.Over(bytes.data(), static_cast<ptrdiff_t>(step) * size.width, opacity, later);
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        const uint8_t level = At(x, y);
        if (level == kGrey) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
        lightest = std::max(lightest, level);
        darkest = std::min(darkest, level);
      }
    }
  }
  /// The first byte of a pixel.
  uint8_t At(int x, int y) const { return bytes[size_t{step} * (size_t(y) * size.width + x)]; }

  FrameSize size;
  uint32_t step;
  std::vector<uint8_t> bytes;
  int left = 100000, right = -1, top = 100000, bottom = -1, missing = 0;
  uint8_t lightest = kGrey, darkest = kGrey;
};

const std::string kLong =
    "A walk from the old harbour up to the lighthouse, on the last day of a long and rather wet "
    "summer, with everybody who could come and with two dogs that nobody had invited";

TEST(Letters, StayWithinTheFrameThatEveryTelevisionShows) {
  const std::string texts[] = {
      "Beach", kLong, kLong + kLong + kLong + kLong + kLong,
      "Donaudampfschifffahrtsgesellschaftskapitaensmuetzenabzeichenverwahrung"
      "Donaudampfschifffahrtsgesellschaftskapitaensmuetzenabzeichenverwahrung",
      "One\nTwo\nThree"};
  const FilmFormat formats[] = {LetterFormat({640, 360}), LetterFormat({360, 640}),
                                LetterFormat({720, 576}, {16, 11}), LetterFormat({96, 64})};
  for (const FilmFormat& format : formats) {
    for (const LetterPlace place : {LetterPlace::kCaption, LetterPlace::kTitle}) {
      for (const std::string& text : texts) {
        const Lettered frame(text, place, format);
        ASSERT_GE(frame.right, 0) << text;
        // To the pixel that an edge of a letter shares.
        EXPECT_GE(frame.left, format.size.width / 20 - 1) << text;
        EXPECT_LE(frame.right, format.size.width - format.size.width / 20) << text;
        EXPECT_GE(frame.top, format.size.height / 20 - 1) << text;
        EXPECT_LE(frame.bottom, format.size.height - format.size.height / 20) << text;
      }
    }
  }
}

TEST(Letters, OfCaptionsAreBelowAndOfTitlesInTheMiddle) {
  const FilmFormat format = LetterFormat({640, 360});
  EXPECT_GT(Lettered("Beach", LetterPlace::kCaption, format).top, 300);
  const Lettered title("Beach", LetterPlace::kTitle, format);
  EXPECT_NEAR((title.top + title.bottom) / 2.0, 180, 12);
  EXPECT_NEAR((title.left + title.right) / 2.0, 320, 3);
}

TEST(Letters, AreWhiteWithADarkOutlineSoThatTheyAreReadOnAnything) {
  const Lettered frame("Beach", LetterPlace::kCaption, LetterFormat({640, 360}));
  EXPECT_EQ(frame.lightest, 255);
  EXPECT_LT(frame.darkest, 60);
}

TEST(Letters, AreStudioWhiteAndGreyIn422) {
  const FilmFormat format = LetterFormat({640, 360});
  const Lettered frame("Beach", LetterPlace::kCaption, format, PixelLayout::kYCbYCr);
  EXPECT_EQ(frame.lightest, 235);
  for (int y = 0; y < 360; ++y) {
    for (int x = 0; x < 640; ++x) {
      const int chroma = frame.bytes[2 * (size_t(y) * 640 + x) + 1];
      EXPECT_GE(chroma, kGrey);
      EXPECT_LE(chroma, 128);
    }
  }
}

TEST(Letters, ComeInByTheirOpacityWithTheLaterFieldFurther) {
  FilmFormat format = LetterFormat({640, 360});
  const Lettered none("Beach", LetterPlace::kCaption, format, PixelLayout::kBGRA, 0.0);
  EXPECT_EQ(none.right, -1);
  const Lettered half("Beach", LetterPlace::kCaption, format, PixelLayout::kBGRA, 0.5);
  EXPECT_NEAR(half.lightest, (255 + kGrey) / 2, 1);
  format.fields = FieldOrder::kTopFirst;
  const Lettered fields("Beach", LetterPlace::kCaption, format, PixelLayout::kBGRA, 0.0, 1.0);
  for (int y = fields.top; y <= fields.bottom; ++y) {
    for (int x = 0; x < 640; ++x) {
      if (y % 2 == 0) {
        EXPECT_EQ(fields.At(x, y), kGrey);
      }
    }
  }
  EXPECT_EQ(fields.lightest, 255);
}

TEST(Letters, KeepAFramesAlpha) {
  const Lettered frame("Beach", LetterPlace::kCaption, LetterFormat({640, 360}));
  for (size_t at = 3; at < frame.bytes.size(); at += 4) ASSERT_EQ(frame.bytes[at], kGrey);
}

TEST(Letters, AreOfAnyScriptThatAFontHas) {
  const FilmFormat format = LetterFormat({640, 360});
  for (const char* text :
       {"\u0413\u043e\u0440\u044b", "\u0392\u03bf\u03c5\u03bd\u03ac", "\u05e9\u05dc\u05d5\u05dd",
        "\u0645\u0631\u062d\u0628\u0627", "\u0928\u092e\u0938\u094d\u0924\u0947"}) {
    EXPECT_EQ(Lettered(text, LetterPlace::kCaption, format).missing, 0) << text;
  }
  EXPECT_GT(Lettered("\U0010FF00", LetterPlace::kCaption, format).missing, 0);
  EXPECT_GE(Lettered("bytes \xff\xfe", LetterPlace::kCaption, format).right, 0);
}

TEST(Letters, OfArabicAreJoinedAndRunFromTheRight) {
  // Beh alone is wider than where another letter follows it; a final letter ends at the left.
  const FilmFormat format = LetterFormat({640, 360});
  const auto width = [&](const char* text) {
    const Lettered frame(text, LetterPlace::kTitle, format);
    return frame.right - frame.left;
  };
  EXPECT_LT(width("\u0628\u0628"), 2 * width("\u0628") - 2);
  const Lettered mixed("\u05d0.", LetterPlace::kTitle, format);
  // The point ends the line: it is at its left, so the lowest ink there is nothing else.
  int lowestLeft = 0;
  for (int y = mixed.top; y <= mixed.bottom; ++y) {
    if (mixed.At(mixed.left + 2, y) != kGrey && lowestLeft == 0) lowestLeft = y;
  }
  EXPECT_GT(lowestLeft, (mixed.top + mixed.bottom) / 2) << "a point, not a letter";
}

TEST(CaptionOpacityTest, ComesAndGoesSoftlyBetweenItsFrames) {
  const FrameRate rate{25, 1};
  EXPECT_EQ(CaptionOpacity(9, 10, 110, rate), 0.0);
  EXPECT_EQ(CaptionOpacity(110, 10, 110, rate), 0.0);
  EXPECT_EQ(CaptionOpacity(60, 10, 110, rate), 1.0);
  for (int frame = 10; frame < 24; ++frame) {
    const double step =
        CaptionOpacity(frame + 1, 10, 110, rate) - CaptionOpacity(frame, 10, 110, rate);
    EXPECT_GT(step, 0.0) << frame;
    EXPECT_LT(step, 0.11) << frame;
    EXPECT_NEAR(CaptionOpacity(frame, 10, 110, rate), CaptionOpacity(119 - frame, 10, 110, rate),
                1e-9);
  }
}

/// The groups of columns that letters, which are white, stand in without a gap: their widths, from
/// left to right.
std::vector<int> LetterWidths(const std::string& text) {
  const Lettered frame(text, LetterPlace::kTitle, LetterFormat({1280, 720}));
  EXPECT_EQ(frame.missing, 0) << text << ": fonts-noto-core and fonts-sawarabi-gothic have it";
  std::vector<int> widths;
  bool inside = false;
  for (int x = 0; x < frame.size.width; ++x) {
    bool white = false;
    for (int y = 0; y < frame.size.height; ++y) white |= frame.At(x, y) > 200;
    if (white && !inside) widths.push_back(0);
    if (white) ++widths.back();
    inside = white;
  }
  return widths;
}

TEST(Letters, ThatGoFromRightToLeftBeginAtTheRight) {
  // Shin is wide, vav narrow.
  const std::vector<int> shinFirst = LetterWidths("ש ו"), vavFirst = LetterWidths("ו ש");
  ASSERT_EQ(shinFirst.size(), 2u);
  EXPECT_GT(shinFirst[1], 2 * shinFirst[0]);
  ASSERT_EQ(vavFirst.size(), 2u);
  EXPECT_GT(vavFirst[0], 2 * vavFirst[1]);
  // Digits in them keep their order.
  EXPECT_EQ(LetterWidths("17").front(), LetterWidths("ש 17").front());
}

TEST(Letters, OfChineseAndJapaneseAreNotBoxes) {
  for (const char* text : {"漢字", "ひらがな", "カタカナ"}) {
    const Lettered frame(text, LetterPlace::kTitle, LetterFormat({1280, 720}));
    EXPECT_EQ(frame.missing, 0) << text << ": fonts-sawarabi-gothic has it";
    EXPECT_EQ(frame.lightest, 255);
  }
  // As wide as high, and each of its own shape.
  const Lettered one("漢", LetterPlace::kTitle, LetterFormat({1280, 720}));
  EXPECT_NEAR(one.right - one.left, one.bottom - one.top, 16);
  EXPECT_NE(one.bytes, Lettered("字", LetterPlace::kTitle, LetterFormat({1280, 720})).bytes);
}

}  // namespace
}  // namespace kelto::host
