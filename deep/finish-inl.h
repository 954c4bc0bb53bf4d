// Filtered rows on their way into the target: over what lies behind, rounded and clamped. Compiled
// for each target by the source that includes it behind Highway's foreach_target.h.
#include <hwy/highway.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "deep/light-inl.h"
#include "deep/plan.h"
#include "deep/strip-inl.h"

// Once for each target.
#if defined(KELTO_DEEP_FINISH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_DEEP_FINISH_INL_H_
#undef KELTO_DEEP_FINISH_INL_H_
#else
#define KELTO_DEEP_FINISH_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

class DeepFinish {
 public:
  explicit DeepFinish(const DeepPlan& plan)
      : plan_(plan),
        clamped_(plan.target.sample == DeepSample::kUnsigned16),
        columns_(static_cast<size_t>(plan.columns.end - plan.columns.first)),
        wholeFirst_(0),
        wholeEnd_(columns_),
        behind_(columns_ * 4 + kLanes),
        coverage_(columns_ * 4 + kLanes) {
    const std::vector<float>& coverage = plan.columnCoverage;
    while (wholeFirst_ < wholeEnd_ && coverage[wholeFirst_] < 1.0f) ++wholeFirst_;
    while (wholeFirst_ < wholeEnd_ && coverage[wholeEnd_ - 1] < 1.0f) --wholeEnd_;
    for (size_t i = 0; i < 4 * columns_; ++i) coverage_.get()[i] = coverage[i / 4];
    if (plan.backdrop.pixels == nullptr) FillBehindWith(0, columns_, Used(plan.background));
  }

  /// Draws `count` columns from `column` on of row `row`, counted among those that the picture
  /// touches, from their filtered pixels, followed by as many floats as make the last vector whole.
  void Row(size_t row, size_t column, size_t count, const float* filtered) {
    // Behind opaque pixels that are covered whole nothing is looked at.
    const bool opaque = !plan_.picture.hasAlpha;
    const bool whole = opaque && !plan_.linearLight && plan_.rowCoverage[row] >= 1.0f;
    const size_t end = column + count;
    const size_t plainFirst = whole ? std::clamp(wholeFirst_, column, end) : end;
    const size_t plainEnd = whole ? std::clamp(wholeEnd_, plainFirst, end) : end;
    const Part part = {row, column, filtered};
    Draw<false>(part, column, plainFirst);
    Draw<true>(part, plainFirst, plainEnd);
    Draw<false>(part, plainEnd, end);
  }

 private:
  DeepPixel Used(const DeepPixel& pixel) const {
    return plan_.linearLight ? DecodeLight(pixel) : pixel;
  }

  void FillBehindWith(size_t first, size_t end, const DeepPixel& pixel) {
    for (size_t i = 4 * first; i < 4 * end; ++i) {
      behind_.get()[i] = static_cast<float>(pixel[i % 4]);
    }
  }

  void ReadBackdrop(size_t row, size_t first, size_t end) {
    const int32_t y = plan_.rows.first + static_cast<int32_t>(row);
    const DeepSource& from = plan_.backdrop;
    if (from.sample == DeepSample::kUnsigned16 && !plan_.linearLight && y < from.height) {
      // A video's frame, read by the loop that compilers know to make vectors of.
      const ptrdiff_t left = plan_.columns.first;
      const auto reach = static_cast<size_t>(std::max<ptrdiff_t>(from.width - left, 0));
      const size_t inside = std::clamp(reach, first, end);
      const uint16_t* const samples = from.Row<uint16_t>(y) + 4 * left;
      float* const behind = behind_.get();
      for (size_t i = 4 * first; i < 4 * inside; ++i) {
        behind[i] = static_cast<float>(samples[i]) * (1.0f / 65535.0f);
      }
      if (!from.hasAlpha) {
        for (size_t i = first; i < inside; ++i) behind[4 * i + 3] = 1.0f;
      }
      first = inside;
    }
    for (size_t i = first; i < end; ++i) {
      FillBehindWith(i, i + 1,
                     Used(plan_.Behind(plan_.columns.first + static_cast<int32_t>(i), y)));
    }
  }

  /// The filtered pixels of a row from a column on.
  struct Part {
    size_t row, column;
    const float* filtered;
  };

  /// Draws columns `first` to `end`, as they are where `kPlain`.
  template <bool kPlain>
  HWY_NOINLINE void Draw(const Part& part, size_t first, size_t end) {
    if (!kPlain && plan_.backdrop.pixels != nullptr) ReadBackdrop(part.row, first, end);
    const int32_t y = plan_.rows.first + static_cast<int32_t>(part.row);
    const size_t pixelBytes = PixelBytes(plan_.target.sample);
    uint8_t* const to =
        plan_.target.Row<uint8_t>(y) + pixelBytes * static_cast<size_t>(plan_.columns.first);
    for (size_t x = first; x < end; x += kPixels) {
      const size_t count = std::min(kPixels, end - x);
      const auto filtered = hn::LoadU(Floats(), part.filtered + 4 * (x - part.column));
      const auto pixels = Finished<kPlain>(part.row, filtered, x);
      if (count == kPixels) {
        Write(pixels, to + pixelBytes * x);
      } else {
        alignas(64) uint8_t last[16 * kPixels];
        Write(pixels, last);
        std::memcpy(to + pixelBytes * x, last, pixelBytes * count);
      }
    }
  }

  template <bool kPlain>
  HWY_INLINE DeepVector Finished(size_t row, DeepVector filtered, size_t x) const {
    const Floats floats;
    auto pixels = WithAlpha(filtered, plan_.picture.hasAlpha);
    if constexpr (kPlain) return pixels;
    pixels = Held(pixels);
    const auto coverage = hn::Mul(hn::LoadU(floats, coverage_.get() + 4 * x),
                                  hn::Set(floats, plan_.rowCoverage[row]));
    const auto behind = hn::LoadU(floats, behind_.get() + 4 * x);
    const auto through = hn::NegMulAdd(coverage, AlphaOf(pixels), hn::Set(floats, 1.0f));
    const auto mixed = hn::MulAdd(coverage, pixels, hn::Mul(through, behind));
    return plan_.linearLight ? EncodeLightOf(mixed) : mixed;
  }

  /// As HeldWithinAlpha.
  HWY_INLINE DeepVector Held(DeepVector pixels) const {
    const Floats floats;
    const auto zero = hn::Zero(floats), one = hn::Set(floats, 1.0f);
    const auto alpha = AlphaOf(pixels);
    const auto below = hn::Min(alpha, zero);
    const auto raised =
        hn::IfThenElse(hn::Lt(pixels, zero), hn::Min(hn::Sub(pixels, below), zero), pixels);
    // Rarely: a division takes longer than all the rest.
    const auto above = hn::Gt(alpha, hn::Set(floats, 1.0f + 0x1p-22f));
    const auto held = hn::AllFalse(floats, above) ? raised : hn::Div(raised, hn::Max(alpha, one));
    const auto heldAlpha = hn::Min(hn::Max(alpha, zero), one);
    if (clamped_) return hn::Min(hn::Max(held, zero), heldAlpha);
    return hn::IfThenElse(AlphaLanes(), heldAlpha, held);
  }

  HWY_INLINE void Write(DeepVector pixels, uint8_t* to) const {
    const Floats floats;
    const auto written = WithAlpha(pixels, plan_.target.hasAlpha);
    if (!clamped_) {
      hn::StoreU(written, floats, reinterpret_cast<float*>(to));
      return;
    }
    const auto zero = hn::Zero(floats), one = hn::Set(floats, 1.0f);
    const auto alpha = hn::Min(AlphaOf(written), one);
    const auto above = hn::IfThenElseZero(hn::Gt(written, zero), written);  // numbers only
    const auto within = hn::IfThenElseZero(hn::Gt(alpha, zero), hn::Min(above, alpha));
    const auto level = hn::NearestInt(hn::Mul(within, hn::Set(floats, 65535.0f)));
    const hn::Rebind<uint16_t, Floats> halves;
    hn::StoreU(hn::DemoteTo(halves, level), halves, reinterpret_cast<uint16_t*>(to));
  }

  const DeepPlan& plan_;
  bool clamped_;
  size_t columns_, wholeFirst_, wholeEnd_;
  FloatBuffer behind_, coverage_;  ///< four floats for each column
};

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
