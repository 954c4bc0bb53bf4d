#include "editor/messages/answers.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "editor/messages/plain_bytes.h"

namespace kelto::editor {

PictureBody PictureOf(std::string_view body) {
  const auto head = FromBytes<PictureHead>(body);
  const host::FrameSize size = head.size;
  const uint64_t pixels = static_cast<uint64_t>(std::max(0, size.width)) *
                          static_cast<uint64_t>(std::max(0, size.height));
  if (pixels == 0 || body.size() - sizeof head != pixels * 4) {
    throw host::Error("the preview sent what is no picture");
  }
  return {head, reinterpret_cast<const uint8_t*>(body.data()) + sizeof head};
}

std::string BodyOf(const PixelSize& photo) { return BytesOf(photo); }

PixelSize SizeOf(std::string_view body) {
  constexpr int32_t kMostSide = std::numeric_limits<int16_t>::max();  // as the importer has it
  const auto size = FromBytes<PixelSize>(body);
  for (const int32_t side : {size.width, size.height}) {
    if (side < 1 || side > kMostSide) throw host::Error("the preview sent what is no size");
  }
  return size;
}

std::string BodyOf(const FilmWay& way) {
  static_assert(std::is_trivially_copyable_v<WaySample>);
  return {reinterpret_cast<const char*>(way.data()), way.size() * sizeof(WaySample)};
}

FilmWay WayOf(std::string_view body) {
  FilmWay way(body.size() / sizeof(WaySample));
  if (!way.empty()) std::memcpy(way.data(), body.data(), way.size() * sizeof(WaySample));
  return way;
}

std::string BodyOf(const std::vector<float>& peaks) {
  return {reinterpret_cast<const char*>(peaks.data()), peaks.size() * sizeof(float)};
}

std::vector<float> PeaksOf(std::string_view body) {
  std::vector<float> peaks(body.size() / sizeof(float));
  if (!peaks.empty()) std::memcpy(peaks.data(), body.data(), peaks.size() * sizeof(float));
  return peaks;
}

}  // namespace kelto::editor
