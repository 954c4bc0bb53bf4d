#include "tests/windows/png_file.h"

#include <zlib.h>

#include <stdexcept>

namespace kelto::stills {
namespace {

void AppendNumber(Bytes& to, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<uint8_t>(value >> shift));
}

Bytes Packed(const Bytes& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  Bytes packed(size);
  if (compress(packed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size())) != Z_OK) {
    throw std::runtime_error("zlib cannot pack a test's picture");
  }
  packed.resize(size);
  return packed;
}

Bytes Chunk(const std::string& name, const Bytes& content) {
  Bytes body(name.begin(), name.end()), chunk;
  Append(body, content);
  AppendNumber(chunk, static_cast<uint32_t>(content.size()));
  Append(chunk, body);
  AppendNumber(chunk, static_cast<uint32_t>(crc32(0, body.data(), static_cast<uInt>(body.size()))));
  return chunk;
}

}  // namespace

Bytes WithPngChunk(const Bytes& png, const std::string& name, const Bytes& content) {
  constexpr ptrdiff_t kBehindHeader = 8 + 25;
  const Bytes chunk = Chunk(name, content);
  Bytes file = png;
  file.insert(file.begin() + kBehindHeader, chunk.begin(), chunk.end());
  return file;
}

Bytes WithPngProfile(const Bytes& png, const Bytes& profile) {
  Bytes content = {'p', 0, 0};
  Append(content, Packed(profile));
  return WithPngChunk(png, "iCCP", content);
}

Bytes DeepPngHeader(uint32_t width, uint32_t height, int channels) {
  constexpr uint8_t kGrey = 0, kGreyAlpha = 4, kRgb = 2, kRgbAlpha = 6;
  constexpr uint8_t kTypes[] = {kGrey, kGreyAlpha, kRgb, kRgbAlpha};
  Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}, header;
  AppendNumber(header, width);
  AppendNumber(header, height);
  Append(header, {16, kTypes[channels - 1], 0, 0, 0});
  Append(png, Chunk("IHDR", header));
  return png;
}

Bytes EncodePngWords(uint32_t width, uint32_t height, int channels,
                     const std::vector<uint16_t>& words) {
  Bytes rows;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i % (size_t{width} * static_cast<size_t>(channels)) == 0) rows.push_back(0);  // no filter
    rows.push_back(static_cast<uint8_t>(words[i] >> 8));
    rows.push_back(static_cast<uint8_t>(words[i]));
  }
  Bytes png = DeepPngHeader(width, height, channels);
  Append(png, Chunk("IDAT", Packed(rows)));
  Append(png, Chunk("IEND", {}));
  return png;
}

}  // namespace kelto::stills
