#include "host/film/encoder.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <optional>
#include <string>

#include "host/base/error.h"
#include "host/film/coded_films.h"
#include "host/film/container_output.h"
#include "host/film/deep_planes.h"
#include "host/film/hardware.h"
#include "host/film/libav.h"
#include "host/film/planes.h"
#include "host/film/rgb_frames.h"
#include "host/film/sound_apart.h"
#include "host/film/sound_track.h"
#include "host/terminal/library_text.h"

namespace kelto::host {
namespace {

/// A kind of film and what FFmpeg calls its container.
struct Container {
  const char* kind;
  const char* muxer;
  bool fragments;  ///< of the MP4 family, with an index that a pipe has to do without
};

/// What a film of deep frames is coded from.
AVPixelFormat DeepFormatOf(CodedForm form, int32_t depth, bool transparent) {
  if (depth == 16) return transparent ? AV_PIX_FMT_GBRAP16 : AV_PIX_FMT_GBRP16;
  switch (form) {
    case CodedForm::kRgb:
      return AV_PIX_FMT_ARGB;
    case CodedForm::k422TenBit:
      return transparent ? AV_PIX_FMT_YUVA444P10 : AV_PIX_FMT_YUV422P10;
    case CodedForm::k422:
      if (depth == 8) return AV_PIX_FMT_YUVA422P;
      return transparent ? AV_PIX_FMT_YUVA422P10 : AV_PIX_FMT_YUV422P10;
    case CodedForm::k420:
      break;
  }
  return transparent ? AV_PIX_FMT_YUVA420P : AV_PIX_FMT_YUV420P10;
}

AVPixelFormat PixelFormatOf(CodedForm form) {
  switch (form) {
    case CodedForm::kRgb:
      return AV_PIX_FMT_RGB24;
    case CodedForm::k422:
      return AV_PIX_FMT_YUV422P;
    case CodedForm::k422TenBit:
      return AV_PIX_FMT_YUV422P10;
    case CodedForm::k420:
      break;
  }
  return AV_PIX_FMT_YUV420P;
}

/// The first encoder of the codec, in this hardware or in software, that takes frames of this size
/// and is installed.
std::optional<FilmEncoder> FindEncoder(const FilmCodec& codec, FrameSize size,
                                       const std::string& hardware) {
  for (const FilmEncoder& each : EncodersOf(codec, hardware)) {
    if (std::min(size.width, size.height) >= each.minimumSide &&
        avcodec_find_encoder_by_name(each.name) != nullptr) {
      return each;
    }
  }
  return std::nullopt;
}

void Fill(const FrameView& frame, const ChromaMap& map, bool interlaced, const AVFrame& to) {
  if (to.format == AV_PIX_FMT_YUV422P10) {
    const auto plane = [&](int i) { return reinterpret_cast<uint16_t*>(to.data[i]); };
    FillPlanes422(
        frame, map,
        TenBitPlanes{plane(0), plane(1), plane(2), to.linesize[0], to.linesize[1], to.linesize[2]});
    return;
  }
  if (to.format == AV_PIX_FMT_NV12) {
    FillNv12(frame, map, interlaced, {to.data[0], to.data[1], to.linesize[0], to.linesize[1]});
    return;
  }
  const Planes planes{to.data[0],     to.data[1],     to.data[2],
                      to.linesize[0], to.linesize[1], to.linesize[2]};
  if (to.format == AV_PIX_FMT_YUV422P) {
    FillPlanes422(frame, map, planes);
  } else {
    FillPlanes420(frame, map, interlaced, planes);
  }
}

class Encoder : public FrameSink {
 public:
  Encoder(const FilmRequest& request, const Container& container)
      : name_(request.output),
        format_(request.format),
        choice_(CodecFor(container.kind, request.codec)),
        map_(MapInto(MatrixFor(request.format.size))),
        output_(request.output),
        frame_(Own(av_frame_alloc())),
        packet_(Own(av_packet_alloc())) {
    OpenContainer(container);
    // Before the encoder, which has threads.
    if (!request.audio.empty()) OpenSoundOf(request, container);
    OpenCodec(request);
    PrepareFrame();
    AddPictures(container);
    if (packets_) sound_ = AddSoundTrack(soundRequest_, *container_, std::move(packets_));
    BeginFile(container);
  }

  void Write(const FrameView& frame) override {
    Check(av_frame_make_writable(frame_.get()), "take a frame");
    if (IsRgb(codec_->pix_fmt)) {
      FillRgb(frame, *frame_);
    } else if (deep_) {
      deep_->Fill(frame, *frame_);
    } else {
      Fill(frame, map_, format_.Interlaced(), *frame_);
    }
    frame_->pts = next_++;
    Encode(frame_.get());
    // In step with the pictures, so that neither has to wait in memory for the other.
    if (sound_) sound_->WriteUntil(next_);
    output_.Check();
    PrintLibraryText(name_);
  }

  void Finish() override {
    Encode(nullptr);
    if (sound_) sound_->WriteUntil(next_);
    Check(av_write_trailer(container_.get()), "end the film");
    output_.Finish();
    PrintLibraryText(name_);
  }

 private:
  void Check(int code, const char* doing) const {
    output_.Check();
    if (code < 0) throw Error(name_ + ": cannot " + doing + ": " + LibavText(code));
  }

  void OpenContainer(const Container& kind) {
    AVFormatContext* container = nullptr;
    Check(avformat_alloc_output_context2(&container, nullptr, kind.muxer, nullptr),
          "make a container");
    container_.reset(container);
    container_->pb = output_.Context();
    // Bit-exact: without the marks by which two films of the same frames would differ.
    container_->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
    // The picture begins at 0, whatever the sound's decoder wants to have before.
    container_->avoid_negative_ts = kind.fragments ? AVFMT_AVOID_NEG_TS_AUTO : 0;
    // Moving the index to the front reads the file again by this name; "file:" keeps a colon in the
    // name from being taken for a protocol.
    const std::string url = "file:" + output_.File().WorkPath().string();
    container_->url = av_strdup(url.c_str());
    if (container_->url == nullptr) throw std::bad_alloc();
  }

  void OpenCodec(const FilmRequest& request) {
    const std::optional<FilmEncoder> chosen = FindEncoder(choice_, format_.size, request.hardware);
    if (!chosen) {
      throw Error(name_ + ": the installed FFmpeg has no " +
                  EncodersOf(choice_, request.hardware).back().name + ", the encoder for " +
                  choice_.name +
                  (request.hardware.empty() ? "; choose another --codec or --format"
                                            : "; use --encoder software"));
    }
    const AVCodec* encoder = avcodec_find_encoder_by_name(chosen->name);
    codec_ = Own(avcodec_alloc_context3(encoder));
    codec_->width = format_.size.width;
    codec_->height = format_.size.height;
    codec_->pix_fmt = request.deep ? DeepFormatOf(choice_.form, request.depth, request.transparent)
                      : chosen->pairedChroma ? AV_PIX_FMT_NV12
                                             : PixelFormatOf(choice_.form);
    if (request.deep && !IsRgb(codec_->pix_fmt))
      deep_ = std::make_unique<DeepPlanes>(format_.size, codec_->pix_fmt);
    codec_->framerate = {format_.rate.numerator, format_.rate.denominator};
    codec_->time_base = av_inv_q(codec_->framerate);
    codec_->sample_aspect_ratio = {format_.sampleAspect.width, format_.sampleAspect.height};
    SetColours();
    SetFields();
    if ((container_->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
      codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    codec_->flags |= AV_CODEC_FLAG_BITEXACT;
    AVDictionary* options = nullptr;
    std::string words = EncoderOptions(choice_, *chosen, request.quality, request.speed);
    if (request.transparent && *choice_.alphaOptions != 0) {
      words += std::string(" ") + choice_.alphaOptions;
    }
    int code = av_dict_parse_string(&options, words.c_str(), "=", " ", 0);
    // The order of the frames alone comes too late for what the encoder says of the film.
    if (chosen->name == std::string("libx264") && format_.fields == FieldOrder::kBottomFirst) {
      av_dict_set(&options, "x264-params", "bff=1", 0);
    }
    if (code >= 0) code = avcodec_open2(codec_.get(), encoder, &options);
    if (code < 0 && chosen->hardware != nullptr) {
      av_dict_free(&options);
      throw Error(name_ + ": the encoder " + chosen->name + " does not run on this machine (" +
                  LibavText(code) + "); it needs " + HardwareNeed(chosen->hardware) +
                  "; use --encoder software");
    }
    const AVDictionaryEntry* unknown = av_dict_get(options, "", nullptr, AV_DICT_IGNORE_SUFFIX);
    const std::string lack = unknown == nullptr ? "" : unknown->key;
    av_dict_free(&options);
    Check(code, (std::string("start the encoder ") + chosen->name).c_str());
    if (!lack.empty()) {
      throw Error(name_ + ": the encoder " + chosen->name + " knows no option " + lack);
    }
  }

  void SetColours() {
    const bool hd = MatrixFor(format_.size) == ColourMatrix::kBt709;
    codec_->colorspace = hd ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    // Photos arrive in sRGB, whose primaries are BT.709's whatever the size of the film.
    codec_->color_primaries = AVCOL_PRI_BT709;
    codec_->color_trc = AVCOL_TRC_BT709;
    codec_->color_range = AVCOL_RANGE_MPEG;
    codec_->chroma_sample_location = AVCHROMA_LOC_LEFT;
    if (!IsRgb(codec_->pix_fmt)) return;
    codec_->colorspace = AVCOL_SPC_RGB;
    codec_->color_trc = AVCOL_TRC_IEC61966_2_1;
    codec_->color_range = AVCOL_RANGE_JPEG;
    codec_->chroma_sample_location = AVCHROMA_LOC_UNSPECIFIED;
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
    frame_->sample_aspect_ratio = codec_->sample_aspect_ratio;
    frame_->colorspace = codec_->colorspace;
    frame_->color_primaries = codec_->color_primaries;
    frame_->color_trc = codec_->color_trc;
    frame_->color_range = codec_->color_range;
    Check(av_frame_get_buffer(frame_.get(), 0), "make a frame");
  }

  void AddPictures(const Container& kind) {
    AVStream* stream = avformat_new_stream(container_.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, codec_.get()), "describe the film");
    stream->time_base = codec_->time_base;
    stream->avg_frame_rate = codec_->framerate;
    stream->sample_aspect_ratio = codec_->sample_aspect_ratio;
    // The mark by which all players of MP4 know H.265.
    if (codec_->codec_id == AV_CODEC_ID_HEVC && kind.fragments) {
      stream->codecpar->codec_tag = MKTAG('h', 'v', 'c', '1');
    }
  }

  void OpenSoundOf(const FilmRequest& request, const Container& kind) {
    const bool editList = kind.fragments && output_.File().CanSeek();
    const FrameRate rate = request.format.rate;
    soundRequest_ = {
        request.audio,  kind.kind,           editList,         {rate.denominator, rate.numerator},
        request.frames, request.repeatSound, request.soundFade};
    packets_ = OpenSoundApart(soundRequest_, *container_);
  }

  void BeginFile(const Container& kind) {
    AVDictionary* options = nullptr;
    if (kind.fragments) {
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
    Check(EncodeInto(*container_, *codec_, frame, *packet_), "encode and write a frame");
  }

  std::string name_;
  FilmFormat format_;
  const FilmCodec& choice_;
  ChromaMap map_;
  std::unique_ptr<DeepPlanes> deep_;  ///< where the frames are, and the film has luma and chroma
  ContainerOutput output_;            // outlives the container, which writes to it
  Owned<AVFrame> frame_;
  Owned<AVPacket> packet_;
  Owned<AVFormatContext> container_;
  Owned<AVCodecContext> codec_;
  SoundRequest soundRequest_;
  std::unique_ptr<SoundPackets> packets_;  ///< until the track has them
  std::unique_ptr<SoundTrack> sound_;
  int64_t next_ = 0;
};

std::unique_ptr<FrameSink> Open(const FilmRequest& request, const Container& container) {
  SilenceLibav();
  return std::make_unique<Encoder>(request, container);
}

}  // namespace

std::unique_ptr<FrameSink> OpenMp4(const FilmRequest& request) {
  return Open(request, {"mp4", "mp4", true});
}

std::unique_ptr<FrameSink> OpenMov(const FilmRequest& request) {
  return Open(request, {"mov", "mov", true});
}

std::unique_ptr<FrameSink> OpenMkv(const FilmRequest& request) {
  return Open(request, {"mkv", "matroska", false});
}

std::unique_ptr<FrameSink> OpenWebm(const FilmRequest& request) {
  return Open(request, {"webm", "webm", false});
}

std::string InstalledEncoder(const FilmCodec& codec, FrameSize size, const std::string& hardware) {
  const std::optional<FilmEncoder> encoder = FindEncoder(codec, size, hardware);
  return encoder ? encoder->name : "";
}

}  // namespace kelto::host
