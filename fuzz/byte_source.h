// What a fuzz target makes of its input: numbers of every kind, taken from the front.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <span>
#include <string>

namespace kelto::fuzz {

/// Reads an input piece by piece. Behind its end there are zeros for ever; every input means
/// something.
class ByteSource {
 public:
  ByteSource(const uint8_t* data, size_t size) : rest_(data, size) {}

  bool Empty() const { return rest_.empty(); }
  uint8_t Byte() {
    if (rest_.empty()) return 0;
    const uint8_t byte = rest_.front();
    rest_ = rest_.subspan(1);
    return byte;
  }
  bool Bool() { return (Byte() & 1) != 0; }
  /// 0 .. count - 1; `count` is 1 to 256.
  int32_t Below(int32_t count) { return Byte() % count; }
  /// low .. high, which are at most 65535 apart.
  int32_t Within(int32_t low, int32_t high) {
    const int32_t span = high - low + 1;
    return low + (span <= 256 ? Byte() : static_cast<int32_t>(Bits(2))) % span;
  }
  int32_t Int32() { return static_cast<int32_t>(static_cast<uint32_t>(Bits(4))); }
  /// Mostly a value in the range, at times any 32 bits.
  int32_t Mostly(int32_t low, int32_t high) { return Below(8) == 0 ? Int32() : Within(low, high); }
  /// Mostly within the span of what callers send, at times any 32 bits: also infinities and what
  /// is not a number.
  float Float(float low, float high) {
    if (const int32_t kind = Below(8); kind == 0) {
      return std::bit_cast<float>(static_cast<uint32_t>(Bits(4)));
    } else if (kind == 1) {
      constexpr float kOdd[] = {std::numeric_limits<float>::quiet_NaN(),
                                std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::max(),
                                std::numeric_limits<float>::lowest(),
                                std::numeric_limits<float>::denorm_min(),
                                2147483648.0f,
                                1e12f,
                                -1e12f,
                                0.0f};
      return kOdd[Below(std::size(kOdd))];
    }
    return low + (high - low) * static_cast<float>(Bits(2)) / 65535.0f;
  }
  double Double(double low, double high) {
    if (const int32_t kind = Below(8); kind == 0) {
      return std::bit_cast<double>(Bits(8));
    } else if (kind == 1) {
      constexpr double kOdd[] = {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::max(),
                                 std::numeric_limits<double>::denorm_min(),
                                 1e18,
                                 -1e18,
                                 0.0,
                                 -0.0,
                                 1.0};
      return kOdd[Below(std::size(kOdd))];
    }
    return low + (high - low) * static_cast<double>(Bits(2)) / 65535.0;
  }
  /// Everything that is left, at most `limit` bytes of it.
  std::span<const uint8_t> Take(size_t limit) {
    const auto taken = rest_.first(limit < rest_.size() ? limit : rest_.size());
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

 private:
  uint64_t Bits(int bytes) {
    uint64_t bits = 0;
    for (int i = 0; i < bytes; ++i) bits |= uint64_t{Byte()} << (8 * i);
    return bits;
  }

  std::span<const uint8_t> rest_;
};

/// Ends the process, as a fuzzer wants it, when what a target promises does not hold.
inline void Require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

}  // namespace kelto::fuzz

/// What the fuzzer, or the replay, calls for each input.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
