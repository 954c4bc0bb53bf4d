// What one core can do at most: multiply-adds in registers, and memory read and copied.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/engine/roofline_bench.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/engine/view.h"

HWY_BEFORE_NAMESPACE();
#if HWY_TARGET == HWY_AVX3_DL
#pragma GCC target("avx512vnni")
#endif
namespace kelto::bench::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

int64_t FloatMultiplyAdds(float*) { return 0; }
int64_t PairMultiplyAdds(int32_t*) { return 0; }

#else

namespace hn = hwy::HWY_NAMESPACE;

/// Independent sums that keep every multiplier busy.
constexpr int kSums = 12;
constexpr int64_t kRounds = 100000;

int64_t FloatMultiplyAdds(float* result) {
  const hn::ScalableTag<float> tag;
  auto factor = hn::Set(tag, *result);
  hn::Vec<decltype(tag)> sums[kSums];
  for (auto& sum : sums) sum = factor;
  for (int64_t round = 0; round < kRounds; ++round) {
    for (auto& sum : sums) sum = hn::MulAdd(sum, factor, factor);
  }
  for (const auto& sum : sums) factor = hn::Add(factor, sum);
  *result = hn::GetLane(factor);
  return kRounds * kSums * static_cast<int64_t>(hn::Lanes(tag));
}

int64_t PairMultiplyAdds(int32_t* result) {
  const hn::ScalableTag<int32_t> tag;
  const hn::Repartition<int16_t, decltype(tag)> halves;
  auto factor = hn::Set(tag, *result);
  hn::Vec<decltype(tag)> sums[kSums];
  for (auto& sum : sums) sum = factor;
  for (int64_t round = 0; round < kRounds; ++round) {
    for (auto& sum : sums) {
#if HWY_TARGET == HWY_AVX3_DL
      sum.raw = _mm512_dpwssd_epi32(sum.raw, factor.raw, factor.raw);
#else
      auto unused = hn::Zero(tag);
      const auto pairs = hn::BitCast(halves, factor);
      sum = hn::ReorderWidenMulAccumulate(tag, pairs, hn::BitCast(halves, sum), sum, unused);
#endif
    }
  }
  for (const auto& sum : sums) factor = hn::Add(factor, sum);
  *result = hn::GetLane(factor);
  return 2 * kRounds * kSums * static_cast<int64_t>(hn::Lanes(tag));
}

#endif
}  // namespace kelto::bench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto::bench {

HWY_EXPORT(FloatMultiplyAdds);
HWY_EXPORT(PairMultiplyAdds);

namespace {

void FloatPeak(benchmark::State& state) {
  float value = 0.5f;
  int64_t count = 0;
  for ([[maybe_unused]] auto _ : state) count += HWY_DYNAMIC_DISPATCH(FloatMultiplyAdds)(&value);
  benchmark::DoNotOptimize(value);
  state.SetItemsProcessed(count);
}

void PairPeak(benchmark::State& state) {
  int32_t value = 3;
  int64_t count = 0;
  for ([[maybe_unused]] auto _ : state) count += HWY_DYNAMIC_DISPATCH(PairMultiplyAdds)(&value);
  benchmark::DoNotOptimize(value);
  state.SetItemsProcessed(count);
}

/// The source rows of a 1920 x 1080 frame at scale 3.125, every cache line of them.
constexpr size_t kViewBytes = size_t{4} * 6000 * 3375;

void Read(benchmark::State& state) {
  const std::vector<uint8_t> bytes(kViewBytes, 1);
  for ([[maybe_unused]] auto _ : state) {
    uint64_t sum = 0;
    for (size_t i = 0; i < kViewBytes; i += 64) {
      uint64_t word;
      std::memcpy(&word, bytes.data() + i, 8);
      sum += word;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<int64_t>(kViewBytes) * state.iterations());
}

void Copy(benchmark::State& state) {
  const std::vector<uint8_t> from(kViewBytes / 2, 1);
  std::vector<uint8_t> to(from.size());
  for ([[maybe_unused]] auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(from.size()) * state.iterations());
}

BENCHMARK(FloatPeak)->Name("peak/float multiply-adds");
BENCHMARK(PairPeak)->Name("peak/16-bit multiply-adds");
BENCHMARK(Read)->Name("peak/read 81 MB");
BENCHMARK(Copy)->Name("peak/copy 40 MB");

}  // namespace
}  // namespace kelto::bench
#endif
