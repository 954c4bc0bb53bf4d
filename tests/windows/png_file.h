// PNG files with what the system's encoder does not write, or writes wrongly in some versions.
#pragma once

#include <string>
#include <vector>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

/// Words as a PNG of 16 bits a sample: grey of one channel, grey and alpha of two, R, G, B of
/// three, R, G, B, A of four.
Bytes EncodePngWords(uint32_t width, uint32_t height, int channels,
                     const std::vector<uint16_t>& words);

/// The PNG with a chunk of this name behind its header.
Bytes WithPngChunk(const Bytes& png, const std::string& name, const Bytes& content);

/// The PNG with a colour profile.
Bytes WithPngProfile(const Bytes& png, const Bytes& profile);

/// The beginning of such a PNG of R, G, B, and nothing behind its header.
Bytes DeepPngHeader(uint32_t width, uint32_t height, int channels = 3);

}  // namespace kelto::stills
