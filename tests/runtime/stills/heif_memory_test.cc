// What decoding HEIF and AVIF takes, against what the importer says beforehand.
#include <gtest/gtest.h>
#include <libheif/heif.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <ostream>

#include "runtime/stills/deep_reader.h"
#include "tests/runtime/stills/still_test.h"
#include "tests/support/peak_memory.h"
#include "tests/support/process.h"

namespace kelto::stills {
namespace {

struct Form {
  const char* name;
  heif_compression_format format;
  int bits;  ///< a channel
  bool alpha;
  heif_orientation orientation;
};

void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

constexpr int kWidth = 3072, kHeight = 2048;

/// Encodes a picture of this form into `path`; false when the library has no such encoder.
bool Encode(const Form& form, int width, int height, const std::string& path) {
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  if (heif_context_get_encoder_for_format(context, form.format, &encoder).code != heif_error_Ok) {
    return false;
  }
  heif_encoder_set_lossy_quality(encoder, 80);
  heif_encoder_set_parameter_string(encoder, "chroma", "444");
  if (form.format == heif_compression_AV1) {
    heif_encoder_set_parameter_integer(encoder, "speed", 9);
  } else {
    heif_encoder_set_parameter_string(encoder, "preset", "ultrafast");
  }
  const bool words = form.bits > 8;
  heif_image* image = nullptr;
  heif_image_create(
      width, height, heif_colorspace_RGB,
      words ? (form.alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE)
            : (form.alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB),
      &image);
  heif_image_add_plane(image, heif_channel_interleaved, width, height, form.bits);
  int row_bytes = 0;
  uint8_t* const rows = heif_image_get_plane(image, heif_channel_interleaved, &row_bytes);
  const int channels = form.alpha ? 4 : 3;
  for (int y = 0; y < height; ++y) {
    for (int i = 0; i < width * channels; ++i) {
      const int value = (i / channels + y * (i % channels)) & 255;
      uint8_t* to = rows + ptrdiff_t{y} * row_bytes;
      if (words) {
        to[2 * i] = static_cast<uint8_t>(value << 2);
        to[2 * i + 1] = static_cast<uint8_t>(value >> 6);
      } else {
        to[i] = static_cast<uint8_t>(value);
      }
    }
  }
  heif_encoding_options* options = heif_encoding_options_alloc();
  options->image_orientation = form.orientation;
  heif_image_handle* handle = nullptr;
  return heif_context_encode_image(context, image, encoder, options, &handle).code ==
             heif_error_Ok &&
         heif_context_write_to_file(context, path.c_str()).code == heif_error_Ok;
}

class HeifMemory : public StillTest, public testing::WithParamInterface<Form> {
 protected:
  /// In a process of its own: memory that encoding leaves free would be used for decoding.
  bool EncodeApart(int width, int height, const std::string& path) const {
    const pid_t process = test::Fork();
    if (process == 0) _exit(Encode(GetParam(), width, height, path) ? 0 : 1);
    int status = 0;
    test::WaitFor(process, &status);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
};

INSTANTIATE_TEST_SUITE_P(
    Forms, HeifMemory,
    testing::Values(Form{"Heic", heif_compression_HEVC, 8, false, heif_orientation_normal},
                    Form{"HeicOfTenBitsTurned", heif_compression_HEVC, 10, false,
                         heif_orientation_rotate_90_cw},
                    Form{"AvifWithAlpha", heif_compression_AV1, 8, true, heif_orientation_normal}),
    [](const auto& tested) { return tested.param.name; });

TEST_P(HeifMemory, StaysWithinWhatIsSaidBefore) {
  const bool encodes =
      EncodeApart(kWidth, kHeight, Path("large.heic")) && EncodeApart(64, 64, Path("small.heic"));
  if (!encodes && std::getenv("KELTO_SKIP_HEIF") != nullptr) GTEST_SKIP() << "no encoder";
  ASSERT_TRUE(encodes)
      << "libheif has no encoder of this kind; KELTO_SKIP_HEIF=1 skips these tests";
  // So that the codecs themselves are in memory.
  ASSERT_EQ(LoadStill(Path("small.heic")).error, noErr);
  uint64_t said = 0;
  {
    const Opened opened = OpenStill(Path("large.heic"));
    ASSERT_EQ(opened.error, noErr) << opened.text;
    said = StillImporterScratchBytes(opened.importer);
    CloseComponent(opened.importer);
  }
  constexpr int64_t kPixels = int64_t{kWidth} * kHeight, kSlackMiB = 4;
  const test::PeakMemory peak;
  ASSERT_EQ(LoadStill(Path("large.heic")).error, noErr);
  EXPECT_LE(peak.MiB(), ((4 * kPixels + static_cast<int64_t>(said)) >> 20) + kSlackMiB)
      << "bytes a pixel: " << static_cast<double>(peak.MiB() << 20) / kPixels;
}

TEST_P(HeifMemory, ReadingAllBitsStaysWithinItToo) {
  const bool encodes =
      EncodeApart(kWidth, kHeight, Path("large.heic")) && EncodeApart(64, 64, Path("small.heic"));
  if (!encodes && std::getenv("KELTO_SKIP_HEIF") != nullptr) GTEST_SKIP() << "no encoder";
  ASSERT_TRUE(encodes)
      << "libheif has no encoder of this kind; KELTO_SKIP_HEIF=1 skips these tests";
  const auto read = [](const std::string& path) {
    DeepReader reader(path);
    const size_t row = reader.info().width * reader.info().PixelBytes();
    const auto rows = std::make_unique_for_overwrite<uint8_t[]>(row * reader.info().height);
    EXPECT_EQ(reader.Read(rows.get(), static_cast<ptrdiff_t>(row)), reader.info().alpha);
    return reader.info();
  };
  // So that the codecs themselves are in memory.
  EXPECT_EQ(read(Path("small.heic")).bits, GetParam().bits);
  constexpr int64_t kPixels = int64_t{kWidth} * kHeight, kSlackMiB = 4;
  const test::PeakMemory peak;
  const uint64_t said = read(Path("large.heic")).scratch;
  EXPECT_LE(peak.MiB(), ((8 * kPixels + static_cast<int64_t>(said)) >> 20) + kSlackMiB)
      << "bytes a pixel: " << static_cast<double>(peak.MiB() << 20) / kPixels;
}

}  // namespace
}  // namespace kelto::stills
