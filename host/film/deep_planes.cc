#include "host/film/deep_planes.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <cstring>
#include <new>
#include <vector>

#include "host/base/error.h"
#include "host/film/colour_matrix.h"
#include "host/film/deep_frame.h"

namespace kelto::host {
namespace {

bool HasEightBits(AVPixelFormat format) { return av_pix_fmt_desc_get(format)->comp[0].depth == 8; }

/// The library's matrices take samples of 16 bits for those of eight times 256, of which white is
/// 65280.
void ToFullBytes(uint16_t* rgba, int32_t width) {
  for (; width > 0; --width, rgba += 4) {
    for (int c = 0; c < 3; ++c) {
      rgba[c] = static_cast<uint16_t>((rgba[c] * 65280u + 32767u) / 65535u);
    }
  }
}

}  // namespace

DeepPlanes::DeepPlanes(FrameSize size, AVPixelFormat format)
    : eightBits_(HasEightBits(format)), straight_(Own(av_frame_alloc())) {
  straight_->format = eightBits_ ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64;
  straight_->width = size.width;
  straight_->height = size.height;
  if (av_frame_get_buffer(straight_.get(), 0) < 0) throw std::bad_alloc();
  context_ = sws_alloc_context();
  if (context_ == nullptr) throw std::bad_alloc();
  const auto set = [&](const char* option, int64_t value) {
    av_opt_set_int(context_, option, value, 0);
  };
  set("srcw", size.width);
  set("srch", size.height);
  set("dstw", size.width);
  set("dsth", size.height);
  set("src_format", straight_->format);
  set("dst_format", format);
  set("src_range", 1);
  set("dst_range", 0);
  // In 256ths of a pixel, or of a row; where every row has chroma it lies on the row.
  set("dst_h_chr_pos", 0);
  if (av_pix_fmt_desc_get(format)->log2_chroma_h > 0) set("dst_v_chr_pos", 128);
  set("threads", 4);  // slices of a frame: the same bits for any number
  set("sws_flags",
      SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT | SWS_BITEXACT);
  if (sws_init_context(context_, nullptr, nullptr) < 0) {
    sws_freeContext(context_);
    throw std::bad_alloc();
  }
  // Once the library has made its threads: they would not hear of it before.
  const int* matrix = sws_getCoefficients(
      MatrixFor(size) == ColourMatrix::kBt709 ? SWS_CS_ITU709 : SWS_CS_SMPTE170M);
  constexpr int kOne = 1 << 16;
  sws_setColorspaceDetails(context_, sws_getCoefficients(SWS_CS_DEFAULT), 1, matrix, 0, 0, kOne,
                           kOne);
}

DeepPlanes::~DeepPlanes() { sws_freeContext(context_); }

void DeepPlanes::Fill(const FrameView& frame, AVFrame& to) {
  std::vector<uint8_t> bytes;
  if (eightBits_) bytes = StraightBytes(frame);
  const size_t rowBytes = size_t{4} * frame.size.width;
  for (int32_t y = 0; y < frame.size.height; ++y) {
    void* const row = straight_->data[0] + ptrdiff_t{y} * straight_->linesize[0];
    if (eightBits_) {
      std::memcpy(row, &bytes[rowBytes * y], rowBytes);
      continue;
    }
    const void* const from = frame.Row(y);
    uint16_t* const words = static_cast<uint16_t*>(row);
    UnpremultiplyRow(static_cast<const uint16_t*>(from), frame.size.width, words);
    ToFullBytes(words, frame.size.width);
  }
  const int code = sws_scale_frame(context_, &to, straight_.get());
  if (code < 0) throw Error("a frame cannot be brought into the film's form: " + LibavText(code));
}

}  // namespace kelto::host
