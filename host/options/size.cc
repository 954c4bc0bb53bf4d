#include "host/options/size.h"

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

std::optional<int32_t> ParseSide(std::string_view text) {
  const auto side = ParseWhole(text);
  if (!side || *side < kMinFrameSide || *side > kMaxFrameSide) return std::nullopt;
  return static_cast<int32_t>(*side);
}

}  // namespace

FrameSize ParseSize(std::string_view text) {
  const size_t cross = text.find('x');
  if (cross != std::string_view::npos) {
    const auto width = ParseSide(text.substr(0, cross));
    const auto height = ParseSide(text.substr(cross + 1));
    if (width && height) return {*width, *height};
  }
  throw UsageError("a size is WIDTHxHEIGHT with both from " + std::to_string(kMinFrameSide) +
                   " to " + std::to_string(kMaxFrameSide) + ", such as 1920x1080");
}

std::string ToString(FrameSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace kelto::host
