#include "tests/support/hostile_files.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <stdexcept>

namespace kelto::test {
namespace {

using Bytes = std::vector<uint8_t>;

void Append(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }
void Append(Bytes& to, const char* text) {
  for (; *text != 0; ++text) to.push_back(static_cast<uint8_t>(*text));
}
void Big(Bytes& to, uint32_t value, int bytes) {
  for (int i = bytes; i-- > 0;) to.push_back(static_cast<uint8_t>(value >> 8 * i));
}
void Little(Bytes& to, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) to.push_back(static_cast<uint8_t>(value >> 8 * i));
}

Bytes Packed(const Bytes& bytes) {
  uLongf size = compressBound(bytes.size());
  Bytes packed(size);
  if (compress2(packed.data(), &size, bytes.data(), bytes.size(), 9) != Z_OK) {
    throw std::runtime_error("zlib");
  }
  packed.resize(size);
  return packed;
}

void PngPiece(Bytes& to, const char* name, const Bytes& content) {
  Big(to, static_cast<uint32_t>(content.size()), 4);
  const size_t start = to.size();
  Append(to, name);
  Append(to, content);
  Big(to, static_cast<uint32_t>(crc32(0, &to[start], static_cast<uInt>(to.size() - start))), 4);
}

/// A Huffman table of one code, one bit long, that stands for 0.
void ZeroTable(Bytes& to, uint8_t which) {
  Append(to, Bytes{0xff, 0xc4, 0, 20, which, 1});
  to.insert(to.end(), 16, 0);
}

}  // namespace

Bytes FlatPng(uint32_t side) {
  Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}, header;
  Big(header, side, 4);
  Big(header, side, 4);
  Append(header, Bytes{1, 0, 0, 0, 0});
  PngPiece(png, "IHDR", header);
  PngPiece(png, "IDAT", Packed(Bytes(((side + 7) / 8 + size_t{1}) * side, 0)));
  PngPiece(png, "IEND", {});
  return png;
}

Bytes FlatJpeg(uint32_t side, bool progressive) {
  Bytes jpeg = {0xff, 0xd8, 0xff, 0xdb, 0, 67, 0};
  jpeg.insert(jpeg.end(), 64, 1);
  Append(jpeg, Bytes{0xff, static_cast<uint8_t>(progressive ? 0xc2 : 0xc0), 0, 11, 8});
  Big(jpeg, side, 2);
  Big(jpeg, side, 2);
  Append(jpeg, Bytes{1, 1, 0x11, 0});
  ZeroTable(jpeg, 0x00);
  if (!progressive) ZeroTable(jpeg, 0x10);
  Append(jpeg, Bytes{0xff, 0xda, 0, 8, 1, 1, 0, 0, static_cast<uint8_t>(progressive ? 0 : 63), 0});
  // A bit for each block, and another one where its end is marked.
  const uint64_t blocks = uint64_t{(side + 7) / 8} * ((side + 7) / 8);
  const uint64_t bits = progressive ? blocks : 2 * blocks;
  jpeg.insert(jpeg.end(), bits / 8, 0);
  if (bits % 8 != 0) jpeg.push_back(static_cast<uint8_t>(0xff >> bits % 8));
  Append(jpeg, Bytes{0xff, 0xd9});
  return jpeg;
}

Bytes SharedStripsTiff(uint32_t side, uint16_t photometric, uint32_t rowsPerStrip, size_t bytes) {
  const Bytes strip = Packed(Bytes(size_t{side} * 3 * rowsPerStrip, 0x80));
  const uint32_t strips = (side + rowsPerStrip - 1) / rowsPerStrip;
  constexpr uint32_t kEntries = 9, kDirectory = 8, kAfter = kDirectory + 2 + 12 * kEntries + 4;
  constexpr uint32_t kShort = 3, kLong = 4;
  // Depths, then the places and sizes of the strips, then the one strip.
  const uint32_t places = kAfter + 6, sizes = places + 4 * strips, data = sizes + 4 * strips;
  Bytes tiff = {'I', 'I', 42, 0};
  Little(tiff, kDirectory, 4);
  Little(tiff, kEntries, 2);
  const auto entry = [&](uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
    Little(tiff, tag, 2);
    Little(tiff, type, 2);
    Little(tiff, count, 4);
    Little(tiff, value, 4);
  };
  entry(256, kLong, 1, side);
  entry(257, kLong, 1, side);
  entry(258, kShort, 3, kAfter);
  entry(259, kShort, 1, 8);  // Deflate
  entry(262, kShort, 1, photometric);
  entry(273, kLong, strips, strips == 1 ? data : places);
  entry(277, kShort, 1, 3);
  entry(278, kLong, 1, rowsPerStrip);
  entry(279, kLong, strips, strips == 1 ? static_cast<uint32_t>(strip.size()) : sizes);
  Little(tiff, 0, 4);
  for (int i = 0; i < 3; ++i) Little(tiff, 8, 2);
  for (uint32_t i = 0; i < strips; ++i) Little(tiff, data, 4);
  for (uint32_t i = 0; i < strips; ++i) Little(tiff, static_cast<uint32_t>(strip.size()), 4);
  Append(tiff, strip);
  tiff.resize(std::max(tiff.size(), bytes));
  return tiff;
}

Bytes TinyGif(uint16_t side) {
  Bytes gif;
  Append(gif, "GIF89a");
  Little(gif, side, 2);
  Little(gif, side, 2);
  Append(gif, Bytes{0x80, 0, 0, 0, 0, 0, 255, 255, 255});
  Append(gif, Bytes{0x21, 0xf9, 4, 0, 10, 0, 0, 0});
  for (const uint16_t frame : {side, uint16_t{1}}) {
    Append(gif, Bytes{0x2c, 0, 0, 0, 0});
    Little(gif, frame, 2);
    Little(gif, frame, 2);
    Append(gif, Bytes{0, 2, 2, 0x44, 1, 0});
  }
  gif.push_back(';');
  return gif;
}

Bytes Wav(uint32_t rate, uint32_t samples) {
  Bytes wav;
  Append(wav, "RIFF");
  Little(wav, 36 + 2 * samples, 4);
  Append(wav, "WAVEfmt ");
  Little(wav, 16, 4);
  Little(wav, 1, 2);
  Little(wav, 1, 2);
  Little(wav, rate, 4);
  Little(wav, 2 * rate, 4);
  Little(wav, 2, 2);
  Little(wav, 16, 2);
  Append(wav, "data");
  Little(wav, 2 * samples, 4);
  wav.resize(wav.size() + 2 * samples, 1);
  return wav;
}

std::string MillionsOfObjects() {
  std::string list = "[{}";
  for (int i = 1; i < 10000; ++i) list += ",{}";
  list += ']';
  std::string text = "{\"0\":" + list;
  for (int i = 1; i < 517; ++i) text += ",\"" + std::to_string(i) + "\":" + list;
  return text + "}";
}

void WriteBytes(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

}  // namespace kelto::test
