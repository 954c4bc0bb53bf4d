#include <libheif/heif.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "runtime/stills/deep_reader.h"
#include "runtime/stills/heif_library.h"
#include "runtime/stills/still_error.h"
#include "tests/runtime/stills/profiles.h"
#include "tests/runtime/stills/still_test.h"

/// The encoder that makes the pictures of these tests leaks a little; decoders do not.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's name for it
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libx265.so"; }
// NOLINTEND(bugprone-reserved-identifier)

namespace kelto::stills {
namespace {

heif_error OnWrite(heif_context*, const void* data, size_t size, void* user) {
  Bytes& bytes = *static_cast<Bytes*>(user);
  const uint8_t* from = static_cast<const uint8_t*>(data);
  bytes.insert(bytes.end(), from, from + size);
  return {heif_error_Ok, heif_suberror_Unspecified, "ok"};
}

/// For machines whose library cannot make these pictures.
constexpr const char* kMaySkip = "KELTO_SKIP_HEIF";

/// Empty when the library has no encoder for the format.
Bytes EncodeHeif(const Picture& picture, heif_compression_format format, const Bytes& icc = {},
                 heif_orientation orientation = heif_orientation_normal) {
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  if (heif_context_get_encoder_for_format(context, format, &encoder).code != heif_error_Ok) {
    heif_context_free(context);
    return {};
  }
  heif_encoder_set_lossy_quality(encoder, 95);
  heif_encoder_set_parameter_string(encoder, "chroma", "444");
  if (format == heif_compression_AV1) heif_encoder_set_parameter_integer(encoder, "speed", 8);
  heif_image* image = nullptr;
  heif_image_create(picture.width, picture.height, heif_colorspace_RGB,
                    heif_chroma_interleaved_RGBA, &image);
  heif_image_add_plane(image, heif_channel_interleaved, picture.width, picture.height, 8);
  int row_bytes = 0;
  uint8_t* rows = heif_image_get_plane(image, heif_channel_interleaved, &row_bytes);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const Pixel p = picture.at(x, y);
      uint8_t* to = rows + ptrdiff_t{y} * row_bytes + ptrdiff_t{x} * 4;
      to[0] = p.r, to[1] = p.g, to[2] = p.b, to[3] = p.a;
    }
  }
  if (!icc.empty()) heif_image_set_raw_color_profile(image, "prof", icc.data(), icc.size());
  heif_encoding_options* options = heif_encoding_options_alloc();
  options->image_orientation = orientation;
  heif_image_handle* handle = nullptr;
  heif_context_encode_image(context, image, encoder, options, &handle);
  heif_encoding_options_free(options);
  Bytes bytes;
  heif_writer writer = {1, OnWrite};
  heif_context_write(context, &writer, &bytes);
  heif_image_handle_release(handle);
  heif_image_release(image);
  heif_encoder_release(encoder);
  heif_context_free(context);
  return bytes;
}

/// A grey ramp of ten bits, 1024 pixels wide: column x has level x. Empty as above.
Bytes EncodeRamp() {
  constexpr int kTenBitWidth = 1024, kTenBitHeight = 16, kBits = 10;
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  if (heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code !=
      heif_error_Ok) {
    heif_context_free(context);
    return {};
  }
  heif_encoder_set_lossy_quality(encoder, 100);
  heif_image* image = nullptr;
  heif_image_create(kTenBitWidth, kTenBitHeight, heif_colorspace_RGB,
                    heif_chroma_interleaved_RRGGBB_LE, &image);
  heif_image_add_plane(image, heif_channel_interleaved, kTenBitWidth, kTenBitHeight, kBits);
  int row_bytes = 0;
  uint8_t* rows = heif_image_get_plane(image, heif_channel_interleaved, &row_bytes);
  for (int y = 0; y < kTenBitHeight; ++y) {
    for (int i = 0; i < kTenBitWidth * 3; ++i) {
      uint8_t* to = rows + ptrdiff_t{y} * row_bytes + ptrdiff_t{i} * 2;
      to[0] = static_cast<uint8_t>(i / 3), to[1] = static_cast<uint8_t>(i / 3 >> 8);
    }
  }
  heif_image_handle* handle = nullptr;
  heif_context_encode_image(context, image, encoder, nullptr, &handle);
  Bytes bytes;
  heif_writer writer = {1, OnWrite};
  heif_context_write(context, &writer, &bytes);
  heif_image_handle_release(handle);
  heif_image_release(image);
  heif_encoder_release(encoder);
  heif_context_free(context);
  return bytes;
}

class Heif : public StillTest, public testing::WithParamInterface<heif_compression_format> {
 protected:
  /// A format that was not tried must not look like one that works: a test skips only where the
  /// environment says that it may.
#define ENCODE_OR_SKIP(bytes, ...)                                                     \
  const Bytes bytes = EncodeHeif(__VA_ARGS__);                                         \
  if (bytes.empty() && std::getenv(kMaySkip) != nullptr) GTEST_SKIP() << "no encoder"; \
  ASSERT_FALSE(bytes.empty()) << "libheif has no encoder of this kind; " << kMaySkip   \
                              << "=1 skips these tests"
};

INSTANTIATE_TEST_SUITE_P(Formats, Heif,
                         testing::Values(heif_compression_HEVC, heif_compression_AV1),
                         [](const auto& tested) {
                           return tested.param == heif_compression_AV1 ? "Avif" : "Heic";
                         });

TEST_P(Heif, ColoursComeOutNearly) {
  ENCODE_OR_SKIP(bytes, GradientPicture(64, 48), GetParam());
  const Loaded loaded = Load(bytes, "picture.heic");
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_LE(LargestDifference(loaded.picture, GradientPicture(64, 48)), 10);
}

TEST_P(Heif, AlphaIsDrawnOverBlack) {
  ENCODE_OR_SKIP(bytes, {64, 64, std::vector<Pixel>(size_t{64} * 64, {50, 100, 200, 51})},
                 GetParam());
  const Loaded loaded = Load(bytes, "picture.heic");
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(32, 32), Rgb(40, 20, 10), 4));
}

TEST_P(Heif, ItsProfileIsHonoured) {
  ENCODE_OR_SKIP(bytes, {64, 64, std::vector<Pixel>(size_t{64} * 64, Rgb(255, 0, 0))}, GetParam(),
                 SwappedProfile());
  const Loaded loaded = Load(bytes, "picture.heic");
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(32, 32), Rgb(0, 255, 0), 6));
}

TEST_F(StillTest, HighDynamicRangeOfAnAvifIsAFlawUnlessAProfileSaysOtherwise) {
  // Behind the name come numbers of two bytes: primaries, transfer, matrix.
  const std::string name = "colrnclx";
  const auto flaw = [&](Bytes bytes, uint8_t transfer) -> std::string {
    const auto at = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
    if (at != bytes.end()) at[static_cast<ptrdiff_t>(name.size()) + 3] = transfer;
    const Opened opened = OpenStill(Write("picture.heic", bytes));
    if (opened.error != noErr) return opened.text;
    const std::string found = StillImporterFlaw(opened.importer);
    CloseComponent(opened.importer);
    return found;
  };
  ENCODE_OR_SKIP(plain, GradientPicture(64, 48), heif_compression_AV1);
  ASSERT_NE(std::search(plain.begin(), plain.end(), name.begin(), name.end()), plain.end());
  EXPECT_EQ(flaw(plain, 13), "") << "sRGB";
  EXPECT_EQ(flaw(plain, 1), "") << "BT.709";
  EXPECT_EQ(flaw(plain, 16),
            "it has high dynamic range (PQ) and comes out pale unless it is converted first");
  EXPECT_EQ(flaw(plain, 18),
            "it has high dynamic range (HLG) and comes out pale unless it is converted first");
  const Bytes profiled =
      EncodeHeif(GradientPicture(64, 48), heif_compression_AV1, SwappedProfile());
  EXPECT_EQ(flaw(profiled, 16), "");
}

TEST_P(Heif, RotationOfTheFileIsApplied) {
  ENCODE_OR_SKIP(bytes, GradientPicture(64, 48), GetParam(), {}, heif_orientation_rotate_90_cw);
  const Loaded loaded = Load(bytes, "picture.heic");
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  ASSERT_EQ(loaded.picture.width, 48);
  ASSERT_EQ(loaded.picture.height, 64);
  // The stored bottom-left corner comes to the top-left one.
  EXPECT_TRUE(IsNear(loaded.picture.at(0, 0), Gradient(0, 47), 10));
  EXPECT_TRUE(IsNear(loaded.picture.at(47, 63), Gradient(63, 0), 10));
}

// libheif's encoder of AV1 fails an assertion of its own with ten bits.
TEST_F(StillTest, TenBitsOfAHeicAreReadAsSuch) {
  const Bytes bytes = EncodeRamp();
  if (bytes.empty() && std::getenv(kMaySkip) != nullptr) GTEST_SKIP() << "no encoder";
  ASSERT_FALSE(bytes.empty());
  DeepReader reader(Write("ramp.heic", bytes));
  EXPECT_EQ(reader.info().bits, 10);
  ASSERT_EQ(reader.info().width, 1024u);
  std::vector<uint16_t> samples(size_t{1024} * 16 * 4);
  EXPECT_FALSE(reader.Read(samples.data(), 1024 * 8));
  std::set<uint16_t> levels;
  for (size_t x = 0; x < 1024; ++x) {
    const uint16_t sample = samples[(8 * 1024 + x) * 4 + 1];
    EXPECT_NEAR(sample, static_cast<double>(x) * 65535 / 1023, 65535 / 1023 * 6) << x;
    levels.insert(sample);
  }
  EXPECT_GE(levels.size(), 600u) << "of eight bits there would be 256";
}

TEST_P(Heif, TruncatedIsAnError) {
  ENCODE_OR_SKIP(whole, GradientPicture(64, 48), GetParam());
  for (const size_t left : {whole.size() / 4, whole.size() / 2, whole.size() - 30}) {
    const Loaded loaded =
        Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(left)), "cut.heic");
    EXPECT_EQ(loaded.error, codecBadDataErr) << left;
    EXPECT_EQ(loaded.text.rfind("cut.heic: damaged or truncated HEIF (", 0), 0u) << loaded.text;
  }
}

TEST(HeifLibrary, MissingItSaysWhatToInstall) {
  try {
    OpenHeifLibrary("libheif-that-is-not-there.so.1");
    FAIL() << "a library that does not exist was opened";
  } catch (const StillError& error) {
    EXPECT_EQ(error.code, noCodecErr);
    EXPECT_EQ(error.reason,
              "a HEIF or AVIF picture, and libheif-that-is-not-there.so.1 that reads those is not "
              "installed");
  }
}

TEST(HeifLibrary, AnotherLibraryOfThatNameIsTooOld) {
  try {
    OpenHeifLibrary("libm.so.6");
    FAIL() << "a library without its functions was taken";
  } catch (const StillError& error) {
    EXPECT_EQ(error.code, noCodecErr);
    EXPECT_NE(error.reason.find("too old"), std::string::npos) << error.reason;
  }
}

TEST_F(StillTest, AFilmIsNoHeifPicture) {
  Bytes film = {0, 0, 0, 24, 'f', 't', 'y', 'p', 'i', 's', 'o', 'm',
                0, 0, 2, 0,  'i', 's', 'o', 'm', 'm', 'p', '4', '1'};
  Append(film, Bytes(176));
  EXPECT_EQ(Load(film).error, noCodecErr);
}

}  // namespace
}  // namespace kelto::stills
