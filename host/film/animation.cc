#include "host/film/animation.h"

#include <cstring>
#include <string>

#include "host/base/error.h"
#include "host/files/output_file.h"
#include "host/film/container_output.h"
#include "host/film/libav.h"
#include "host/film/palette_filter.h"
#include "host/film/three_channels.h"

namespace kelto::host {
namespace {

/// How FFmpeg makes an animation.
struct AnimationForm {
  const char* muxer;
  const char* encoder;
  AVPixelFormat pixels;
  const char* options;  ///< the encoder's
};

constexpr AnimationForm kGif = {"gif", "gif", AV_PIX_FMT_PAL8, ""};
constexpr AnimationForm kApng = {"apng", "apng", AV_PIX_FMT_RGB24, "pred=mixed"};
constexpr AnimationForm kWebp = {"webp", "libwebp_anim", AV_PIX_FMT_BGRA, "quality=85"};

/// Copies a frame B, G, R, A into one of the same size; it is opaque.
void Fill(const FrameView& from, AVFrame& to) {
  const bool rgb = to.format == AV_PIX_FMT_RGB24;
  for (int32_t row = 0; row < to.height; ++row) {
    const uint8_t* const pixels = from.Row(row);
    uint8_t* const out = to.data[0] + ptrdiff_t{row} * to.linesize[0];
    if (rgb) {
      CopyThreeChannels(pixels, to.width, ChannelOrder::kRgb, out);
      continue;
    }
    std::memcpy(out, pixels, static_cast<size_t>(to.width) * 4);
    for (int32_t column = 0; column < to.width; ++column) out[column * 4 + 3] = 255;
  }
}

class Animation : public FrameSink {
 public:
  Animation(const FilmRequest& request, const AnimationForm& form)
      : name_(request.output),
        size_(request.format.size),
        output_(request.output),
        packet_(Own(av_packet_alloc())),
        filtered_(Own(av_frame_alloc())) {
    frameTime_ = {request.format.rate.denominator, request.format.rate.numerator};
    if (form.pixels == AV_PIX_FMT_PAL8)
      palette_ = std::make_unique<PaletteFilter>(size_, frameTime_);
    OpenFile(form);
  }

  void Write(const FrameView& frame) override {
    const auto copy = Own(av_frame_alloc());
    copy->format = palette_ ? AV_PIX_FMT_BGR0 : codec_->pix_fmt;
    copy->width = size_.width;
    copy->height = size_.height;
    Check(av_frame_get_buffer(copy.get(), 0), "take a frame");
    Fill(frame, *copy);
    copy->pts = next_++;
    if (palette_) {
      Check(palette_->Put(copy.get()), "take a frame");
    } else {
      Encode(copy.get());
    }
    output_.Check();
  }

  void Finish() override {
    if (palette_) EncodeFiltered();
    Encode(nullptr);
    Check(av_write_trailer(container_.get()), "end the film");
    output_.Finish();
  }

 private:
  void Check(int code, const char* doing) const {
    output_.Check();
    if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (code < 0) throw Error(name_ + ": cannot " + doing + ": " + LibavText(code));
  }

  void OpenFile(const AnimationForm& form) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(form.encoder);
    if (encoder == nullptr) {
      throw Error(name_ + ": the installed FFmpeg has no " + form.encoder +
                  "; choose another --format");
    }
    AVFormatContext* container = nullptr;
    Check(avformat_alloc_output_context2(&container, nullptr, form.muxer, nullptr),
          "make a container");
    container_.reset(container);
    container_->pb = output_.Context();
    container_->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
    codec_ = Own(avcodec_alloc_context3(encoder));
    codec_->width = size_.width;
    codec_->height = size_.height;
    codec_->pix_fmt = form.pixels;
    codec_->time_base = frameTime_;
    codec_->framerate = av_inv_q(frameTime_);
    codec_->flags |= AV_CODEC_FLAG_BITEXACT;
    codec_->thread_count = 1;
    AVDictionary* options = nullptr;
    int code = av_dict_parse_string(&options, form.options, "=", " ", 0);
    if (code >= 0) code = avcodec_open2(codec_.get(), encoder, &options);
    av_dict_free(&options);
    Check(code, "start the encoder");
    AVStream* stream = avformat_new_stream(container_.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, codec_.get()), "describe the film");
    stream->time_base = codec_->time_base;
    stream->avg_frame_rate = codec_->framerate;
    AVDictionary* endless = nullptr;
    av_dict_set(&endless, form.muxer == std::string("apng") ? "plays" : "loop", "0", 0);
    code = avformat_write_header(container_.get(), &endless);
    av_dict_free(&endless);
    Check(code, "begin the film");
  }

  void EncodeFiltered() {
    Check(palette_->Put(nullptr), "choose the colours");
    for (;;) {
      const int code = palette_->Get(*filtered_);
      if (code == AVERROR_EOF) return;
      Check(code, "choose the colours");
      Encode(filtered_.get());
      av_frame_unref(filtered_.get());
      output_.Check();
    }
  }

  void Encode(const AVFrame* frame) {
    Check(EncodeInto(*container_, *codec_, frame, *packet_), "encode and write a frame");
  }

  std::string name_;
  FrameSize size_;
  AVRational frameTime_{};
  ContainerOutput output_;  // outlives the container, which writes to it
  Owned<AVPacket> packet_;
  Owned<AVFrame> filtered_;
  std::unique_ptr<PaletteFilter> palette_;
  Owned<AVFormatContext> container_;
  Owned<AVCodecContext> codec_;
  int64_t next_ = 0;
};

std::unique_ptr<FrameSink> Open(const FilmRequest& request, const AnimationForm& form) {
  SilenceLibav();
  return std::make_unique<Animation>(request, form);
}

}  // namespace

std::unique_ptr<FrameSink> OpenGif(const FilmRequest& request) { return Open(request, kGif); }
std::unique_ptr<FrameSink> OpenApng(const FilmRequest& request) { return Open(request, kApng); }
std::unique_ptr<FrameSink> OpenWebp(const FilmRequest& request) { return Open(request, kWebp); }

void CheckAnimation(const FilmKind& animation, const FilmRequest& request) {
  const std::string kind = animation.name;
  constexpr uint64_t kMost = uint64_t{2} << 30;
  if (request.format.Interlaced()) {
    throw UsageError("--fields: " + kind + " holds whole frames only; use --fields progressive");
  }
  if (kind == "apng" && request.output == kStandardOutput) {
    throw UsageError("-o -: an apng has the number of its frames at its beginning; name a file");
  }
  const FrameSize size = request.format.size;
  const uint64_t bytes = uint64_t{4} * static_cast<uint64_t>(size.width) *
                         static_cast<uint64_t>(size.height) * static_cast<uint64_t>(request.frames);
  if (kind != "gif" || bytes <= kMost) return;
  throw UsageError(request.output + ": a gif of " + std::to_string(request.frames) +
                   " frames takes " + std::to_string(bytes >> 20) + " MiB of memory, and " +
                   std::to_string(kMost >> 20) +
                   " are the most; give it a smaller --size or --fps, such as --size 640x360");
}

}  // namespace kelto::host
