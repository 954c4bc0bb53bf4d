#include "host/video/scaler.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace kelto::host {
namespace {

const AVPixFmtDescriptor* FormOf(const AVFrame& picture) {
  return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
}

bool IsRgb(const AVFrame& picture) {
  const AVPixFmtDescriptor* form = FormOf(picture);
  return form != nullptr && (form->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

/// Formats that say "full range" by their name, under the name that does not.
AVPixelFormat PlainFormat(int format) {
  switch (format) {
    case AV_PIX_FMT_YUVJ420P:
      return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
      return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
      return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
      return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
      return AV_PIX_FMT_YUV411P;
    default:
      return static_cast<AVPixelFormat>(format);
  }
}

int CoefficientsOf(ColourMatrix matrix) {
  switch (matrix) {
    case ColourMatrix::kBt709:
      return SWS_CS_ITU709;
    case ColourMatrix::kBt2020:
      return SWS_CS_BT2020;
    case ColourMatrix::kSmpte240:
      return SWS_CS_SMPTE240M;
    case ColourMatrix::kBt601:
      break;
  }
  return SWS_CS_ITU601;
}

/// Where chroma samples lie, in units of 1/256 of a luma sample from the first one's.
struct ChromaPlace {
  int horizontal, vertical;
};

ChromaPlace PlaceOf(const AVFrame& picture, PicturePart part) {
  ChromaPlace place{0, 128};
  const int location = NumberIn(picture.chroma_location);
  if (location == AVCHROMA_LOC_CENTER) place = {128, 128};
  if (location == AVCHROMA_LOC_TOPLEFT) place = {0, 0};
  // Within a field, a quarter and three quarters of the way to its next row (ITU-T H.264, 6.2).
  if (part == PicturePart::kTopField) place.vertical = 64;
  if (part == PicturePart::kBottomField) place.vertical = 192;
  const AVPixFmtDescriptor& form = *FormOf(picture);
  if (form.log2_chroma_w == 0) place.horizontal = 0;
  if (form.log2_chroma_h == 0) place.vertical = 0;
  return place;
}

}  // namespace

Coding CodingOf(const AVFrame& picture) {
  if (IsRgb(picture)) return {};
  Coding coding{MatrixFor({picture.width, picture.height}), false};
  switch (NumberIn(picture.colorspace)) {
    case AVCOL_SPC_BT709:
      coding.matrix = ColourMatrix::kBt709;
      break;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
    case AVCOL_SPC_FCC:
      coding.matrix = ColourMatrix::kBt601;
      break;
    case AVCOL_SPC_SMPTE240M:
      coding.matrix = ColourMatrix::kSmpte240;
      break;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
      coding.matrix = ColourMatrix::kBt2020;
      break;
    default:
      break;
  }
  coding.fullRange = NumberIn(picture.color_range) == AVCOL_RANGE_JPEG ||
                     PlainFormat(picture.format) != picture.format;
  return coding;
}

bool IsDeep(const AVFrame& picture) {
  const AVPixFmtDescriptor* form = FormOf(picture);
  return form != nullptr && form->comp[0].depth > 8;
}

uint32_t Scaler::WhiteOf(const AVFrame& picture, int width, int height) {
  // Measured: the library's matrices go from levels of eight bits times 256 to such levels, and
  // samples of more bits are moved up by as many as are missing. RGB alone is widened, as long as
  // nothing is scaled.
  constexpr uint32_t kFull = 65535, kStudio = 255 * 256;
  const bool rgb = IsRgb(picture);
  if (rgb && picture.width == width && picture.height == height) return kFull;
  if (!rgb && !CodingOf(picture).fullRange) return kStudio;
  const int missing = 16 - FormOf(picture)->comp[0].depth;
  return kFull >> missing << missing;
}

const AVFrame* Scaler::Scale(const AVFrame& picture, PicturePart part, int width, int height,
                             AVPixelFormat format) {
  Way& way = ways_[static_cast<size_t>(part)];
  const Coding coding = CodingOf(picture);
  const std::array<int, 9> key{picture.width,
                               picture.height,
                               picture.format,
                               static_cast<int>(coding.matrix),
                               coding.fullRange ? 1 : 0,
                               NumberIn(picture.chroma_location),
                               width,
                               height,
                               format};
  if (way.key != key) {
    if (!Open(way, picture, part, width, height, format)) return nullptr;
    way.key = key;
  }
  sws_scale(way.context.get(), picture.data, picture.linesize, 0, picture.height, way.result->data,
            way.result->linesize);
  return way.result.get();
}

bool Scaler::Open(Way& way, const AVFrame& picture, PicturePart part, int width, int height,
                  AVPixelFormat format) {
  way.key = {};
  const AVPixelFormat from = PlainFormat(picture.format);
  if (sws_isSupportedInput(from) == 0) return false;
  way.context.reset(sws_alloc_context());
  SwsContext* context = way.context.get();
  if (context == nullptr) throw std::bad_alloc();
  const ChromaPlace place = PlaceOf(picture, part);
  const auto set = [&](const char* name, int64_t value) {
    av_opt_set_int(context, name, value, 0);
  };
  set("srcw", picture.width);
  set("srch", picture.height);
  set("src_format", from);
  set("dstw", width);
  set("dsth", height);
  set("dst_format", format);
  set("src_h_chr_pos", place.horizontal);
  set("src_v_chr_pos", place.vertical);
  set("dst_h_chr_pos", 0);
  set("dst_v_chr_pos", 0);
  set("sws_flags",
      SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT);
  const Coding coding = CodingOf(picture);
  const bool toRgb = format == AV_PIX_FMT_BGRA || format == AV_PIX_FMT_RGBA64;
  const int* table = sws_getCoefficients(CoefficientsOf(coding.matrix));
  const int sourceRange = toRgb && coding.fullRange ? 1 : 0;
  sws_setColorspaceDetails(context, table, sourceRange, table, toRgb ? 1 : 0, 0, 1 << 16, 1 << 16);
  if (sws_init_context(context, nullptr, nullptr) < 0) return false;
  way.result = Own(av_frame_alloc());
  way.result->width = width;
  way.result->height = height;
  way.result->format = format;
  if (av_frame_get_buffer(way.result.get(), 0) < 0) throw std::bad_alloc();
  return true;
}

}  // namespace kelto::host
