#include "host/film/encoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <cerrno>
#include <exception>
#include <new>
#include <string>

#include "host/error.h"
#include "host/film/output_file.h"
#include "host/film/planes.h"

namespace kelto::host {
namespace {

/// Constant quality of libx264: 18 is commonly held to look like the source.
constexpr const char* kQuality = "18";
constexpr int kBlockBytes = 1 << 20;

std::string TextOf(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE];
  av_strerror(code, text, sizeof text);
  return text;
}

/// The container's bytes on their way into an OutputFile. Exceptions must not cross the library's C
/// frames: the first one is kept and thrown by Check.
class ContainerOutput {
 public:
  explicit ContainerOutput(const std::string& output) : file_(output) {
    auto* block = static_cast<uint8_t*>(av_malloc(kBlockBytes));
    context_ = block == nullptr
                   ? nullptr
                   : avio_alloc_context(block, kBlockBytes, 1, this, nullptr, &WriteBytes,
                                        file_.CanSeek() ? &SeekTo : nullptr);
    if (context_ == nullptr) {
      av_free(block);
      throw std::bad_alloc();
    }
  }
  ~ContainerOutput() {
    av_freep(&context_->buffer);
    avio_context_free(&context_);
  }
  ContainerOutput(const ContainerOutput&) = delete;
  ContainerOutput& operator=(const ContainerOutput&) = delete;

  AVIOContext* Context() const { return context_; }
  OutputFile& File() { return file_; }
  /// Throws the failure of a write so far, if there was one.
  void Check() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  static int WriteBytes(void* self, uint8_t* bytes, int size) {
    auto& output = *static_cast<ContainerOutput*>(self);
    const auto write = [&] { output.file_.Write(bytes, static_cast<size_t>(size)); };
    return output.Guard(write) ? size : AVERROR(EIO);
  }

  static int64_t SeekTo(void* self, int64_t offset, int whence) {
    auto& output = *static_cast<ContainerOutput*>(self);
    if ((whence & AVSEEK_SIZE) != 0) return output.file_.Size();
    if (whence != SEEK_SET) return AVERROR(EINVAL);
    return output.Guard([&] { output.file_.Seek(offset); }) ? offset : AVERROR(EIO);
  }

  template <typename Step>
  bool Guard(Step step) {
    if (failure_) return false;
    try {
      step();
    } catch (...) {
      failure_ = std::current_exception();
    }
    return failure_ == nullptr;
  }

  OutputFile file_;
  AVIOContext* context_ = nullptr;
  std::exception_ptr failure_;
};

struct Free {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
template <typename Record>
using Owned = std::unique_ptr<Record, Free>;

template <typename Record>
Owned<Record> Own(Record* record) {
  if (record == nullptr) throw std::bad_alloc();
  return Owned<Record>(record);
}

class Encoder : public FrameSink {
 public:
  Encoder(const FilmRequest& request, const char* container)
      : name_(request.output),
        format_(request.format),
        map_(MapInto(MatrixFor(request.format.size))),
        output_(request.output),
        frame_(Own(av_frame_alloc())),
        packet_(Own(av_packet_alloc())) {
    OpenContainer(container);
    OpenCodec();
    PrepareFrame();
    BeginFile(container);
  }

  void Write(const FrameView& frame) override {
    Check(av_frame_make_writable(frame_.get()), "take a frame");
    const AVFrame& to = *frame_;
    FillPlanes420(
        frame, map_, format_.Interlaced(),
        {to.data[0], to.data[1], to.data[2], to.linesize[0], to.linesize[1], to.linesize[2]});
    frame_->pts = next_++;
    Encode(frame_.get());
  }

  void Finish() override {
    Encode(nullptr);
    Check(av_write_trailer(container_.get()), "end the film");
    avio_flush(output_.Context());
    output_.Check();
    output_.File().Finish();
  }

 private:
  void Check(int code, const char* doing) const {
    output_.Check();
    if (code < 0) throw Error(name_ + ": cannot " + doing + ": " + TextOf(code));
  }

  void OpenContainer(const char* name) {
    AVFormatContext* container = nullptr;
    Check(avformat_alloc_output_context2(&container, nullptr, name, nullptr), "make a container");
    container_.reset(container);
    container_->pb = output_.Context();
    container_->flags |= AVFMT_FLAG_CUSTOM_IO;
    // Moving the index to the front reads the file again by this name; "file:" keeps a colon in the
    // name from being taken for a protocol.
    const std::string url = "file:" + output_.File().WorkPath().string();
    container_->url = av_strdup(url.c_str());
    if (container_->url == nullptr) throw std::bad_alloc();
  }

  void OpenCodec() {
    const AVCodec* encoder = avcodec_find_encoder_by_name("libx264");
    if (encoder == nullptr) {
      throw Error(name_ + ": the installed FFmpeg has no libx264; choose another --format");
    }
    codec_ = Own(avcodec_alloc_context3(encoder));
    codec_->width = format_.size.width;
    codec_->height = format_.size.height;
    codec_->pix_fmt = AV_PIX_FMT_YUV420P;
    codec_->framerate = {format_.rate.numerator, format_.rate.denominator};
    codec_->time_base = av_inv_q(codec_->framerate);
    codec_->sample_aspect_ratio = {1, 1};
    SetColours();
    SetFields();
    if ((container_->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
      codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    AVDictionary* options = nullptr;
    av_dict_set(&options, "crf", kQuality, 0);
    // The order of the frames alone comes too late for what the encoder says of the film.
    if (format_.fields == FieldOrder::kBottomFirst)
      av_dict_set(&options, "x264-params", "bff=1", 0);
    const int code = avcodec_open2(codec_.get(), encoder, &options);
    av_dict_free(&options);
    Check(code, "start the H.264 encoder");
  }

  void SetColours() {
    const bool hd = MatrixFor(format_.size) == ColourMatrix::kBt709;
    codec_->colorspace = hd ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    // Photos arrive in sRGB, whose primaries are BT.709's whatever the size of the film.
    codec_->color_primaries = AVCOL_PRI_BT709;
    codec_->color_trc = AVCOL_TRC_BT709;
    codec_->color_range = AVCOL_RANGE_MPEG;
    codec_->chroma_sample_location = AVCHROMA_LOC_LEFT;
  }

  void SetFields() {
    codec_->field_order = AV_FIELD_PROGRESSIVE;
    if (!format_.Interlaced()) return;
    const bool topFirst = format_.fields == FieldOrder::kTopFirst;
    codec_->field_order = topFirst ? AV_FIELD_TT : AV_FIELD_BB;
    codec_->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    frame_->interlaced_frame = 1;
    frame_->top_field_first = topFirst ? 1 : 0;
  }

  void PrepareFrame() {
    frame_->format = codec_->pix_fmt;
    frame_->width = codec_->width;
    frame_->height = codec_->height;
    frame_->colorspace = codec_->colorspace;
    frame_->color_primaries = codec_->color_primaries;
    frame_->color_trc = codec_->color_trc;
    frame_->color_range = codec_->color_range;
    Check(av_frame_get_buffer(frame_.get(), 0), "make a frame");
  }

  void BeginFile(const std::string& container) {
    AVStream* stream = avformat_new_stream(container_.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, codec_.get()), "describe the film");
    stream->time_base = codec_->time_base;
    stream->avg_frame_rate = codec_->framerate;
    stream->sample_aspect_ratio = codec_->sample_aspect_ratio;
    AVDictionary* options = nullptr;
    if (container != "matroska") {
      av_dict_set(&options, "movflags",
                  output_.File().CanSeek() ? "faststart" : "frag_keyframe+empty_moov", 0);
    }
    const int code = avformat_write_header(container_.get(), &options);
    av_dict_free(&options);
    Check(code, "begin the film");
  }

  /// Hands a frame to the encoder (null: there are no more) and what it gives back to the
  /// container.
  void Encode(const AVFrame* frame) {
    Check(avcodec_send_frame(codec_.get(), frame), "encode a frame");
    AVStream* stream = container_->streams[0];
    for (;;) {
      const int code = avcodec_receive_packet(codec_.get(), packet_.get());
      if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) break;
      Check(code, "encode a frame");
      packet_->duration = 1;
      packet_->stream_index = stream->index;
      av_packet_rescale_ts(packet_.get(), codec_->time_base, stream->time_base);
      Check(av_interleaved_write_frame(container_.get(), packet_.get()), "write a frame");
    }
  }

  std::string name_;
  FilmFormat format_;
  ChromaMap map_;
  ContainerOutput output_;  // outlives the container, which writes to it
  Owned<AVFrame> frame_;
  Owned<AVPacket> packet_;
  Owned<AVFormatContext> container_;
  Owned<AVCodecContext> codec_;
  int64_t next_ = 0;
};

std::unique_ptr<FrameSink> Open(const FilmRequest& request, const char* container) {
  // Failures are told once, by exceptions.
  av_log_set_level(AV_LOG_QUIET);
  return std::make_unique<Encoder>(request, container);
}

}  // namespace

std::unique_ptr<FrameSink> OpenMp4(const FilmRequest& request) { return Open(request, "mp4"); }
std::unique_ptr<FrameSink> OpenMov(const FilmRequest& request) { return Open(request, "mov"); }
std::unique_ptr<FrameSink> OpenMkv(const FilmRequest& request) { return Open(request, "matroska"); }

}  // namespace kelto::host
