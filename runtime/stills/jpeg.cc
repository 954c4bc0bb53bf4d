// JPEG through libjpeg-turbo.
#include <cstdio>
// libjpeg's headers need stdio's before them.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <new>
#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/exif.h"
#include "runtime/stills/guarded.h"
#include "runtime/stills/jpeg_metadata.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

/// Warnings after which the picture is whole all the same: stray bytes that cameras leave between
/// segments, and header fields of no consequence.
bool IsHarmless(int warning) {
  return warning == JWRN_EXTRANEOUS_DATA || warning == JWRN_ADOBE_XFORM ||
         warning == JWRN_JFIF_MAJOR;
}

struct Decompressor : jpeg_decompress_struct {
  Decompressor() : jpeg_decompress_struct() {}
  ~Decompressor() { jpeg_destroy_decompress(this); }
};

/// A decompressor with its error handling, the header read.
class Session {
 public:
  explicit Session(StillFile& file) {
    cinfo.err = jpeg_std_error(&errors_);
    cinfo.client_data = this;
    errors_.error_exit = OnError;
    errors_.emit_message = OnMessage;
    progress_.progress_monitor = OnProgress;
    file.Rewind();
    Run([&] {
      jpeg_create_decompress(&cinfo);
      cinfo.progress = &progress_;
      cinfo.mem->max_memory_to_use = static_cast<decltype(cinfo.mem->max_memory_to_use)>(
          std::min<uint64_t>(kMaxScratchBytes, INT32_MAX));
      jpeg_stdio_src(&cinfo, file.stream());
      jpeg_read_header(&cinfo, TRUE);
    });
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Throws StillError when the library gave up.
  template <typename Body>
  void Run(const Body& body) {
    if (!RunGuarded(jump_, body)) Fail();
  }

  ColorModel Model() const {
    switch (cinfo.jpeg_color_space) {
      case JCS_GRAYSCALE:
        return ColorModel::kGrey;
      case JCS_CMYK:
      case JCS_YCCK:
        return ColorModel::kCmyk;
      default:
        return ColorModel::kRgb;
    }
  }

  Decompressor cinfo;

 private:
  static Session& From(j_common_ptr common) { return *static_cast<Session*>(common->client_data); }

  [[noreturn]] static void OnError(j_common_ptr common) {
    Session& session = From(common);
    session.code_ = common->err->msg_code;
    common->err->format_message(common, session.message_);
    std::longjmp(session.jump_, 1);
  }

  static void OnMessage(j_common_ptr common, int level) {
    // A half-grey picture is worse than none: damage ends the decoding.
    if (level < 0 && !IsHarmless(common->err->msg_code)) OnError(common);
  }

  static void OnProgress(j_common_ptr common) {
    const j_decompress_ptr decoder = &From(common).cinfo;
    const uint64_t scans = static_cast<uint64_t>(decoder->input_scan_number);
    const uint64_t pixels = uint64_t{decoder->image_width} * decoder->image_height;
    if (scans > kMaxJpegScans || scans * pixels > kMaxJpegScanPixels) {
      From(common).too_many_scans_ = true;
      OnError(common);
    }
  }

  [[noreturn]] void Fail() const {
    const std::string reason = std::string(" JPEG (") + message_ + ")";
    if (too_many_scans_) {
      throw StillError(codecBadDataErr, "a JPEG of too many scans; the limit is " +
                                            std::to_string(kMaxJpegScans) +
                                            ", and fewer for large pictures");
    }
    switch (code_) {
      case JERR_OUT_OF_MEMORY:
        throw std::bad_alloc();
      case JERR_NO_BACKING_STORE:
        throw StillError(codecBadDataErr, "a progressive JPEG that needs more than " +
                                              std::to_string(kMaxScratchBytes >> 20) +
                                              " MiB of working memory");
      case JERR_BAD_PRECISION:
      case JERR_SOF_UNSUPPORTED:
      case JERR_ARITH_NOTIMPL:
      case JERR_CONVERSION_NOTIMPL:
        throw StillError(noCodecErr, "unsupported" + reason);
      case JERR_INPUT_EMPTY:
      case JERR_INPUT_EOF:
      case JWRN_JPEG_EOF:
        throw StillError(codecBadDataErr, "truncated" + reason);
      default:
        throw StillError(codecBadDataErr, "damaged" + reason);
    }
  }

  jpeg_error_mgr errors_ = {};
  jpeg_progress_mgr progress_ = {};
  std::jmp_buf jump_;
  int code_ = 0;
  bool too_many_scans_ = false;
  char message_[JMSG_LENGTH_MAX] = "";
};

/// Ink as it is stored to ink as kCmyka8 has it, within one row from its last pixel to its first.
/// Files of the Adobe kind store the light that passes instead of the ink.
void SpreadInk(uint8_t* row, uint32_t width, bool adobe) {
  const uint8_t flip = adobe ? 255 : 0;
  for (uint32_t x = width; x-- > 0;) {
    uint8_t ink[4];
    std::copy_n(row + x * size_t{4}, 4, ink);
    uint8_t* to = row + x * size_t{5};
    for (int c = 0; c < 4; ++c) to[c] = ink[c] ^ flip;
    to[4] = 255;
  }
}

/// Bytes of the coefficients of a whole picture, which the library keeps where not everything of a
/// pixel comes in one scan.
uint64_t CoefficientBytes(jpeg_decompress_struct& cinfo) {
  if (!jpeg_has_multiple_scans(&cinfo)) return 0;
  const auto rounded = [](JDIMENSION blocks, int step) {
    const uint64_t by = static_cast<uint64_t>(step);
    return (blocks + by - 1) / by * by;
  };
  uint64_t blocks = 0;
  for (int i = 0; i < cinfo.num_components; ++i) {
    const jpeg_component_info& part = cinfo.comp_info[i];
    blocks += rounded(part.width_in_blocks, part.h_samp_factor) *
              rounded(part.height_in_blocks, part.v_samp_factor);
  }
  return blocks * sizeof(JBLOCK);
}

void DecodeRows(jpeg_decompress_struct& cinfo, RowWriter& writer) {
  while (cinfo.output_scanline < cinfo.output_height) {
    const uint32_t first = cinfo.output_scanline;
    const uint32_t count = writer.RowsAhead(first);
    uint8_t* rows[RowWriter::kStripRows];
    for (uint32_t i = 0; i < count; ++i) rows[i] = writer.Row(first + i);
    uint32_t done = 0;
    while (done < count) done += jpeg_read_scanlines(&cinfo, rows + done, count - done);
    for (uint32_t i = 0; i < count; ++i) {
      if (cinfo.out_color_space == JCS_CMYK) {
        SpreadInk(rows[i], cinfo.output_width, cinfo.saw_Adobe_marker);
      }
      writer.Commit(first + i);
    }
  }
}

class Jpeg final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    return head.size() >= 3 && head[0] == 0xff && head[1] == 0xd8 && head[2] == 0xff;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    StillInfo info;
    JpegMetadata metadata = ReadJpegMetadata(file);
    info.icc = std::move(metadata.icc);
    info.icc_lost = metadata.icc_lost;
    info.orientation = ExifOrientation(metadata.exif);
    Session session(file);
    info.width = session.cinfo.image_width;
    info.height = session.cinfo.image_height;
    info.model = session.Model();
    info.scratch = info.deep_scratch = CoefficientBytes(session.cinfo);
    info.most_reduction = 8;  // of each block of 8x8 pixels, its mean remains
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    Session session(file);
    jpeg_decompress_struct& cinfo = session.cinfo;
    CheckUnchanged(info, ReducedSide(cinfo.image_width, info.reduction),
                   ReducedSide(cinfo.image_height, info.reduction));
    cinfo.scale_num = 1;
    cinfo.scale_denom = info.reduction;
    const bool ink = session.Model() == ColorModel::kCmyk;
    cinfo.out_color_space = ink ? JCS_CMYK : JCS_EXT_BGRA;
    RowWriter writer(info, session.Model(), ink ? PixelFormat::kCmyka8 : PixelFormat::kBgra8,
                     Alpha::kOpaque, target);
    session.Run([&] {
      jpeg_start_decompress(&cinfo);
      DecodeRows(cinfo, writer);
      jpeg_finish_decompress(&cinfo);
    });
  }
};

}  // namespace

const Decoder& JpegDecoder() {
  static const Jpeg decoder;
  return decoder;
}

}  // namespace kelto::stills
