// Deep PNG through zlib alone: where there is no libpng, since the system's own encoder writes
// words of 16 bits in the wrong byte order in some of its versions.
#include <zlib.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/film/deep_pictures.h"

namespace kelto::host {
namespace {

using PngBytes = std::vector<uint8_t>;

void AppendBigEndian(PngBytes& to, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<uint8_t>(value >> shift));
}

void AppendChunk(PngBytes& png, std::string_view name, const PngBytes& content) {
  AppendBigEndian(png, static_cast<uint32_t>(content.size()));
  const size_t start = png.size();
  png.insert(png.end(), name.begin(), name.end());
  png.insert(png.end(), content.begin(), content.end());
  const auto length = static_cast<uInt>(png.size() - start);
  AppendBigEndian(png, static_cast<uint32_t>(crc32(0, &png[start], length)));
}

/// The neighbour that is nearest to left + above - corner (PNG, third edition, 9.4).
int Paeth(int left, int above, int corner) {
  const int guess = left + above - corner;
  const int toLeft = std::abs(guess - left), toAbove = std::abs(guess - above);
  const int toCorner = std::abs(guess - corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

/// Samples as a PNG has them, each row behind the number of its filter.
PngBytes FilteredRows(const PngBytes& samples, size_t rowBytes, size_t pixelBytes) {
  constexpr uint8_t kPaeth = 4;
  PngBytes filtered;
  filtered.reserve(samples.size() + samples.size() / rowBytes);
  const auto at = [&](size_t place, bool there) { return there ? int{samples[place]} : 0; };
  for (size_t row = 0; row < samples.size(); row += rowBytes) {
    filtered.push_back(kPaeth);
    for (size_t i = 0; i < rowBytes; ++i) {
      const size_t place = row + i;
      const bool left = i >= pixelBytes, above = row > 0;
      const int guess = Paeth(at(place - pixelBytes, left), at(place - rowBytes, above),
                              at(place - rowBytes - pixelBytes, left && above));
      filtered.push_back(static_cast<uint8_t>(samples[place] - guess));
    }
  }
  return filtered;
}

PngBytes Deflated(const PngBytes& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  PngBytes packed(size);
  const int code = compress(packed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()));
  if (code == Z_MEM_ERROR) throw std::bad_alloc();
  if (code != Z_OK) throw std::runtime_error(zError(code));
  packed.resize(size);
  return packed;
}

}  // namespace

std::vector<uint8_t> EncodeDeepPng(const FrameView& frame, PictureDepth depth) {
  PngBytes samples = SamplesOf(frame, depth);
  if (depth.bits == 16) {
    for (size_t i = 0; i < samples.size(); i += 2) std::swap(samples[i], samples[i + 1]);
  }
  const size_t pixelBytes = (depth.alpha ? size_t{4} : size_t{3}) * depth.bits / 8;
  constexpr uint8_t kColours = 2, kColoursAndAlpha = 6, kPerceptual = 0;
  PngBytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}, header;
  AppendBigEndian(header, static_cast<uint32_t>(frame.size.width));
  AppendBigEndian(header, static_cast<uint32_t>(frame.size.height));
  header.push_back(static_cast<uint8_t>(depth.bits));
  header.push_back(depth.alpha ? kColoursAndAlpha : kColours);
  header.insert(header.end(), 3, 0);  // deflated, filtered, not interlaced
  AppendChunk(png, "IHDR", header);
  AppendChunk(png, "sRGB", {kPerceptual});
  AppendChunk(png, "IDAT",
              Deflated(FilteredRows(samples, pixelBytes * frame.size.width, pixelBytes)));
  AppendChunk(png, "IEND", {});
  return png;
}

}  // namespace kelto::host
