// Vectors of deep pixels: alpha, and the transfer function of sRGB. Compiled for each target by the
// source that includes it behind Highway's foreach_target.h.
#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

#include <cstddef>

// Once for each target.
#if defined(KELTO_DEEP_LIGHT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KELTO_DEEP_LIGHT_INL_H_
#undef KELTO_DEEP_LIGHT_INL_H_
#else
#define KELTO_DEEP_LIGHT_INL_H_
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using FourFloats = hn::Full128<float>;
using DeepVector = hn::Vec<Floats>;

constexpr size_t kLanes = HWY_MAX_BYTES / 4;  // fixed-size vectors only
constexpr size_t kPixels = kLanes / 4;        ///< in a vector, red, green, blue, alpha

/// The lanes that hold alpha.
HWY_INLINE hn::Mask<Floats> AlphaLanes() {
  const hn::Repartition<int32_t, Floats> words;
  alignas(16) static constexpr int32_t kAlphaOnly[4] = {0, 0, 0, -1};
  return hn::MaskFromVec(hn::BitCast(Floats(), hn::LoadDup128(words, kAlphaOnly)));
}

/// Each pixel's alpha in all of its lanes.
HWY_INLINE DeepVector AlphaOf(DeepVector pixels) { return hn::Broadcast<3>(pixels); }

/// Opaque pixels where alpha is of no meaning.
HWY_INLINE DeepVector WithAlpha(DeepVector pixels, bool hasAlpha) {
  return hasAlpha ? pixels : hn::IfThenElse(AlphaLanes(), hn::Set(Floats(), 1.0f), pixels);
}

/// a to the power of `exponent`, for a above 0.
HWY_INLINE DeepVector PowerOf(DeepVector a, float exponent) {
  const Floats floats;
  return hn::Exp(floats, hn::Mul(hn::Log(floats, a), hn::Set(floats, exponent)));
}

/// What a curve for values of 0 and above makes of colours divided by alpha.
template <typename Curve>
HWY_INLINE DeepVector OnStraightLanes(DeepVector pixels, Curve curve) {
  const Floats floats;
  const auto one = hn::Set(floats, 1.0f);
  const auto alpha = AlphaOf(pixels);
  const auto divisor = hn::IfThenElse(hn::Gt(alpha, hn::Zero(floats)), alpha, one);
  const auto straight = hn::Div(pixels, divisor);
  const auto result = hn::Mul(hn::CopySign(curve(hn::Abs(straight)), straight), divisor);
  return hn::IfThenElse(AlphaLanes(), pixels, result);
}

/// Of values of 0 and above.
HWY_INLINE DeepVector DecodeCurve(DeepVector value) {
  const Floats floats;
  const auto base =
      hn::MulAdd(value, hn::Set(floats, 1 / 1.055f), hn::Set(floats, 0.055f / 1.055f));
  return hn::IfThenElse(hn::Le(value, hn::Set(floats, 0.04045f)),
                        hn::Mul(value, hn::Set(floats, 1 / 12.92f)), PowerOf(base, 2.4f));
}

HWY_INLINE DeepVector DecodeLightOf(DeepVector pixels) {
  return OnStraightLanes(pixels, [](DeepVector value) { return DecodeCurve(value); });
}

/// The same of opaque pixels, of which no alpha is asked for.
HWY_INLINE DeepVector DecodeOpaqueLightOf(DeepVector pixels) {
  return hn::CopySign(DecodeCurve(hn::Abs(pixels)), pixels);
}

HWY_INLINE DeepVector EncodeLightOf(DeepVector pixels) {
  return OnStraightLanes(pixels, [](DeepVector value) {
    const Floats floats;
    const auto dark = hn::Set(floats, 0.0031308f);
    const auto power = PowerOf(hn::Max(value, dark), 1 / 2.4f);
    return hn::IfThenElse(hn::Le(value, dark), hn::Mul(value, hn::Set(floats, 12.92f)),
                          hn::MulSub(power, hn::Set(floats, 1.055f), hn::Set(floats, 0.055f)));
  });
}

}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();
#endif

#endif  // once for each target
