// A strip of a deep picture's columns as floats. Compiled for each target by the source that
// includes it behind Highway's foreach_target.h.
#include <hwy/cache_control.h>
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

#if HWY_MAX_BYTES == 64
constexpr size_t kStripVectors = 6;  // two rows' sums and the samples stay in 32 registers
#else
constexpr size_t kStripVectors = 4;
#endif
constexpr size_t kStripFloats = kStripVectors * kLanes;
constexpr size_t kStripPixels = kStripFloats / 4;

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

/// The rows of one strip after the other, read as they are needed.
class DeepStrip {
 public:
  /// Strips begin at column `base` of the picture.
  DeepStrip(const DeepPlan& plan, int32_t base) : plan_(plan), base_(base) {}

  /// Starts the strip that begins `pixel` columns past the base, of which `rows` will be needed.
  void Begin(size_t pixel, Range rows) {
    first_ = base_ + static_cast<int32_t>(pixel);
    rows_ = rows;
    next_ = rows.first;
    const size_t needed = static_cast<size_t>(rows.end - rows.first) * kStripFloats;
    if (samples_.count() < needed) samples_ = FloatBuffer(needed);
  }

  /// Row `y`, which has been read.
  const float* Row(int32_t y) const {
    return samples_.get() + static_cast<size_t>(y - rows_.first) * kStripFloats;
  }

  void ReadUpTo(int32_t end) {
    if (next_ >= end) return;
    const int32_t inside = plan_.picture.width - first_;
    const bool whole = inside >= static_cast<int32_t>(kStripPixels);
    if (plan_.picture.sample == DeepSample::Unsigned16) {
      for (; next_ < end; ++next_) Read<uint16_t>(whole, inside);
    } else {
      for (; next_ < end; ++next_) Read<float>(whole, inside);
    }
  }

 private:
  static constexpr size_t kLine = 64;

  template <typename Sample>
  HWY_INLINE void Read(bool whole, int32_t inside) {
    const Sample* const from = plan_.picture.Row<Sample>(next_) + ptrdiff_t{4} * first_;
    float* const to = samples_.get() + static_cast<size_t>(next_ - rows_.first) * kStripFloats;
    if (whole) {
      constexpr size_t kBytes = kStripFloats * sizeof(Sample);
      for (size_t byte = 0; byte < kBytes; byte += kLine) {
        hwy::Prefetch(reinterpret_cast<const uint8_t*>(from) + kBytes + byte);
      }
      Convert(from, to);
    } else {
      // The picture's last columns: zeros follow, which are multiplied by nothing.
      Sample samples[kStripFloats] = {};
      std::memcpy(samples, from, 4 * static_cast<size_t>(inside) * sizeof(Sample));
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
      hn::Store(DecodeLightOf(WithAlpha(pixels, plan_.picture.hasAlpha)), floats, row + i);
    }
  }

  const DeepPlan& plan_;
  int32_t base_;
  int32_t first_ = 0;
  Range rows_;
  int32_t next_ = 0;
  FloatBuffer samples_;
};

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
