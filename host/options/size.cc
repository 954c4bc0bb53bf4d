#include "host/options/size.h"

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr NamedSize kNamed[] = {
    {"480p", {854, 480}},    {"720p", {1280, 720}},      {"1080p", {1920, 1080}},
    {"1440p", {2560, 1440}}, {"4k", {3840, 2160}},       {"square", {1080, 1080}},
    {"story", {1080, 1920}}, {"portrait", {1080, 1350}},
};

std::optional<int32_t> ParseSide(std::string_view text) {
  const auto side = ParseWhole(text);
  if (!side || *side < kMinFrameSide || *side > kMaxFrameSide) return std::nullopt;
  return static_cast<int32_t>(*side);
}

}  // namespace

std::span<const NamedSize> NamedSizes() { return kNamed; }

std::string SizeNames() {
  std::string names;
  for (const NamedSize& named : kNamed) {
    names += names.empty() ? "" : ", ";
    names += named.name;
  }
  return names;
}

FrameSize ParseSize(std::string_view text) {
  for (const NamedSize& named : kNamed) {
    if (text == named.name) return named.size;
  }
  const size_t cross = text.find('x');
  if (cross != std::string_view::npos) {
    const auto width = ParseSide(text.substr(0, cross));
    const auto height = ParseSide(text.substr(cross + 1));
    if (width && height) return {*width, *height};
  }
  throw UsageError("a size is WIDTHxHEIGHT with both from " + std::to_string(kMinFrameSide) +
                   " to " + std::to_string(kMaxFrameSide) + ", such as 1920x1080, or one of " +
                   SizeNames());
}

std::string ToString(FrameSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace kelto::host
