// One job of the resampling engine, of any numbers, on every instruction set.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz/byte_source.h"
#include "resample/resample.h"
#include "targets/target.h"

namespace kelto::fuzz {
namespace {

/// Rows of pixels that end with their last pixel, so that the address sanitizer sees a byte more.
struct Block {
  Block(int32_t width, int32_t rows, int32_t bytesPerPixel, int32_t padding, bool bottomUp)
      : rowBytes(width * bytesPerPixel),
        rowCount(rows),
        stride(bottomUp ? -ptrdiff_t{rowBytes + padding} : ptrdiff_t{rowBytes + padding}) {
    if (width <= 0 || rows <= 0) return;
    bytes.resize(static_cast<size_t>(std::abs(stride)) * (rows - 1) + rowBytes);
  }
  uint8_t* Row0() {
    if (bytes.empty()) return nullptr;
    return bytes.data() + (stride < 0 ? -stride * (rowCount - 1) : 0);
  }

  int32_t rowBytes, rowCount;
  ptrdiff_t stride;
  std::vector<uint8_t> bytes;
};

/// Pixels of full contrast, noise or a slope: what rounding of weights tells on most.
void Paint(Block& block, ByteSource& in) {
  const int32_t kind = in.Below(4);
  uint32_t noise = in.Byte() + 1u;
  const auto period = static_cast<size_t>(in.Within(1, 40));
  for (size_t i = 0; i < block.bytes.size(); ++i) {
    noise = noise * 1664525u + 1013904223u;
    block.bytes[i] = static_cast<uint8_t>(kind == 0     ? noise >> 24
                                          : kind == 1   ? i / period % 2 * 255
                                          : kind == 2   ? i * 3 / period
                                          : noise >> 31 ? 255
                                                        : 0);
  }
}

RectF RectFrom(ByteSource& in, int32_t width, int32_t height) {
  const float w = static_cast<float>(width), h = static_cast<float>(height);
  switch (in.Below(4)) {
    case 0:
      return {in.Float(-50.0f, 150.0f), in.Float(-50.0f, 150.0f), in.Float(-50.0f, 150.0f),
              in.Float(-50.0f, 150.0f)};
    case 1: {
      // A view of its own place and scale, as motions make them.
      const float scale = in.Float(0.05f, 8.0f);
      const float left = in.Float(-w, w), top = in.Float(-h, h);
      return {left + 0.5f, top + 0.5f, left + w * scale - 0.5f, top + h * scale - 0.5f};
    }
    case 2: {
      const float left = in.Float(-w, w), top = in.Float(-h, h);
      return {left, top, left + in.Float(0.0f, 3.0f * w), top + in.Float(0.0f, 3.0f * h)};
    }
    default:
      return {0.5f, 0.5f, w - 0.5f, h - 0.5f};
  }
}

using Draw = void (*)(const ResampleJob&);

/// Draws on a target over a fresh destination.
std::vector<uint8_t> DrawOn(Target target, Draw draw, ResampleJob job, const Block& empty) {
  Block dest = empty;
  job.dest.pixels = dest.Row0();
  SetTarget(target);
  draw(job);
  return std::move(dest.bytes);
}

int LargestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  int most = 0;
  for (size_t i = 0; i < a.size(); ++i) most = std::max(most, std::abs(a[i] - b[i]));
  return most;
}

/// Bytes between the rows must hold what they held.
void CheckPadding(const Block& block, const std::vector<uint8_t>& drawn) {
  const size_t stride = static_cast<size_t>(std::abs(block.stride));
  for (size_t i = 0; i < drawn.size(); ++i) {
    if (i % stride >= static_cast<size_t>(block.rowBytes)) {
      Require(drawn[i] == block.bytes[i], "nothing is written between rows");
    }
  }
}

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kelto;
  using namespace kelto::fuzz;
  ByteSource in(data, size);
  constexpr Draw kDraws[] = {ResampleTo422, ResampleTo4Byte, ReduceImage};
  const int32_t entry = in.Below(4) % 3;
  const int32_t mode = in.Mostly(-1, 8);
  const bool wide = in.Below(8) == 0;
  Block source(in.Within(-1, wide ? 600 : 60), in.Within(-1, wide ? 8 : 60), 4, in.Below(4) * 3,
               in.Bool());
  Paint(source, in);
  const int32_t width = in.Within(-1, 90), rows = in.Within(-1, 50);
  Block dest(width, rows, entry == 0 ? 2 : 4, in.Below(9), in.Bool());
  std::fill(dest.bytes.begin(), dest.bytes.end(), uint8_t{0xA5});
  Block video(in.Within(1, 100), in.Within(1, 60), 2, in.Below(5), in.Bool());
  Paint(video, in);

  ResampleJob job;
  job.source = {source.Row0(), source.rowBytes / 4, source.rowCount, source.stride};
  job.fieldRows = in.Mostly(0, 3);
  const bool field = job.fieldRows == kEvenRows || job.fieldRows == kOddRows;
  // A field's frame may have a row more than twice the field's.
  job.dest = {nullptr, width, field ? rows * 2 + (in.Bool() ? 1 : 0) : rows, dest.stride};
  job.interlaceSelector = in.Mostly(0, 3);
  job.filterMode = mode;
  job.sourceRect = RectFrom(in, source.rowBytes / 4, source.rowCount);
  job.destRect = in.Bool() ? RectFrom(in, width, job.dest.height)
                           : RectF{0.5f, 0.5f, static_cast<float>(width) - 0.5f,
                                   static_cast<float>(job.dest.height) - 0.5f};
  job.coverage = {in.Float(0, 1), in.Float(0, 1), in.Float(0, 1), in.Float(0, 1)};
  job.chroma = {in.Mostly(0, 3), in.Mostly(0, 3)};
  for (uint8_t& byte : job.background.bytes) byte = in.Byte();
  job.background.selector = in.Mostly(0, 2);
  if (in.Bool()) {
    job.background.videoRow0 = video.Row0();
    job.background.videoRowBytes = video.stride;
    job.background.videoWidth = in.Bool() ? video.rowBytes / 2 : in.Within(-1, video.rowBytes / 2);
    job.background.videoHeight = video.rowCount;
  }

  const auto targets = AvailableTargets();
  const auto expected = DrawOn(Target::kScalar, kDraws[entry], job, dest);
  CheckPadding(dest, expected);
  std::vector<uint8_t> first;
  for (const Target target : targets) {
    if (target == Target::kScalar) continue;
    const auto drawn = DrawOn(target, kDraws[entry], job, dest);
    const bool filtered = mode >= kFilterTriangle && mode <= kFilterUltraQual;
    Require(LargestDifference(drawn, expected) <= (filtered ? 1 : 0),
            "vectors come within one level of the scalar engine");
    if (first.empty()) first = drawn;
    Require(first == drawn, "all vector targets draw the same bytes");
  }
  return 0;
}
