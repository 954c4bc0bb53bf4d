#include "host/film/deep_planes.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <new>
#include <vector>

#include "host/film/colour_matrix.h"
#include "host/film/deep_frame.h"

namespace kelto::host {
namespace {

bool HasEightBits(AVPixelFormat format) { return av_pix_fmt_desc_get(format)->comp[0].depth == 8; }

/// The library's matrices take samples of 16 bits for those of eight times 256, of which white is
/// 65280.
void ToFullBytes(std::vector<uint16_t>& rgba) {
  for (size_t i = 0; i < rgba.size(); ++i) {
    if (i % 4 != 3) rgba[i] = static_cast<uint16_t>((rgba[i] * 65280u + 32767u) / 65535u);
  }
}

}  // namespace

DeepPlanes::DeepPlanes(FrameSize size, AVPixelFormat format)
    : eightBits_(HasEightBits(format)), context_(sws_alloc_context()) {
  if (context_ == nullptr) throw std::bad_alloc();
  const auto set = [&](const char* option, int64_t value) {
    av_opt_set_int(context_, option, value, 0);
  };
  set("srcw", size.width);
  set("srch", size.height);
  set("dstw", size.width);
  set("dsth", size.height);
  set("src_format", eightBits_ ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64);
  set("dst_format", format);
  set("src_range", 1);
  set("dst_range", 0);
  // In 256ths of a pixel, or of a row.
  set("dst_h_chr_pos", 0);
  set("dst_v_chr_pos", 128);
  set("sws_flags",
      SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT | SWS_BITEXACT);
  const int* matrix = sws_getCoefficients(
      MatrixFor(size) == ColourMatrix::kBt709 ? SWS_CS_ITU709 : SWS_CS_SMPTE170M);
  constexpr int kOne = 1 << 16;
  sws_setColorspaceDetails(context_, sws_getCoefficients(SWS_CS_DEFAULT), 1, matrix, 0, 0, kOne,
                           kOne);
  if (sws_init_context(context_, nullptr, nullptr) < 0) {
    sws_freeContext(context_);
    throw std::bad_alloc();
  }
}

DeepPlanes::~DeepPlanes() { sws_freeContext(context_); }

void DeepPlanes::Fill(const FrameView& frame, const AVFrame& to) {
  std::vector<uint16_t> words;
  std::vector<uint8_t> bytes;
  const uint8_t* from = nullptr;
  int step = 4 * frame.size.width;
  if (eightBits_) {
    bytes = StraightBytes(frame);
    from = bytes.data();
  } else {
    words = StraightWords(frame);
    ToFullBytes(words);
    const void* rows = words.data();
    from = static_cast<const uint8_t*>(rows);
    step *= 2;
  }
  const uint8_t* const planes[4] = {from, nullptr, nullptr, nullptr};
  const int steps[4] = {step, 0, 0, 0};
  sws_scale(context_, planes, steps, 0, frame.size.height, to.data, to.linesize);
}

}  // namespace kelto::host
