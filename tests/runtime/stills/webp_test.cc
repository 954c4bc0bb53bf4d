#include <webp/encode.h>
#include <webp/mux.h>

#include "tests/runtime/stills/exif_block.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class Webp : public StillTest {
 protected:
  Picture Decoded(const Bytes& bytes) const {
    const Loaded loaded = Load(bytes, "picture.webp");
    EXPECT_EQ(loaded.error, noErr) << loaded.text;
    return loaded.picture;
  }
};

Bytes Taken(uint8_t* data, size_t size) {
  Bytes bytes(data, data + size);
  WebPFree(data);
  return bytes;
}

Bytes Lossless(const Picture& picture) {
  uint8_t* out = nullptr;
  const size_t size = WebPEncodeLosslessBGRA(&picture.pixels[0].b, picture.width, picture.height,
                                             picture.width * 4, &out);
  return Taken(out, size);
}

Bytes WithChunks(const Bytes& webp, const Bytes& icc, const Bytes& exif) {
  const WebPData image = {webp.data(), webp.size()};
  WebPMux* mux = WebPMuxCreate(&image, 1);
  const WebPData icc_data = {icc.data(), icc.size()}, exif_data = {exif.data(), exif.size()};
  if (!icc.empty()) WebPMuxSetChunk(mux, "ICCP", &icc_data, 1);
  if (!exif.empty()) WebPMuxSetChunk(mux, "EXIF", &exif_data, 1);
  WebPData out = {};
  WebPMuxAssemble(mux, &out);
  Bytes bytes(out.bytes, out.bytes + out.size);
  WebPDataClear(&out);
  WebPMuxDelete(mux);
  return bytes;
}

TEST_F(Webp, LosslessComesOutExactly) {
  EXPECT_EQ(LargestDifference(Decoded(Lossless(GradientPicture(61, 43))), GradientPicture(61, 43)),
            0);
}

TEST_F(Webp, LossyComesOutNearly) {
  const Picture picture = GradientPicture(64, 48);
  uint8_t* out = nullptr;
  const size_t size =
      WebPEncodeBGRA(&picture.pixels[0].b, picture.width, picture.height, 64 * 4, 95, &out);
  EXPECT_LE(LargestDifference(Decoded(Taken(out, size)), picture), 12);
}

TEST_F(Webp, AlphaIsDrawnOverBlack) {
  Picture picture = {2, 1, {{50, 100, 200, 51}, {50, 100, 200, 255}}};
  const Picture decoded = Decoded(Lossless(picture));
  EXPECT_EQ(decoded.at(0, 0), Rgb(40, 20, 10));
  EXPECT_EQ(decoded.at(1, 0), Rgb(200, 100, 50));
}

TEST_F(Webp, ItsProfileIsHonoured) {
  const Bytes red = Lossless({4, 4, std::vector<Pixel>(16, Rgb(255, 0, 0))});
  EXPECT_TRUE(IsNear(Decoded(WithChunks(red, SwappedProfile(), {})).at(1, 1), Rgb(0, 255, 0), 1));
}

TEST_F(Webp, EveryOrientationIsHonoured) {
  const Picture upright = GradientPicture(37, 21);
  for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
    const Bytes stored = Lossless(StoredFor(upright, orientation));
    for (const bool headless : {false, true}) {
      const Bytes exif = ExifBlock(orientation, false, headless);
      EXPECT_EQ(LargestDifference(Decoded(WithChunks(stored, {}, exif)), upright), 0)
          << orientation;
    }
  }
}

TEST_F(Webp, OfAnAnimationTheFirstFrameIsDrawnWhereItLies) {
  const Picture first = GradientPicture(10, 6), second = {4, 4, std::vector<Pixel>(16)};
  WebPMux* mux = WebPMuxNew();
  WebPMuxAnimParams parameters = {0xffffffff, 0};
  WebPMuxSetAnimationParams(mux, &parameters);
  WebPMuxSetCanvasSize(mux, 20, 16);
  for (const Picture* picture : {&first, &second}) {
    const Bytes bytes = Lossless(*picture);
    WebPMuxFrameInfo frame = {};
    frame.bitstream = {bytes.data(), bytes.size()};
    frame.id = WEBP_CHUNK_ANMF;
    frame.x_offset = 4;
    frame.y_offset = 2;
    frame.duration = 100;
    ASSERT_EQ(WebPMuxPushFrame(mux, &frame, 1), WEBP_MUX_OK);
  }
  WebPData out = {};
  ASSERT_EQ(WebPMuxAssemble(mux, &out), WEBP_MUX_OK);
  const Bytes bytes(out.bytes, out.bytes + out.size);
  WebPDataClear(&out);
  WebPMuxDelete(mux);

  const Picture decoded = Decoded(bytes);
  ASSERT_EQ(decoded.width, 20);
  ASSERT_EQ(decoded.height, 16);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 20; ++x) {
      const bool inside = x >= 4 && x < 14 && y >= 2 && y < 8;
      EXPECT_EQ(decoded.at(x, y), inside ? Gradient(x - 4, y - 2) : Rgb(0, 0, 0)) << x << "," << y;
    }
  }
}

TEST_F(Webp, TruncatedIsAnError) {
  const Bytes whole = WithChunks(Lossless(GradientPicture(40, 40)), SrgbProfile(), {});
  for (size_t left = 16; left < whole.size(); left += 11) {
    const Loaded loaded =
        Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "cut.webp");
    EXPECT_EQ(loaded.error, codecBadDataErr) << left;
    EXPECT_EQ(loaded.text.rfind("cut.webp: truncated WebP (", 0), 0u) << loaded.text;
  }
}

}  // namespace
}  // namespace kelto::stills
