#include "host/film/tiff_file.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "host/film/deep_pictures.h"
#include "host/film/three_channels.h"

namespace kelto::host {
namespace {

/// A file in memory, in the form of the library's callbacks.
struct Memory {
  std::vector<uint8_t> bytes;
  size_t position = 0;
};

tmsize_t Read(thandle_t handle, void* to, tmsize_t size) {
  auto& file = *static_cast<Memory*>(handle);
  const size_t there = file.bytes.size() - std::min(file.position, file.bytes.size());
  const size_t count = std::min(static_cast<size_t>(size), there);
  std::memcpy(to, file.bytes.data() + file.position, count);
  file.position += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t Write(thandle_t handle, void* from, tmsize_t size) {
  auto& file = *static_cast<Memory*>(handle);
  const size_t end = file.position + static_cast<size_t>(size);
  try {
    if (end > file.bytes.size()) file.bytes.resize(end);
  } catch (const std::exception&) {
    return -1;  // no exception may pass through the library
  }
  std::memcpy(file.bytes.data() + file.position, from, static_cast<size_t>(size));
  file.position = end;
  return size;
}

toff_t Seek(thandle_t handle, toff_t offset, int whence) {
  auto& file = *static_cast<Memory*>(handle);
  const size_t from = whence == SEEK_CUR   ? file.position
                      : whence == SEEK_END ? file.bytes.size()
                                           : 0;
  return file.position = from + offset;
}

int Close(thandle_t) { return 0; }
toff_t Size(thandle_t handle) { return static_cast<Memory*>(handle)->bytes.size(); }

struct CloseTiff {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

void Check(bool done) {
  if (!done) throw std::runtime_error("the TIFF library refuses the picture");
}

void Describe(TIFF* tiff, FrameSize size, SampleAspect aspect, PictureDepth depth) {
  const auto set = [&](uint32_t tag, auto value) { Check(TIFFSetField(tiff, tag, value) == 1); };
  set(TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(size.width));
  set(TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(size.height));
  set(TIFFTAG_SAMPLESPERPIXEL, depth.alpha ? 4 : 3);
  set(TIFFTAG_BITSPERSAMPLE, depth.bits);
  if (depth.alpha) {
    const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
    Check(TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind) == 1);
  }
  set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
  set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  set(TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
  // Densities without a unit: the wider a pixel, the fewer go into a length.
  set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
  set(TIFFTAG_XRESOLUTION, static_cast<double>(aspect.height));
  set(TIFFTAG_YRESOLUTION, static_cast<double>(aspect.width));
}

/// Codes rows of samples; `row` gives row y of them, valid until the next call.
template <typename Row>
std::vector<uint8_t> EncodeRows(FrameSize size, SampleAspect aspect, PictureDepth depth,
                                const Row& row) {
  Memory file;
  std::unique_ptr<TIFF, CloseTiff> tiff(
      TIFFClientOpen("frame", "w", &file, &Read, &Write, &Seek, &Close, &Size, nullptr, nullptr));
  Check(tiff != nullptr);
  Describe(tiff.get(), size, aspect, depth);
  for (int32_t y = 0; y < size.height; ++y) {
    Check(TIFFWriteScanline(tiff.get(), row(y), static_cast<uint32_t>(y), 0) == 1);
  }
  Check(TIFFFlush(tiff.get()) == 1);
  tiff.reset();
  return std::move(file.bytes);
}

}  // namespace

std::vector<uint8_t> EncodeTiff(const FrameView& frame, SampleAspect aspect) {
  std::vector<uint8_t> rgb(static_cast<size_t>(frame.size.width) * 3);
  return EncodeRows(frame.size, aspect, {8, false}, [&](int32_t row) {
    CopyThreeChannels(frame.Row(row), frame.size.width, ChannelOrder::kRgb, rgb.data());
    return rgb.data();
  });
}

std::vector<uint8_t> EncodeDeepTiff(const FrameView& frame, PictureDepth depth,
                                    SampleAspect aspect) {
  // The library changes the rows that it gets.
  std::vector<uint8_t> samples = SamplesOf(frame, depth);
  const size_t bytes = samples.size() / frame.size.height;
  return EncodeRows(frame.size, aspect, depth, [&](int32_t row) { return &samples[bytes * row]; });
}

}  // namespace kelto::host
