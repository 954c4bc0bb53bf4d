// What a file of sound or moving pictures may ask of the process. Checked before the memory is
// spent, as runtime/stills/limits.h has it for photographs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelto::host {

/// Pixels a side, and pixels of a picture: 134 million are 16384x8192.
constexpr int32_t kMaxMediaSide = 32767;
constexpr int64_t kMaxMediaPixels = int64_t{1} << 27;
/// Pictures up to this many pixels, those of 8K, may be coded as densely as they like. Above that,
/// pixels for each byte of the file.
constexpr int64_t kUnquestionedMediaPixels = int64_t{1} << 25;
constexpr int64_t kMaxMediaPixelsPerByte = 10000;
/// Pixels of the pictures that a decoder's threads work on at a time.
constexpr int64_t kMaxMediaPixelsInWork = int64_t{1} << 29;

/// Samples a second of each channel, and channels. Slower sound would grow many times over, as
/// films have 48000.
constexpr int32_t kMinSoundRate = 1000;
constexpr int32_t kMaxSoundRate = 768000;
constexpr int32_t kMaxSoundChannels = 64;
/// Samples that a decoder may give at a time, of all channels: encoders make up to 589824.
constexpr int64_t kMaxSamplesAtOnce = 3 << 18;

/// One piece of memory while a file is looked at: an index, or a picture.
constexpr size_t kMaxMediaBlock = size_t{640} << 20;

}  // namespace kelto::host
