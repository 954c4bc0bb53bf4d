// Small files that would become large, read with all their bits: the limits are those of eight
// bits, over what the pixels take there.
#include <gtest/gtest.h>

#include <memory>

#include "runtime/stills/deep_reader.h"
#include "tests/runtime/stills/still_test.h"
#include "tests/support/hostile_files.h"
#include "tests/support/peak_memory.h"

namespace kelto::stills {
namespace {

class DeepBomb : public StillTest {
 protected:
  /// Why the file is refused when it is opened.
  std::string Refusal(const std::string& path) const {
    try {
      DeepReader reader(path);
    } catch (const StillError& error) {
      return error.reason;
    }
    return "not refused";
  }

  void ExpectNoMoreThanCounted(const std::string& path) const {
    constexpr int64_t kUncountedMiB = 12;  // a few rows, tables of codecs
    DeepReader reader(path);
    const size_t row = (reader.info().width * reader.info().PixelBytes() + 15) / 16 * 16;
    const size_t bytes = row * reader.info().height;
    const test::PeakMemory peak;
    const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(bytes);
    reader.Read(pixels.get(), static_cast<ptrdiff_t>(row));
    EXPECT_LE(peak.MiB(),
              static_cast<int64_t>((bytes + reader.info().scratch) >> 20) + kUncountedMiB)
        << path;
  }
};

TEST_F(DeepBomb, PicturesAreRefusedByWhatTheirPixelsTakeWithAllBits) {
  const std::pair<std::string, Bytes> files[] = {
      {"a.png", test::FlatPng(20000)},
      {"b.jpg", test::FlatJpeg(20000, false)},
      {"c.tif", test::SharedStripsTiff(20000, 2, 10, 200000)},
      {"d.tif", test::SharedStripsTiff(20000, 8, 10, 200000)}};
  for (const auto& [name, bytes] : files) {
    const std::string path = Write(name, bytes);
    const Opened opened = OpenStill(path);
    EXPECT_EQ(opened.error, noErr) << name << ": " << opened.text;
    CloseComponent(opened.importer);
    const test::PeakMemory peak;
    EXPECT_EQ(Refusal(path), "20000x20000 pixels take 3051 MiB; the limit is 2047 MiB") << name;
    EXPECT_LE(peak.MiB(), 8) << name;
  }
}

TEST_F(DeepBomb, ReadingTakesNoMoreThanIsCounted) {
  constexpr uint32_t kSide = 2000;
  ExpectNoMoreThanCounted(Write("flat.png", test::FlatPng(kSide)));
  ExpectNoMoreThanCounted(Write("baseline.jpg", test::FlatJpeg(kSide, false)));
  ExpectNoMoreThanCounted(Write("progressive.jpg", test::FlatJpeg(kSide, true)));
  ExpectNoMoreThanCounted(Write("strips.tif", test::SharedStripsTiff(kSide, 2, 10)));
  ExpectNoMoreThanCounted(Write("lab.tif", test::SharedStripsTiff(kSide, 8, kSide)));
}

}  // namespace
}  // namespace kelto::stills
