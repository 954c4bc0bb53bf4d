// What a file may ask of the process. Every limit is checked before the memory or the time is
// spent, so that a hostile file costs no more than stated here.
#pragma once

#include <cstdint>

namespace kelto::stills {

/// Pixels a side, as drawn: natural bounds are 16-bit.
constexpr uint32_t kMaxSide = 32767;

/// Pictures up to this many pixels (a 512 MiB buffer) may be packed as densely as they like: a
/// white page is large and its file is tiny.
constexpr uint64_t kUnquestionedPixels = uint64_t{128} << 20;
/// Above that, pixels for each byte of the file. A flat picture reaches 8256 in one-bit PNG and
/// 512 in JPEG; photographs stay under 100.
constexpr uint64_t kMaxPixelsPerFileByte = 10000;

/// The caller's buffer: four bytes a pixel in rows of a multiple of eight bytes, or eight or
/// sixteen of a picture that is read with all its bits. Images have their size in 31 bits, which is
/// room for 536 million pixels of four bytes.
constexpr uint64_t kMaxPixelBytes = (uint64_t{1} << 31) - 1;

/// Memory of a codec beside the caller's buffer: coefficients of a progressive JPEG, a picture that
/// cannot be decoded row by row, a strip or a row of tiles. Enough for 178 million pixels of
/// progressive 4:4:4 and 512 million of four bytes. With the buffer it makes 4 GiB, the most that a
/// picture takes while it is decoded.
constexpr uint64_t kMaxScratchBytes = uint64_t{2} << 30;

/// Scans of a progressive JPEG: encoders write about ten, hostile files thousands, each of which
/// costs a walk over all coefficients.
constexpr int kMaxJpegScans = 500;
/// Scans times pixels: the same limit for large pictures, about a minute of work.
constexpr uint64_t kMaxJpegScanPixels = 20'000'000'000;

/// An embedded ICC profile. Press profiles reach 4 MiB; a JPEG can hold just under 16.
constexpr uint32_t kMaxIccBytes = 16u << 20;
/// Leading bytes of an EXIF block that are looked at; a JPEG cannot hold more.
constexpr uint32_t kMaxExifBytes = 64u << 10;

/// One chunk of a PNG once unpacked, and chunks that are kept.
constexpr uint32_t kMaxPngChunkBytes = 16u << 20;
constexpr uint32_t kMaxPngChunks = 128;

/// Files that their codec wants whole (WebP: at most 268 million pixels).
constexpr uint64_t kMaxWholeFileBytes = uint64_t{512} << 20;

}  // namespace kelto::stills
