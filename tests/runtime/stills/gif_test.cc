#include <gif_lib.h>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Gif : public StillTest {
 protected:
  Picture Decoded(const Bytes& bytes) const {
    const Loaded loaded = Load(bytes, "picture.gif");
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

struct Frame {
  int left = 0, top = 0, width = 0, height = 0;
  bool interlaced = false;
  int transparent = -1;
  bool own_palette = false;
};

int OnWrite(GifFileType* gif, const GifByteType* data, int count) {
  Bytes& bytes = *static_cast<Bytes*>(gif->UserData);
  bytes.insert(bytes.end(), data, data + count);
  return count;
}

uint8_t IndexAt(int x, int y) { return static_cast<uint8_t>((x * 7 + y * 3) % 16); }
Pixel ColorOf(int index) {
  return Rgb(static_cast<uint8_t>(index * 16), 200, static_cast<uint8_t>(index));
}

/// 16 colours; pixel (x, y) of a frame has the colour of index IndexAt(x, y).
Bytes EncodeGif(int width, int height, const std::vector<Frame>& frames) {
  Bytes bytes;
  int error = 0;
  GifFileType* gif = EGifOpen(&bytes, OnWrite, &error);
  std::vector<GifColorType> colors, reversed;
  for (int i = 0; i < 16; ++i) {
    const Pixel p = ColorOf(i);
    colors.push_back({p.r, p.g, p.b});
    reversed.insert(reversed.begin(), {p.r, p.g, p.b});
  }
  ColorMapObject* map = GifMakeMapObject(16, colors.data());
  ColorMapObject* own = GifMakeMapObject(16, reversed.data());
  EGifPutScreenDesc(gif, width, height, 8, 0, map);
  for (const Frame& frame : frames) {
    EGifPutComment(gif, "a comment before the frame");
    if (frame.transparent >= 0) {
      const GraphicsControlBlock control = {0, false, 10, frame.transparent};
      GifByteType block[4];
      EGifGCBToExtension(&control, block);
      EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, block);
    }
    EGifPutImageDesc(gif, frame.left, frame.top, frame.width, frame.height, frame.interlaced,
                     frame.own_palette ? own : nullptr);
    std::vector<int> order;
    if (frame.interlaced) {
      const int first[] = {0, 4, 2, 1}, step[] = {8, 8, 4, 2};
      for (int pass = 0; pass < 4; ++pass) {
        for (int y = first[pass]; y < frame.height; y += step[pass]) order.push_back(y);
      }
    } else {
      for (int y = 0; y < frame.height; ++y) order.push_back(y);
    }
    for (const int y : order) {
      Bytes line;
      for (int x = 0; x < frame.width; ++x) line.push_back(IndexAt(x, y));
      EGifPutLine(gif, line.data(), frame.width);
    }
  }
  EGifCloseFile(gif, &error);
  GifFreeMapObject(map);
  GifFreeMapObject(own);
  return bytes;
}

TEST_F(Gif, PlainAndInterlacedComeOutExactly) {
  for (const bool interlaced : {false, true}) {
    for (const int height : {1, 3, 21}) {
      const Picture picture =
          Decoded(EncodeGif(19, height, {{0, 0, 19, height, interlaced, -1, false}}));
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < 19; ++x) {
          ASSERT_EQ(picture.at(x, y), ColorOf(IndexAt(x, y))) << x << "," << y;
        }
      }
    }
  }
}

TEST_F(Gif, TheFirstFrameLiesOnItsScreenAndTheRestIsBlack) {
  const Picture picture =
      Decoded(EncodeGif(30, 20, {{5, 6, 10, 9, false, -1, true}, {0, 0, 30, 20, false, -1, true}}));
  ASSERT_EQ(picture.width, 30);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      const bool inside = x >= 5 && x < 15 && y >= 6 && y < 15;
      // The frame's own palette runs the other way.
      const Pixel expected = inside ? ColorOf(15 - IndexAt(x - 5, y - 6)) : Rgb(0, 0, 0);
      ASSERT_EQ(picture.at(x, y), expected) << x << "," << y;
    }
  }
}

TEST_F(Gif, AFrameThatReachesOutsideItsScreenIsCut) {
  for (const bool interlaced : {false, true}) {
    const Picture picture = Decoded(EncodeGif(12, 12, {{8, 9, 20, 20, interlaced, -1, false}}));
    EXPECT_EQ(picture.at(11, 11), ColorOf(IndexAt(3, 2)));
    EXPECT_EQ(picture.at(7, 9), Rgb(0, 0, 0));
    const Picture outside = Decoded(EncodeGif(12, 12, {{50, 60, 9, 9, interlaced, -1, false}}));
    EXPECT_EQ(outside.at(11, 11), Rgb(0, 0, 0));
  }
}

TEST_F(Gif, TheTransparentColourBecomesBlack) {
  const Picture picture = Decoded(EncodeGif(16, 16, {{0, 0, 16, 16, false, 3, false}}));
  for (int x = 0; x < 16; ++x) {
    const int index = IndexAt(x, 5);
    EXPECT_EQ(picture.at(x, 5), index == 3 ? Rgb(0, 0, 0) : ColorOf(index)) << x;
  }
}

TEST_F(Gif, TruncatedIsAnError) {
  const Bytes whole = EncodeGif(40, 40, {{0, 0, 40, 40, false, -1, false}});
  for (size_t left = 10; left + 4 < whole.size(); left += 13) {
    const Loaded loaded =
        Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "cut.gif");
    EXPECT_EQ(loaded.error, codecBadDataErr) << left;
    EXPECT_EQ(loaded.text.rfind("cut.gif: truncated GIF (", 0), 0u) << loaded.text;
  }
}

TEST_F(Gif, WithoutAFrameItIsDamaged) {
  const Loaded loaded = Load(EncodeGif(4, 4, {}), "none.gif");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text, "none.gif: damaged GIF (it holds no frame)");
}

}  // namespace
}  // namespace kelto::stills
