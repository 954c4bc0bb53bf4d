// Small files of sound form that become large, or seem to: what somebody sends who wants a machine
// to run out of memory. All of them are whole, so that nothing but a limit stops them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelto::test {

/// A black page of one bit a pixel. 130 KB for 32767 pixels a side.
std::vector<uint8_t> FlatPng(uint32_t side);
/// A grey picture, 1.8 or 3.5 MB for 30000 pixels a side.
std::vector<uint8_t> FlatJpeg(uint32_t side, bool progressive);
/// A picture of three channels, all of whose strips are the same bytes of the file. `photometric`
/// is the TIFF's number of its colour model: 2 RGB, 8 CIELab. Padded to `bytes` where it is
/// smaller.
std::vector<uint8_t> SharedStripsTiff(uint32_t side, uint16_t photometric, uint32_t rowsPerStrip,
                                      size_t bytes = 0);
/// An animation of two frames, the first as large as the screen, in 58 bytes.
std::vector<uint8_t> TinyGif(uint16_t side);
/// Mono samples of 16 bits, `rate` of them a second.
std::vector<uint8_t> Wav(uint32_t rate, uint32_t samples);
/// 517 fields, each a list of 10000 empty objects: 15 MB.
std::string MillionsOfObjects();

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace kelto::test
