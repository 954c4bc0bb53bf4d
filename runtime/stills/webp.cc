// WebP through libwebp; of an animation, the first frame.
#include <webp/decode.h>
#include <webp/demux.h>

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/exif.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

struct DemuxDeleter {
  void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};

/// The chunks of a file, which stays in memory as long.
struct Container {
  explicit Container(StillFile& file) : bytes(file.ReadAll()) {
    const WebPData data = {bytes.data(), bytes.size()};
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    demuxer.reset(WebPDemuxPartial(&data, &state));
    if (!demuxer || state != WEBP_DEMUX_DONE) {
      throw StillError(codecBadDataErr, state == WEBP_DEMUX_PARSE_ERROR
                                            ? "damaged WebP (its chunks do not fit together)"
                                            : "truncated WebP (the file ends inside a chunk)");
    }
  }

  uint32_t Field(WebPFormatFeature feature) const { return WebPDemuxGetI(demuxer.get(), feature); }

  /// The first chunk of a name, empty without one. It lies in `bytes`.
  std::span<const uint8_t> Chunk(const char* name, uint32_t flag) const {
    WebPChunkIterator found;
    if ((Field(WEBP_FF_FORMAT_FLAGS) & flag) == 0 ||
        !WebPDemuxGetChunk(demuxer.get(), name, 1, &found)) {
      return {};
    }
    const std::span<const uint8_t> chunk(found.chunk.bytes, found.chunk.size);
    WebPDemuxReleaseChunkIterator(&found);
    return chunk;
  }

  std::vector<uint8_t> bytes;
  std::unique_ptr<WebPDemuxer, DemuxDeleter> demuxer;
};

struct Frame : WebPIterator {
  explicit Frame(const Container& container) : WebPIterator() {
    if (!WebPDemuxGetFrame(container.demuxer.get(), 1, this) || !complete) {
      WebPDemuxReleaseIterator(this);
      throw StillError(codecBadDataErr, "truncated WebP (no whole frame)");
    }
  }
  ~Frame() { WebPDemuxReleaseIterator(this); }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
};

/// Bytes that the codec takes for a frame beside the pixels that it writes: all of a lossless
/// one's, and those of alpha, which is coded as such.
uint64_t FrameScratch(const Frame& frame) {
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(frame.fragment.bytes, frame.fragment.size, &features) != VP8_STATUS_OK) {
    throw StillError(codecBadDataErr, "damaged WebP (a frame without a size)");
  }
  constexpr int kLossless = 2;
  const uint64_t pixels =
      static_cast<uint64_t>(features.width) * static_cast<uint64_t>(features.height);
  return pixels * (features.format == kLossless ? 4 : features.has_alpha ? 5 : 0);
}

/// The codec wants rows that follow one another downwards, at least as far as a picture's size.
bool FitsInPlace(const StillInfo& info) { return info.orientation <= 2; }

bool Covers(const Frame& frame, const StillInfo& info) {
  return static_cast<uint32_t>(frame.width) == info.width &&
         static_cast<uint32_t>(frame.height) == info.height;
}

/// Decodes a frame to B, G, R, A at `to`, the frame's top-left pixel.
void DecodeFrame(const Frame& frame, uint8_t* to, ptrdiff_t row_bytes) {
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) throw StillError(noCodecErr, "another version of libwebp");
  config.output.colorspace = MODE_BGRA;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = to;
  config.output.u.RGBA.stride = static_cast<int>(row_bytes);
  // The last row ends with its last pixel.
  config.output.u.RGBA.size = static_cast<size_t>(row_bytes) * (frame.height - size_t{1}) +
                              static_cast<size_t>(frame.width) * 4;
  const VP8StatusCode status = WebPDecode(frame.fragment.bytes, frame.fragment.size, &config);
  switch (status) {
    case VP8_STATUS_OK:
      return;
    case VP8_STATUS_OUT_OF_MEMORY:
      throw std::bad_alloc();
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA:
      throw StillError(codecBadDataErr, "truncated WebP (its pixels end too early)");
    default:
      throw StillError(codecBadDataErr,
                       "damaged WebP (libwebp status " + std::to_string(status) + ")");
  }
}

class Webp final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    return head.size() >= 12 && std::memcmp(head.data(), "RIFF", 4) == 0 &&
           std::memcmp(head.data() + 8, "WEBP", 4) == 0;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    const Container container(file);
    StillInfo info;
    info.width = container.Field(WEBP_FF_CANVAS_WIDTH);
    info.height = container.Field(WEBP_FF_CANVAS_HEIGHT);
    const auto icc = container.Chunk("ICCP", ICCP_FLAG);
    CheckIccSize(icc.size());
    info.icc.assign(icc.begin(), icc.end());
    info.orientation = ExifOrientation(container.Chunk("EXIF", EXIF_FLAG));
    const Frame frame(container);
    info.alpha = frame.has_alpha || !Covers(frame, info);
    const uint64_t codec = container.bytes.size() + FrameScratch(frame);
    info.scratch = codec + (FitsInPlace(info) ? 0 : info.pixels() * 4);
    info.deep_scratch = codec + info.pixels() * 4;
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    const Container container(file);
    CheckUnchanged(info, container.Field(WEBP_FF_CANVAS_WIDTH),
                   container.Field(WEBP_FF_CANVAS_HEIGHT));
    const Frame frame(container);
    const uint32_t left = static_cast<uint32_t>(frame.x_offset);
    const uint32_t top = static_cast<uint32_t>(frame.y_offset);
    const uint32_t width = static_cast<uint32_t>(frame.width);
    const uint32_t height = static_cast<uint32_t>(frame.height);
    if (uint64_t{left} + width > info.width || uint64_t{top} + height > info.height) {
      throw StillError(codecBadDataErr, "damaged WebP (a frame outside its picture)");
    }

    const bool covers = Covers(frame, info);
    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8,
                     frame.has_alpha || !covers ? Alpha::kStraight : Alpha::kIgnored, target);
    const bool in_place = FitsInPlace(info) && !target.deep();
    const size_t scratch_row = info.width * size_t{4};
    std::unique_ptr<uint8_t[]> all;
    if (!in_place) all = AllocateScratch(uint64_t{scratch_row} * info.height);
    const auto row = [&](uint32_t y) { return all ? &all[y * scratch_row] : writer.Row(y); };

    if (!covers) {
      for (uint32_t y = 0; y < info.height; ++y) std::memset(row(y), 0, scratch_row);
    }
    DecodeFrame(frame, row(top) + left * size_t{4},
                all ? static_cast<ptrdiff_t>(scratch_row) : writer.RowStep());
    for (uint32_t y = 0; y < info.height; ++y) {
      if (all) std::memcpy(writer.Row(y), row(y), scratch_row);
      writer.Commit(y);
    }
  }
};

}  // namespace

const Decoder& WebpDecoder() {
  static const Webp decoder;
  return decoder;
}

}  // namespace kelto::stills
