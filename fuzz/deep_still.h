// A still of any bytes, read with all its bits.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "fuzz/byte_source.h"
#include "runtime/stills/deep_reader.h"

namespace kelto::fuzz {

/// What came of one reading: pixels, or why there are none.
template <typename Sample>
struct DeepOutcome {
  std::vector<Sample> samples;  ///< four a pixel, rows without what follows them
  bool transparent = false;
  std::string reason;
};

inline void CheckDeepReason(const std::string& reason) {
  Require(!reason.empty(), "failures say why");
  for (const char c : reason) {
    Require(static_cast<unsigned char>(c) >= 0x20, "a failure's text is one line");
  }
}

/// Reads over memory of one byte value.
template <typename Sample>
DeepOutcome<Sample> ReadDeepOver(uint8_t fill, stills::DeepReader& reader) {
  struct alignas(16) Line {
    uint8_t bytes[16];
  };
  const size_t row = size_t{reader.info().width} * 4, height = reader.info().height;
  // One line more than a row takes, so that what is written behind rows is seen.
  const size_t lines = row * sizeof(Sample) / sizeof(Line) + 2;
  std::vector<Line> rows(lines * height);
  std::memset(rows.data(), fill, rows.size() * sizeof(Line));
  DeepOutcome<Sample> outcome;
  try {
    outcome.transparent = reader.Read(rows.data(), static_cast<ptrdiff_t>(lines * sizeof(Line)));
  } catch (const stills::StillError& error) {
    CheckDeepReason(error.reason);
    outcome.reason = error.reason;
  } catch (const std::bad_alloc&) {
    outcome.reason = "not enough memory";
  }
  outcome.samples.resize(row * height);
  for (size_t y = 0; y < height; ++y) {
    const uint8_t* const from = rows[y * lines].bytes;
    const uint8_t* const end = from + lines * sizeof(Line);
    Require(std::all_of(from + row * sizeof(Sample), end, [&](uint8_t b) { return b == fill; }),
            "nothing is written between rows");
    std::memcpy(&outcome.samples[y * row], from, row * sizeof(Sample));
  }
  return outcome;
}

/// Twice, over different content: a pixel that stays unwritten tells itself.
template <typename Sample>
void CheckDeepPixels(stills::DeepReader& reader, Sample full) {
  const DeepOutcome<Sample> first = ReadDeepOver<Sample>(0x00, reader);
  const DeepOutcome<Sample> second = ReadDeepOver<Sample>(0xFF, reader);
  Require(first.reason == second.reason, "a still is read the same twice");
  if (!first.reason.empty()) return;
  Require(first.samples == second.samples, "every pixel is read, and is a number");
  bool transparent = false;
  for (size_t i = 0; i < first.samples.size(); i += 4) {
    const Sample alpha = first.samples[i + 3];
    Require(alpha >= 0 && alpha <= full, "alpha is within its scale");
    transparent |= alpha != full;
    for (size_t c = 0; c < 3; ++c) {
      const Sample color = first.samples[i + c];
      Require(std::is_floating_point_v<Sample> ? std::abs(static_cast<double>(color)) <= 65504
                                               : color <= alpha,
              "colours are within what alpha allows");
    }
  }
  Require(transparent == first.transparent, "transparency is reported as it is");
}

/// Opens and reads the file at `path`; larger pictures are opened only.
inline void CheckDeepStill(const std::string& path, int64_t mostPixels) {
  std::unique_ptr<stills::DeepReader> reader;
  try {
    reader = std::make_unique<stills::DeepReader>(path);
  } catch (const stills::StillError& error) {
    return CheckDeepReason(error.reason);
  } catch (const std::bad_alloc&) {
    return;  // what a library also says of a file that asks for too much
  }
  const stills::DeepInfo& info = reader->info();
  Require(info.width >= 1 && info.height >= 1 && info.bits >= 8, "an open still has a form");
  if (int64_t{info.width} * info.height > mostPixels) return;
  if (info.floats) {
    CheckDeepPixels<float>(*reader, 1.0f);
  } else {
    CheckDeepPixels<uint16_t>(*reader, 65535);
  }
}

}  // namespace kelto::fuzz
