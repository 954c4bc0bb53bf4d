// A strip of a deep picture's columns as floats. Compiled for each target by the source that
// includes it behind Highway's foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "deep/light-inl.h"
#include "deep/plan.h"

// Once for each target.
#if defined(KELTO_DEEP_STRIP_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_DEEP_STRIP_INL_H_
#undef KELTO_DEEP_STRIP_INL_H_
#else
#define KELTO_DEEP_STRIP_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

/// Vectors that are summed at a time, for two rows: the sums stay in registers.
constexpr size_t kSumVectors = HWY_MAX_BYTES == 64 ? 8 : 4;
constexpr size_t kSumFloats = kSumVectors * kLanes;

/// Rows of the picture that are taken at a time, and how much of each. A block's part of a strip
/// stays in the first-level cache.
constexpr int32_t kBlockRows = 16;
constexpr size_t kStripFloats = 24 * kLanes;
static_assert(kStripFloats % kSumFloats == 0);

/// Floats aligned for vectors, not cleared.
class FloatBuffer {
 public:
  explicit FloatBuffer(size_t count = 0)
      : memory_(std::make_unique_for_overwrite<float[]>(count + kAlignment / sizeof(float))),
        count_(count) {
    void* at = memory_.get();
    size_t space = count * sizeof(float) + kAlignment;
    aligned_ = static_cast<float*>(std::align(kAlignment, count * sizeof(float), at, space));
  }
  float* get() const { return aligned_; }
  size_t count() const { return count_; }

 private:
  static constexpr size_t kAlignment = 64;
  std::unique_ptr<float[]> memory_;
  float* aligned_;
  size_t count_;
};

/// Rows of the picture that will be needed soon, on their way to the second-level cache. Asked for
/// little by little while others are summed: all at a time they would wait for each other.
class RowsAhead {
 public:
  /// `count` pixels from `pixel` on of some rows.
  void Begin(const DeepSource& picture, int32_t pixel, int32_t count, Range rows) {
    const size_t pixelBytes = PixelBytes(picture.sample);
    next_ = picture.Row<uint8_t>(rows.first) + pixelBytes * static_cast<size_t>(pixel);
    rowBytes_ = picture.rowBytes;
    lines_ = (pixelBytes * static_cast<size_t>(count) + kLine - 1) / kLine;
    line_ = 0;
    rows_ = rows.end - rows.first;
  }

  size_t Lines() const { return lines_ * static_cast<size_t>(rows_); }

  HWY_INLINE void Fetch(size_t lines) {
    if (rows_ == 0) return;
    const size_t end = std::min(line_ + lines, lines_);
    const uint8_t* const row = next_;
    for (size_t line = line_; line < end; ++line) __builtin_prefetch(row + kLine * line, 0, 2);
    line_ = end;
    if (end < lines_) return;
    line_ = 0;
    next_ += rowBytes_;
    --rows_;
  }

 private:
  static constexpr size_t kLine = 64;
  const uint8_t* next_ = nullptr;
  ptrdiff_t rowBytes_ = 0;
  size_t lines_ = 0, line_ = 0;
  int32_t rows_ = 0;
};

/// A strip of a block of the picture's rows.
class DeepStrip {
 public:
  explicit DeepStrip(const DeepPlan& plan)
      : plan_(plan), samples_(static_cast<size_t>(kBlockRows) * kStripFloats) {}

  /// Strips begin at column `base` of the picture.
  void Begin(int32_t base) { base_ = base; }

  /// Reads the strip that begins `pixel` columns past the base of at most kBlockRows rows.
  void Read(size_t pixel, Range rows) {
    first_ = base_ + static_cast<int32_t>(pixel);
    rows_ = rows;
    if (plan_.picture.sample == DeepSample::kUnsigned16) {
      for (int32_t y = rows.first; y < rows.end; ++y) ReadRow<uint16_t>(y);
    } else {
      for (int32_t y = rows.first; y < rows.end; ++y) ReadRow<float>(y);
    }
  }

  const float* Row(int32_t y) const {
    return samples_.get() + static_cast<size_t>(y - rows_.first) * kStripFloats;
  }

 private:
  template <typename Sample>
  HWY_INLINE void ReadRow(int32_t y) {
    const Sample* const from = plan_.picture.Row<Sample>(y) + ptrdiff_t{4} * first_;
    float* const to = samples_.get() + static_cast<size_t>(y - rows_.first) * kStripFloats;
    const auto inside = static_cast<size_t>(plan_.picture.width - first_) * 4;
    if (inside >= kStripFloats) {
      Convert(from, to);
    } else {
      // The picture's last columns: zeros follow, which are multiplied by nothing.
      Sample samples[kStripFloats] = {};
      std::memcpy(samples, from, inside * sizeof(Sample));
      Convert(samples, to);
    }
    if (plan_.linearLight) Light(to);
  }

  static HWY_INLINE void Convert(const uint16_t* from, float* to) {
    const Floats floats;
    const hn::Rebind<uint16_t, Floats> halves;
    const hn::RebindToSigned<Floats> words;
    for (size_t i = 0; i < kStripFloats; i += kLanes) {
      const auto value = hn::PromoteTo(words, hn::LoadU(halves, from + i));
      hn::Store(hn::ConvertTo(floats, value), floats, to + i);
    }
  }

  static HWY_INLINE void Convert(const float* from, float* to) {
    const Floats floats;
    for (size_t i = 0; i < kStripFloats; i += kLanes) {
      hn::Store(hn::LoadU(floats, from + i), floats, to + i);
    }
  }

  HWY_NOINLINE void Light(float* row) const {
    const Floats floats;
    const auto scale = hn::Set(floats, 1.0f / FullScale(plan_.picture.sample));
    for (size_t i = 0; i < kStripFloats; i += kLanes) {
      const auto pixels = hn::Mul(hn::Load(floats, row + i), scale);
      hn::Store(plan_.picture.hasAlpha ? DecodeLightOf(pixels) : DecodeOpaqueLightOf(pixels),
                floats, row + i);
    }
  }

  const DeepPlan& plan_;
  int32_t base_ = 0;
  int32_t first_ = 0;
  Range rows_;
  FloatBuffer samples_;
};

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
