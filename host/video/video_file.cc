#include "host/video/video_file.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/film/media_limits.h"

namespace kelto::host {
namespace {

constexpr const char* kWhat = "a video";
/// Farther ahead than this, in seconds, looking for a nearer place to begin costs less than
/// decoding all that is between.
constexpr double kSeekAhead = 3.0;
/// How far before a picture, in seconds, places to begin are looked for, one after the other:
/// where the key pictures are, not every file says.
constexpr std::array kSeekBefore{0.0, 3.0, 12.0};
/// Of the end this much is read: the last packet seldom is the picture shown last.
constexpr double kTail = 2.0;
/// In a program stream not every picture has a time, though one within so many seconds has; until
/// the first of them the others' are guesses.
constexpr double kMostBetweenTimes = 0.7;
constexpr AVRational kUsualRate{25, 1};
constexpr int32_t kMaxAspectTerm = 65535;

/// Rates that files keep as rounded durations, made what they stand for.
FrameRate Snapped(AVRational rate) {
  const double value = av_q2d(rate);
  const double whole = std::round(value);
  if (std::abs(value - whole) < 2e-4 * whole) return {static_cast<int32_t>(whole), 1};
  const double ntsc = std::round(value * 1.001);
  if (std::abs(value * 1.001 - ntsc) < 2e-4 * ntsc)
    return {static_cast<int32_t>(ntsc) * 1000, 1001};
  return {rate.num, rate.den};
}

FieldOrder FieldsOf(int order) {
  switch (order) {
    case AV_FIELD_TT:
    case AV_FIELD_TB:
      return FieldOrder::kTopFirst;
    case AV_FIELD_BB:
    case AV_FIELD_BT:
      return FieldOrder::kBottomFirst;
    default:
      return FieldOrder::kProgressive;
  }
}

}  // namespace

VideoInfo LookAtVideo(const std::string& path) { return VideoFile(path).Info(); }

VideoFile::VideoFile(const std::string& path)
    : path_(path),
      packet_(Own(av_packet_alloc())),
      shown_(Own(av_frame_alloc())),
      next_(Own(av_frame_alloc())) {
  Open();
  if (decoder_->width <= 0 || decoder_->height <= 0) {
    // Not even their size is read of those beyond the limit.
    throw Error(path + ": cannot be read as a video: its pictures have no size, or more than " +
                std::to_string(kMaxMediaPixels / 1000000) + " million pixels");
  }
  Describe();
  const Ends ends = FindEnds();
  CheckWhole(ends);
  Rewind();
  // Times that are the packets' in their order are late by what the decoder holds back.
  if (next_->pts == AV_NOPTS_VALUE) {
    const double held = std::min(nextAt_, HeldBack());
    start_ += held;
    firstAt_ = nextAt_ -= held;
  }
  DescribeLength(ends);
  const bool whole = info_.fields == FieldOrder::kProgressive;
  if (whole && next_->interlaced_frame != 0 && turn_.Upright()) {
    info_.fields = next_->top_field_first != 0 ? FieldOrder::kTopFirst : FieldOrder::kBottomFirst;
  }
  Advance();
}

void VideoFile::Open() {
  decoder_.reset();
  file_ = OpenMedia(path_, kWhat);
  stream_ = PictureStreamOf(*file_);
  if (stream_ < 0) {
    const bool sound = SoundStreamOf(*file_) >= 0;
    throw Error(path_ + ": has no moving pictures" + (sound ? ", only sound" : ""));
  }
  decoder_ = OpenDecoder(Stream(), path_);
}

VideoInfo::HighRange VideoFile::HighRangeOf(int transfer) {
  if (transfer == AVCOL_TRC_SMPTE2084) return VideoInfo::HighRange::kPq;
  return transfer == AVCOL_TRC_ARIB_STD_B67 ? VideoInfo::HighRange::kHlg
                                            : VideoInfo::HighRange::kNone;
}

void VideoFile::Describe() {
  start_ = StartOf(*file_);
  // Where the clock is coarse, its ticks are frames.
  tolerance_ = std::min(0.5 * av_q2d(Stream().time_base), 0.001) + 1e-7;
  DescribeRate();
  info_.size = {decoder_->width, decoder_->height};
  const AVRational aspect = av_guess_sample_aspect_ratio(file_.get(), &Stream(), nullptr);
  if (aspect.num > 0 && aspect.den > 0) {
    av_reduce(&info_.sampleAspect.width, &info_.sampleAspect.height, aspect.num, aspect.den,
              kMaxAspectTerm);
  }
  info_.fields = FieldsOf(NumberIn(Stream().codecpar->field_order));
  info_.sound = SoundStreamOf(*file_) >= 0;
  info_.highRange = HighRangeOf(NumberIn(Stream().codecpar->color_trc));
  DescribeTurn();
}

void VideoFile::DescribeLength(const Ends& ends) {
  info_.seconds = std::max(ends.pictures - start_, 1.0 / info_.rate.PerSecond());
  const double frames = std::round(info_.seconds * info_.rate.PerSecond());
  info_.frames = static_cast<int32_t>(std::clamp(frames, 1.0, 1e9));
}

void VideoFile::DescribeRate() {
  AVStream& stream = Stream();
  const auto fits = [](AVRational rate) {
    return rate.num > 0 && rate.den > 0 && av_q2d(rate) <= 1000.0 && av_q2d(rate) >= 0.1;
  };
  AVRational rate = av_guess_frame_rate(file_.get(), &stream, nullptr);
  if (!fits(rate)) rate = stream.avg_frame_rate;
  if (!fits(rate)) rate = kUsualRate;
  info_.rate = Snapped(rate);
}

void VideoFile::DescribeTurn() {
  const uint8_t* matrix = av_stream_get_side_data(&Stream(), AV_PKT_DATA_DISPLAYMATRIX, nullptr);
  if (matrix == nullptr) return;
  turn_ = OrientationOf(reinterpret_cast<const int32_t*>(matrix));
  if (turn_.transposed) {
    std::swap(info_.size.width, info_.size.height);
    std::swap(info_.sampleAspect.width, info_.sampleAspect.height);
  }
  // Fields lie in the rows as stored.
  if (!turn_.Upright()) info_.fields = FieldOrder::kProgressive;
}

VideoFile::Ends VideoFile::FindEnds() {
  if (file_->duration > 0) {
    const int64_t begin = file_->start_time == AV_NOPTS_VALUE ? 0 : file_->start_time;
    // Either may be anything that a file says.
    const int64_t most = std::numeric_limits<int64_t>::max() - std::max(begin, int64_t{0});
    const int64_t end = begin + std::min(file_->duration, most);
    const auto tailLength = static_cast<int64_t>(kTail * AV_TIME_BASE);
    const int64_t tail = file_->duration > tailLength ? end - tailLength : begin;
    avformat_seek_file(file_.get(), -1, std::numeric_limits<int64_t>::min(), tail, end, 0);
  }
  const Ends ends = ReadEnds();
  if (ends.pictures >= 0.0 && ends.timed) return ends;
  // A file without an index may be left at its end by the search, and one without times is counted
  // out.
  Open();
  return ReadEnds();
}

VideoFile::Ends VideoFile::ReadEnds() {
  Ends ends;
  int64_t untimed = 0;
  while (av_read_frame(file_.get(), packet_.get()) >= 0) {
    const double tick = av_q2d(file_->streams[packet_->stream_index]->time_base);
    const bool picture = packet_->stream_index == stream_;
    const int64_t time = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
    double end = (static_cast<double>(time) + static_cast<double>(packet_->duration)) * tick;
    const double frame = 1.0 / info_.rate.PerSecond();
    if (picture && packet_->duration <= 0) end += frame;
    // A time of decoding: shown it is when the decoder has held it back.
    if (picture && time != packet_->pts) end += HeldBack();
    if (time == AV_NOPTS_VALUE) {
      end = picture ? static_cast<double>(++untimed) * frame : 0.0;
      if (picture) ends.timed = false;
    }
    if ((packet_->flags & AV_PKT_FLAG_CORRUPT) == 0) {
      if (picture) ends.pictures = std::max(ends.pictures, end);
      ends.all = std::max(ends.all, end);
    }
    av_packet_unref(packet_.get());
  }
  return ends;
}

double VideoFile::HeldBack() const {
  return Stream().codecpar->video_delay / info_.rate.PerSecond();
}

void VideoFile::CheckWhole(const Ends& ends) const {
  // Containers round lengths, and some leave out the last frame's.
  const double slack = 2.0 / info_.rate.PerSecond() + 0.1;
  const auto check = [&](int64_t duration, double unit, double start, double end) {
    if (duration == AV_NOPTS_VALUE || duration <= 0) return;
    const double promised = static_cast<double>(duration) * unit;
    // Some containers count the length from the clock's 0.
    if (std::max(end - start, end) + slack >= promised) return;
    throw Error(path_ + ": ends before its " + FixedText(promised, 2) +
                " seconds are over; it is damaged or not whole");
  };
  check(Stream().duration, av_q2d(Stream().time_base), start_, ends.pictures);
  if (file_->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE) {
    const int64_t begin = file_->start_time == AV_NOPTS_VALUE ? 0 : file_->start_time;
    check(file_->duration, 1.0 / AV_TIME_BASE, static_cast<double>(begin) / AV_TIME_BASE, ends.all);
  }
  if (ends.pictures < start_) throw Error(path_ + ": none of its pictures can be read");
}

const AVFrame& VideoFile::At(double seconds) {
  const double time = seconds + tolerance_;
  const bool back = time < shownAt_ && shownAt_ > firstAt_ + tolerance_;
  const bool farAhead =
      hasPlaces_ && hasNext_ && nextAt_ + kSeekAhead < std::min(time, info_.seconds);
  if (back || (farAhead && NearerPlaceFor(seconds)))
    SeekTo(std::clamp(seconds, 0.0, info_.seconds));
  while (hasNext_ && nextAt_ <= time) Advance();
  return *shown_;
}

void VideoFile::Advance() {
  std::swap(shown_, next_);
  shownAt_ = nextAt_;
  hasShown_ = true;
  Decode();
}

bool VideoFile::NearerPlaceFor(double seconds) const {
  AVStream& stream = Stream();
  const double tick = av_q2d(stream.time_base);
  const auto target = static_cast<int64_t>((start_ + seconds) / tick);
  const AVIndexEntry* place =
      avformat_index_get_entry_from_timestamp(&stream, target, AVSEEK_FLAG_BACKWARD);
  // Without an index there is no telling.
  return place == nullptr || static_cast<double>(place->timestamp) * tick - start_ > nextAt_;
}

void VideoFile::SeekTo(double seconds) {
  const auto found = [&](double before) { return SeekNear(seconds - before, seconds); };
  if (!hasPlaces_ || !std::any_of(kSeekBefore.begin(), kSeekBefore.end(), found)) {
    // Near the beginning there need not be a place between; farther on there is none at all.
    if (seconds > kSeekBefore.back()) hasPlaces_ = false;
    Rewind();
  }
  Advance();
}

bool VideoFile::SeekNear(double seconds, double latest) {
  const auto target =
      static_cast<int64_t>(std::floor((start_ + seconds) / av_q2d(Stream().time_base)));
  const int code = avformat_seek_file(file_.get(), stream_, std::numeric_limits<int64_t>::min(),
                                      target, target, 0);
  avcodec_flush_buffers(decoder_.get());
  Forget();
  if (code < 0) return false;
  // The place may lie behind the target, where a file's index is coarse or wrong; and between key
  // pictures, where there is none: pictures decoded before the first of them lack what they are
  // built on.
  double settled = -std::numeric_limits<double>::infinity();
  for (;;) {
    if (!Decode() || std::isnan(SecondsOf(*next_)) || nextAt_ > latest + tolerance_) return false;
    if (std::isinf(settled) && TimesAreSparse()) settled = nextAt_ + kMostBetweenTimes;
    if (next_->key_frame != 0 && nextAt_ >= settled) return true;
  }
}

bool VideoFile::TimesAreSparse() const { return av_match_name("mpeg", file_->iformat->name) != 0; }

void VideoFile::Rewind() {
  // Seeking to the first picture's time misses it in files that are sought by the times of
  // decoding, so the file is opened anew.
  Open();
  for (unsigned i = 0; i < file_->nb_streams; ++i) {
    if (static_cast<int>(i) != stream_) file_->streams[i]->discard = AVDISCARD_ALL;
  }
  Forget();
  if (!Decode()) throw Error(path_ + ": none of its pictures can be decoded");
  firstAt_ = nextAt_;
}

void VideoFile::Forget() {
  drained_ = false;
  hasShown_ = hasNext_ = false;
  nextAt_ = shownAt_ = 0.0;
}

bool VideoFile::Decode() {
  const double previous = nextAt_;
  for (;;) {
    av_frame_unref(next_.get());
    int code = avcodec_receive_frame(decoder_.get(), next_.get());
    if (code >= 0) {
      const bool first = !hasShown_ && !hasNext_;
      const double own = SecondsOf(*next_);
      nextAt_ = !std::isnan(own) ? own : first ? 0.0 : previous + 1.0 / info_.rate.PerSecond();
      return hasNext_ = true;
    }
    if (code == AVERROR_EOF) return hasNext_ = false;
    drained_ = av_read_frame(file_.get(), packet_.get()) < 0;
    if (drained_ || packet_->stream_index == stream_) {
      // Damaged packets are passed over, as players do.
      code = avcodec_send_packet(decoder_.get(), drained_ ? nullptr : packet_.get());
      if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
    }
    av_packet_unref(packet_.get());
  }
}

double VideoFile::SecondsOf(const AVFrame& frame) const {
  if (frame.best_effort_timestamp == AV_NOPTS_VALUE) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  return static_cast<double>(frame.best_effort_timestamp) * av_q2d(Stream().time_base) - start_;
}

}  // namespace kelto::host
