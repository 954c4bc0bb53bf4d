// A part of a film.
#pragma once

#include <cstdint>
#include <string_view>

namespace kelto::host {

/// Frames `first`, `first` + 1 ... up to `end`, which is not one of them; 0 is the film's first.
struct FrameRange {
  int32_t first = 0;
  int32_t end = 0;
  int32_t Count() const { return end - first; }
  bool operator==(const FrameRange&) const = default;
};

/// Whether the text of a --frames option asks for a part, "A..B", and not for a length.
bool IsFrameRange(std::string_view text);

/// Reads "A..B". Throws UsageError unless 0 <= A < B <= `frames`, the length of the film.
FrameRange ParseFrameRange(std::string_view text, int32_t frames);

}  // namespace kelto::host
