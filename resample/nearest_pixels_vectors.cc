#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "resample/nearest_pixels_vectors.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "resample/nearest_pixels.h"
#include "targets/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace kelto {
namespace HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

int64_t Nearest(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                const TakenBytes& taken, uint8_t* to) {
  NearestPixelsScalar(sourceRow, columns, count, taken, to);
  return HWY_TARGET;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Where the bytes of four pixels go, two or four of each, the rest last.
struct BlockOrder {
  alignas(16) uint8_t from[16] = {};

  explicit BlockOrder(const TakenBytes& taken) {
    const size_t perPixel = taken.perPixel == 4 ? 4 : 2;
    for (size_t i = 0; i < 4 * perPixel; ++i) {
      const size_t pixel = i / perPixel;
      const std::array<uint8_t, 4>& bytes = pixel % 2 == 0 ? taken.first : taken.second;
      from[i] = static_cast<uint8_t>(4 * pixel + bytes[i % perPixel]);
    }
  }
};

int64_t Nearest(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                const TakenBytes& taken, uint8_t* to) {
  const hn::ScalableTag<int32_t> words;
  const hn::Repartition<uint8_t, decltype(words)> bytes;
  const hn::Repartition<uint64_t, decltype(words)> doubles;
  const hn::Half<decltype(doubles)> half;
  const size_t lanes = hn::Lanes(words);
  const BlockOrder blockOrder(taken);
  const auto order = hn::LoadDup128(bytes, blockOrder.from);
  // Pixels have no alignment of their own; offsets in bytes make that plain.
  const auto* const pixels = static_cast<const int32_t*>(static_cast<const void*>(sourceRow));
  const auto perPixel = static_cast<size_t>(taken.perPixel);
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto offsets = hn::ShiftLeft<2>(hn::LoadU(words, columns + i));
    const auto gathered = hn::BitCast(bytes, hn::GatherOffset(words, pixels, offsets));
    const auto ordered = hn::TableLookupBytes(gathered, order);
    if (perPixel == 4) {
      hn::StoreU(ordered, bytes, to + 4 * i);
    } else {
      const auto lower = hn::BitCast(doubles, ordered);
      const auto packed = hn::LowerHalf(half, hn::ConcatEven(doubles, lower, lower));
      const hn::Repartition<uint8_t, decltype(half)> halfBytes;
      hn::StoreU(hn::BitCast(halfBytes, packed), halfBytes, to + 2 * i);
    }
  }
  NearestPixelsScalar(sourceRow, columns + i, count - i, taken, to + perPixel * i);
  return HWY_TARGET;
}

#endif
}  // namespace HWY_NAMESPACE
}  // namespace kelto
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto {

HWY_EXPORT(Nearest);

Target NearestPixelsVectors(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                            const TakenBytes& taken, uint8_t* to) {
  return vectors::Named(HWY_DYNAMIC_DISPATCH(Nearest)(sourceRow, columns, count, taken, to));
}

}  // namespace kelto
#endif
