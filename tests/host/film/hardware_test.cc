// Encoders in hardware, as far as a machine without any can tell.
#include "host/film/hardware.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}

#include <sstream>

#include "host/film/codecs.h"
#include "host/film/depth.h"
#include "host/film/formats.h"
#include "host/film/planes.h"
#include "tests/host/film/misuse.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

using test::MisuseOf;
using test::Rgb;
using testing::HasSubstr;

/// A codec with one of its encoders in hardware.
struct HardwareCase {
  const FilmCodec* codec;
  FilmEncoder encoder;
};

std::vector<HardwareCase> HardwareCases() {
  std::vector<HardwareCase> cases;
  for (const char* word : HardwareWords()) {
    for (const FilmCodec& codec : FilmCodecs()) {
      for (const FilmEncoder& encoder : EncodersOf(codec, word)) cases.push_back({&codec, encoder});
    }
  }
  return cases;
}

TEST(Hardware, CodesTheTwoCodecsThatPlayersHaveInHardware) {
  std::string names;
  for (const HardwareCase& one : HardwareCases()) names += std::string(one.encoder.name) + " ";
  EXPECT_EQ(names, "h264_nvenc hevc_nvenc h264_qsv hevc_qsv ");
}

TEST(Hardware, IsNeverTakenUnlessItIsAskedFor) {
  for (const FilmCodec& codec : FilmCodecs()) {
    ASSERT_FALSE(EncodersOf(codec, "").empty());
    for (const FilmEncoder& encoder : EncodersOf(codec, "")) EXPECT_EQ(encoder.hardware, nullptr);
    for (const char* word : HardwareWords()) {
      for (const FilmEncoder& encoder : EncodersOf(codec, word))
        EXPECT_STREQ(encoder.hardware, word);
    }
  }
}

TEST(Hardware, EncodersKnowTheirOptionsAndTakeTheFrames) {
  for (const HardwareCase& one : HardwareCases()) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(one.encoder.name);
    if (encoder == nullptr) continue;  // an FFmpeg without
    const AVPixelFormat wanted = one.encoder.pairedChroma ? AV_PIX_FMT_NV12 : AV_PIX_FMT_YUV420P;
    bool takes = false;
    for (const AVPixelFormat* format = encoder->pix_fmts; *format != AV_PIX_FMT_NONE; ++format) {
      takes |= *format == wanted;
    }
    EXPECT_TRUE(takes) << encoder->name;
    AVCodecContext* context = avcodec_alloc_context3(encoder);
    for (const char* quality : {"", "low", "best", "1", "51"}) {
      for (const char* speed : {"", "slow", "fast", "fastest"}) {
        std::istringstream options(EncoderOptions(*one.codec, one.encoder, quality, speed));
        for (std::string option; options >> option;) {
          const size_t equals = option.find('=');
          EXPECT_EQ(av_opt_set(context, option.substr(0, equals).c_str(),
                               option.substr(equals + 1).c_str(), AV_OPT_SEARCH_CHILDREN),
                    0)
              << encoder->name << ": " << option;
        }
      }
    }
    avcodec_free_context(&context);
  }
}

TEST(Hardware, HasQualitiesOfItsOwn) {
  const FilmCodec& codec = CodecFor("mp4", "h264");
  const FilmEncoder intel = EncodersOf(codec, "qsv").front(),
                    nvidia = EncodersOf(codec, "nvenc").front();
  EXPECT_THAT(EncoderOptions(codec, intel, "high", ""), HasSubstr("global_quality=18"));
  EXPECT_THAT(EncoderOptions(codec, nvidia, "medium", "fast"), HasSubstr("qp=23 preset=p2"));
  EXPECT_THAT(MisuseOf([&] { EncoderOptions(codec, intel, "0", ""); }),
              HasSubstr("h264_qsv's own number from 1, the best, to 51"));
}

TEST(Hardware, SaysWhatItCannotDo) {
  const FilmKind& mkv = KindFor("film.mkv", "");
  const auto misuse = [&](const FilmKind& kind, FilmRequest request) {
    request.output = "film";
    return MisuseOf([&] { CheckRequest(kind, request); });
  };
  FilmRequest request;
  request.hardware = "nvenc";
  EXPECT_EQ(misuse(mkv, request), "none");
  request.codec = "vp9";
  EXPECT_EQ(misuse(mkv, request),
            "--encoder nvenc: has no VP9; use --codec h264, h265, or --encoder software");
  request.codec = "h264";
  request.format.fields = FieldOrder::kTopFirst;
  EXPECT_THAT(misuse(mkv, request), HasSubstr("--encoder nvenc: takes whole frames alone"));
  FilmRequest raw;
  raw.hardware = "qsv";
  EXPECT_THAT(misuse(KindFor("film.yuyv", ""), raw),
              HasSubstr("--encoder qsv: yuyv films have no codec"));
  EXPECT_THAT(MisuseOf([&] {
                DepthOf(mkv, "h265", {10, 16, false, true});
              }),
              HasSubstr("--depth 10: encoders in hardware have 8 bits; use --encoder software"));
  EXPECT_EQ(DepthOf(mkv, "h265", {0, 16, false, true}), 8);
  EXPECT_EQ(DepthOf(mkv, "h265", {0, 16, false, false}), 10);
}

TEST(Hardware, HasNames) {
  EXPECT_EQ(ParseEncoder("software"), "");
  EXPECT_EQ(ParseEncoder("qsv"), "qsv");
  EXPECT_EQ(MisuseOf([] { ParseEncoder("cuda"); }), "choose one of software, nvenc, qsv");
  EXPECT_EQ(MisuseOf([] { ParseEncoder("vaapi"); }),
            "is not supported, since it takes frames from the graphics card's memory alone; choose "
            "one of software, nvenc, qsv");
}

TEST(Nv12, HasTheSamplesOfPlanes) {
  const FrameSize size{12, 8};
  const test::EffectFrame frame = test::MakeYCbYCr(size, [](int x, int y) {
    return Rgb{uint8_t(x * 20), uint8_t(y * 30), uint8_t(x * y)};
  });
  const ChromaMap map = MapInto(ColourMatrix::kBt709);
  for (const bool interlaced : {false, true}) {
    std::vector<uint8_t> luma(96), cb(24), cr(24);
    FillPlanes420(frame.View(), map, interlaced,
                  {luma.data(), cb.data(), cr.data(), size.width, 6, 6});
    // Rows with bytes behind them, as encoders have.
    constexpr ptrdiff_t kRow = 16;
    std::vector<uint8_t> ownLuma(kRow * 8), chroma(kRow * 4);
    FillNv12(frame.View(), map, interlaced, {ownLuma.data(), chroma.data(), kRow, kRow});
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 12; ++x) EXPECT_EQ(ownLuma[kRow * y + x], luma[12 * y + x]);
    }
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 6; ++x) {
        EXPECT_EQ(chroma[kRow * y + 2 * x], cb[6 * y + x]);
        EXPECT_EQ(chroma[kRow * y + 2 * x + 1], cr[6 * y + x]);
      }
    }
  }
}

}  // namespace
}  // namespace kelto::host
