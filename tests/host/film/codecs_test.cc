// Every codec in every container that holds it, read back.
#include "host/film/codecs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "host/base/error.h"
#include "host/film/coded_films.h"
#include "host/film/encoder.h"
#include "tests/host/film/misuse.h"
#include "tests/host/support/effect_frames.h"
#include "tests/host/support/film_reader.h"
#include "tests/support/file_bytes.h"

namespace kelto::host {
namespace {

using test::DecodedFilm;
using test::DecodedFrame;
using test::MisuseOf;
using test::Rgb;
using testing::HasSubstr;

struct Film {
  const FilmCodec* codec;
  std::string kind;
};

/// Those of luma and chroma, which the tests look at.
std::vector<Film> AllFilms() {
  std::vector<Film> films;
  for (const FilmCodec& codec : FilmCodecs()) {
    if (codec.form == CodedForm::kRgb) continue;
    for (const char* kind : codec.kinds) films.push_back({&codec, kind});
  }
  return films;
}

std::vector<Film> FilmsWithFields() {
  std::vector<Film> films = AllFilms();
  std::erase_if(films, [](const Film& film) { return !film.codec->fields; });
  return films;
}

std::string NameOf(const testing::TestParamInfo<Film>& film) {
  return std::string(film.param.codec->name) + "_" + film.param.kind;
}

class Codecs : public testing::TestWithParam<Film> {
 protected:
  FilmRequest RequestOf(const std::string& name, FilmFormat format, int32_t frames) const {
    return {folder_ / name, format, frames, GetParam().codec->name};
  }
  std::unique_ptr<FrameSink> Open(const FilmRequest& request) const {
    const FilmKind& kind = KindFor("-", GetParam().kind);
    CheckRequest(kind, request);
    return kind.open(request);
  }
  test::TempFolder folder_;
};

/// Colour bars across a frame.
test::EffectFrame Bars(FrameSize size) {
  const std::vector<Rgb> bars = test::BarColours();
  return test::MakeYCbYCr(size, [&](int x, int) { return bars[x * bars.size() / size.width]; });
}

test::EffectFrame Grey(FrameSize size, int level) {
  return test::MakeYCbYCr(size, [=](int, int) {
    return Rgb{uint8_t(level), uint8_t(level), uint8_t(level)};
  });
}

using test::BytesOf;

TEST_P(Codecs, HoldEveryFrameWithItsTimeAndForm) {
  const FrameSize size{128, 96};
  const auto film = Open(RequestOf("film", {size, {30000, 1001}}, 30));
  for (int i = 0; i < 30; ++i) film->Write(Grey(size, 5 * i).View());
  film->Finish();

  const DecodedFilm read = test::ReadFilm(folder_ / "film");
  EXPECT_NEAR(av_q2d(read.rate), 30000.0 / 1001.0, 2e-2);
  EXPECT_NEAR(read.seconds, 30.0 * 1001.0 / 30000.0, 0.003);
  EXPECT_EQ(read.streams, 1);
  ASSERT_EQ(read.frames.size(), 30u);
  for (int i = 0; i < 30; ++i) {
    EXPECT_EQ(read.frames[i].width, size.width);
    EXPECT_EQ(read.frames[i].height, size.height);
    EXPECT_FALSE(read.frames[i].interlaced);
    EXPECT_NEAR(read.frames[i].Luma(60, 50), 16.0 + 5 * i * 219.0 / 255.0, 2.0) << "frame " << i;
    EXPECT_NEAR(read.frames[i].seconds, i * 1001.0 / 30000.0, 0.001);
  }
}

TEST_P(Codecs, TagTheirColoursAndKeepThem) {
  for (const FrameSize size : {FrameSize{720, 576}, FrameSize{1280, 720}}) {
    const auto film = Open(RequestOf("film", {size, {25, 1}}, 2));
    const test::EffectFrame bars = Bars(size);
    film->Write(bars.View());
    film->Write(bars.View());
    film->Finish();

    const DecodedFilm read = test::ReadFilm(folder_ / "film");
    const AVColorSpace matrix = size.height > 576 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    EXPECT_EQ(read.matrix, matrix);
    EXPECT_EQ(read.primaries, AVCOL_PRI_BT709);
    EXPECT_EQ(read.transfer, AVCOL_TRC_BT709);
    EXPECT_EQ(read.range, AVCOL_RANGE_MPEG);
    ASSERT_EQ(read.frames.size(), 2u);
    const std::vector<Rgb> colours = test::BarColours();
    for (const DecodedFrame& frame : read.frames) {
      for (size_t i = 0; i < colours.size(); ++i) {
        const int x = static_cast<int>((2 * i + 1) * frame.width / (2 * colours.size()));
        const Rgb seen = test::ColourAt(frame, matrix, x, frame.height / 2);
        EXPECT_LE(test::Distance(seen, colours[i]), 4)
            << test::ToString(colours[i]) << " became " << test::ToString(seen);
      }
    }
  }
}

TEST_P(Codecs, KeepTheShapeOfPixels) {
  const FrameSize size{96, 80};
  const auto film = Open(RequestOf("film", {size, {25, 1}, FieldOrder::kProgressive, {4, 3}}, 2));
  film->Write(Grey(size, 90).View());
  film->Write(Grey(size, 90).View());
  film->Finish();
  const DecodedFilm read = test::ReadFilm(folder_ / "film");
  EXPECT_EQ(read.sampleAspect.num, 4);
  EXPECT_EQ(read.sampleAspect.den, 3);
}

TEST_P(Codecs, MakeTheSameFileEveryTime) {
  const FrameSize size{256, 160};
  const auto bytes = [&](const char* name) {
    const auto film = Open(RequestOf(name, {size, {25, 1}}, 12));
    for (int i = 0; i < 12; ++i) {
      const auto frame = test::MakeYCbYCr(size, [&](int x, int y) {
        return Rgb{uint8_t(x + 5 * i), uint8_t((x * y) >> 3), uint8_t(y - 3 * i)};
      });
      film->Write(frame.View());
    }
    film->Finish();
    return BytesOf(folder_ / name);
  };
  const std::string first = bytes("a");
  EXPECT_GT(first.size(), 500u);
  EXPECT_TRUE(first == bytes("b"));
  EXPECT_TRUE(first == bytes("c"));
}

TEST_P(Codecs, TakeTheSmallestFramesTheySayTheyTake) {
  const int32_t side = GetParam().codec->MinimumSide();
  const auto film = Open(RequestOf("film", {{side, side}, {25, 1}}, 1));
  film->Write(Grey({side, side}, 200).View());
  film->Finish();
  EXPECT_EQ(test::ReadFilm(folder_ / "film").frames.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(All, Codecs, testing::ValuesIn(AllFilms()), &NameOf);

class CodecFields : public Codecs {};

TEST_P(CodecFields, AreMarkedAndKeepApart) {
  const FrameSize size{128, 96};
  const Rgb top{200, 0, 0}, bottom{0, 0, 200};
  const auto frame = test::MakeYCbYCr(size, [&](int, int y) { return y % 2 == 0 ? top : bottom; });
  for (const FieldOrder order : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
    const auto film = Open(RequestOf("film", {size, {25, 1}, order}, 4));
    for (int i = 0; i < 4; ++i) film->Write(frame.View());
    film->Finish();
    const DecodedFilm read = test::ReadFilm(folder_ / "film");
    const bool topFirst = order == FieldOrder::kTopFirst;
    EXPECT_EQ(read.fields, topFirst ? AV_FIELD_TT : AV_FIELD_BB);
    ASSERT_EQ(read.frames.size(), 4u);
    for (const DecodedFrame& each : read.frames) {
      EXPECT_TRUE(each.interlaced);
      EXPECT_EQ(each.topFirst, topFirst);
      for (int row = 40; row < 48; ++row) {
        const bool half = each.chromaHeight < each.height;
        const int chromaRow = half ? 2 * (row / 4) + row % 2 : row;
        const size_t at = size_t(chromaRow) * each.chromaWidth + 30;
        const Rgb seen =
            test::ColourOf(each.Luma(60, row), each.planes[1][at], each.planes[2][at], read.matrix);
        EXPECT_LE(test::Distance(seen, row % 2 == 0 ? top : bottom), 12)
            << "row " << row << " is " << test::ToString(seen);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, CodecFields, testing::ValuesIn(FilmsWithFields()), &NameOf);

TEST(CodecTable, EveryContainerHasAUsualCodecThatItHolds) {
  std::set<std::string> containers;
  for (const FilmCodec& codec : FilmCodecs()) {
    for (const char* kind : codec.kinds) {
      EXPECT_TRUE(IsContainer(kind)) << kind;
      EXPECT_STREQ(KindFor("-", kind).name, kind);
      containers.insert(kind);
    }
  }
  for (const std::string& kind : containers) EXPECT_NO_THROW(CodecFor(kind, "")) << kind;
  EXPECT_STREQ(CodecFor("mp4", "").name, "h264");
  EXPECT_STREQ(CodecFor("webm", "").name, "vp9");
  EXPECT_FALSE(IsContainer("png"));
  EXPECT_FALSE(IsContainer("y4m"));
}

TEST(CodecTable, ACodecInTheWrongContainerIsAnsweredWithTheRightOnes) {
  EXPECT_EQ(MisuseOf([] { CodecFor("mp4", "ffv1"); }),
            "--codec ffv1: does not go into mp4; use mkv");
  EXPECT_EQ(MisuseOf([] { CodecFor("webm", "prores"); }),
            "--codec prores: does not go into webm; use one of mov, mkv");
}

TEST(CodecTable, AnUnknownCodecIsAnsweredWithTheKnown) {
  const std::string text = MisuseOf([] { CodecFor("mp4", "mpeg2"); });
  for (const FilmCodec& codec : FilmCodecs()) EXPECT_THAT(text, HasSubstr(codec.name));
}

TEST(CodecTable, CodecsThatHoldNoFieldsSaySo) {
  for (const FilmCodec& codec : FilmCodecs()) {
    const FilmFormat format{{1920, 1080}, {25, 1}, FieldOrder::kTopFirst};
    const std::string text = MisuseOf([&] { CheckFormat(codec, format); });
    if (codec.fields) {
      EXPECT_EQ(text, "none");
    } else {
      EXPECT_THAT(text, testing::StartsWith(std::string("--fields: ") + codec.name));
      EXPECT_THAT(text, HasSubstr("h264"));
    }
  }
}

TEST(CodecTable, FramesTooSmallForAnEncoderAreRefusedBeforeItStarts) {
  EXPECT_THAT(MisuseOf([] {
                CheckFormat(CodecFor("mp4", "h265"), {{14, 64}, {25, 1}});
              }),
              HasSubstr("16x16"));
}

TEST(CodecTable, TellsWhichEncoderIsInstalled) {
  EXPECT_EQ(InstalledEncoder(CodecFor("mp4", "h264")), "libx264");
  FilmCodec unheardOf = CodecFor("mp4", "h264");
  unheardOf.encoders = {{"libunheardof", 2, ""}};
  EXPECT_EQ(InstalledEncoder(unheardOf), "");
}

}  // namespace
}  // namespace kelto::host
