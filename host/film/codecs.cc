#include "host/film/codecs.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/options/number.h"
#include "host/options/size.h"

namespace kelto::host {
namespace {

/// Encoders of graphics cards by NVIDIA. Qualities are quantisers, which H.264 and H.265 count
/// alike.
constexpr FilmEncoder OfNvidia(const char* name) {
  return {name,         2,
          "rc=constqp", {28, 23, 18, 12},
          51,           {"preset=p6", "preset=p4", "preset=p2", "preset=p1"},
          "qp",         0,
          "nvenc",      false};
}

/// Encoders of processors by Intel, Quick Sync Video.
constexpr FilmEncoder OfIntel(const char* name) {
  return {name,
          2,
          "",
          {28, 23, 18, 12},
          51,
          {"preset=slow", "preset=medium", "preset=fast", "preset=veryfast"},
          "global_quality",
          1,
          "qsv",
          true};
}

// Constant qualities at which a film is commonly held to look like its source.
const std::vector<FilmCodec> kCodecs = {
    {"h264",
     "H.264",
     CodedForm::k420,
     true,
     {"mp4", "mkv", "mov"},
     {{"libx264",
       2,
       "threads=8",
       {28, 23, 18, 12},
       51,
       {"preset=slow", "", "preset=veryfast", "preset=ultrafast"}},
      OfNvidia("h264_nvenc"),
      OfIntel("h264_qsv")}},
    {"h265",
     "H.265",
     CodedForm::k420,
     false,
     {"mp4", "mkv", "mov"},
     // Without info the film does not tell the processor it was made on.
     {{"libx265",
       16,
       "threads=2 x265-params=log-level=none:info=0:lookahead-slices=0:lookahead-threads=0",
       {28, 23, 18, 12},
       51,
       {"preset=slow", "", "preset=veryfast", "preset=ultrafast"}},
      OfNvidia("hevc_nvenc"),
      OfIntel("hevc_qsv")},
     {8, 10}},
    {"prores",
     "ProRes 4:2:2 HQ",
     CodedForm::k422TenBit,
     true,
     {"mov", "mkv"},
     {{"prores_ks", 2, "profile=hq threads=4"}},
     {10},
     // As ProRes 4444, which players show it as.
     "profile=4444 alpha_bits=16"},
    {"ffv1",
     "FFV1, lossless 4:2:2, or RGB of 16 bits",
     CodedForm::k422,
     true,
     {"mkv"},
     {{"ffv1", 4, "level=3 coder=1 context=1 g=1 slicecrc=1 threads=4"}},
     {8, 10, 16},
     ""},
    {"vp9",
     "VP9",
     CodedForm::k420,
     false,
     {"webm", "mkv", "mp4"},
     {{"libvpx-vp9",
       2,
       "b=0 threads=4 row-mt=0 tile-columns=2",
       {38, 28, 15, 6},
       63,
       {"deadline=good cpu-used=1", "deadline=good cpu-used=3", "deadline=good cpu-used=5",
        "deadline=realtime cpu-used=8"}}},
     {8, 10},
     // Alpha is a picture of its own, to which frames that are not shown do not come.
     "auto-alt-ref=0"},
    {"av1",
     "AV1",
     CodedForm::k420,
     false,
     {"mp4", "mkv", "webm"},
     {{"libsvtav1",
       64,
       "",
       {42, 32, 22, 12},
       63,
       {"preset=5", "preset=8", "preset=10", "preset=12"}},
      {"libaom-av1",
       2,
       "b=0 threads=4 row-mt=0",
       {40, 30, 20, 10},
       63,
       {"cpu-used=4", "cpu-used=6", "cpu-used=8", "usage=realtime cpu-used=9"}}},
     {8, 10}},
    {"qtrle",
     "QuickTime Animation, RGB",
     CodedForm::kRgb,
     false,
     {"mov"},
     {{"qtrle", 2, ""}},
     {8},
     ""},
};

constexpr const char* kQualityWords[] = {"low", "medium", "high", "best"};
constexpr size_t kUsualQuality = 2;
constexpr const char* kSpeedWords[] = {"slow", "medium", "fast", "fastest"};
constexpr size_t kUsualSpeed = 1;

/// The codec of a film whose codec nobody named.
struct Usual {
  const char* kind;
  const char* codec;
};
constexpr Usual kUsual[] = {{"mp4", "h264"}, {"mkv", "h264"}, {"mov", "h264"}, {"webm", "vp9"}};

std::string CodecNames() {
  std::vector<const char*> names;
  names.reserve(kCodecs.size());
  for (const FilmCodec& codec : kCodecs) names.push_back(codec.name);
  return Joined(names);
}

/// The kinds that hold the codec, as advice.
std::string KindsOf(const FilmCodec& codec) {
  return (codec.kinds.size() == 1 ? "use " : "use one of ") + Joined(codec.kinds);
}

/// The place of `word`, or of the usual one where it is empty; nothing when it is none of `words`.
std::optional<size_t> PlaceOf(std::span<const char* const> words, const std::string& word,
                              size_t usual) {
  if (word.empty()) return usual;
  const auto found = std::find(words.begin(), words.end(), word);
  if (found == words.end()) return std::nullopt;
  return static_cast<size_t>(found - words.begin());
}

int32_t QualityOf(const FilmCodec& codec, const FilmEncoder& encoder, const std::string& quality) {
  const std::string option = "--quality " + quality + ": ";
  if (encoder.worst == 0) throw UsageError(option + codec.title + " has no choice of qualities");
  if (const auto place = PlaceOf(kQualityWords, quality, kUsualQuality)) {
    return encoder.qualities[*place];
  }
  const auto number = ParseWhole(quality);
  if (number && *number >= encoder.best && *number <= encoder.worst) {
    return static_cast<int32_t>(*number);
  }
  throw UsageError(option + "choose one of " + Joined(kQualityWords) + ", or " +
                   (encoder.hardware == nullptr ? codec.name : encoder.name) +
                   "'s own number from " + std::to_string(encoder.best) + ", the best, to " +
                   std::to_string(encoder.worst));
}

bool Holds(const FilmCodec& codec, const std::string& kind) {
  return std::any_of(codec.kinds.begin(), codec.kinds.end(),
                     [&](const char* each) { return kind == each; });
}

}  // namespace

int32_t FilmCodec::MinimumSide() const {
  const std::vector<FilmEncoder> software = EncodersOf(*this, "");
  return std::min_element(
             software.begin(), software.end(),
             [](const auto& a, const auto& b) { return a.minimumSide < b.minimumSide; })
      ->minimumSide;
}

std::span<const FilmCodec> FilmCodecs() { return kCodecs; }

std::span<const char* const> QualityWords() { return kQualityWords; }
std::span<const char* const> SpeedWords() { return kSpeedWords; }

std::vector<FilmEncoder> EncodersOf(const FilmCodec& codec, const std::string& hardware) {
  std::vector<FilmEncoder> encoders;
  std::copy_if(codec.encoders.begin(), codec.encoders.end(), std::back_inserter(encoders),
               [&](const FilmEncoder& encoder) {
                 return hardware.empty()
                            ? encoder.hardware == nullptr
                            : encoder.hardware != nullptr && hardware == encoder.hardware;
               });
  return encoders;
}

void CheckHardware(const FilmCodec& codec, const std::string& hardware, const FilmFormat& format) {
  if (hardware.empty()) return;
  if (EncodersOf(codec, hardware).empty()) {
    std::vector<const char*> able;
    for (const FilmCodec& each : kCodecs) {
      if (!EncodersOf(each, hardware).empty()) able.push_back(each.name);
    }
    throw UsageError("--encoder " + hardware + ": has no " + codec.title + "; use --codec " +
                     Joined(able) + ", or --encoder software");
  }
  if (format.Interlaced()) {
    throw UsageError("--encoder " + hardware +
                     ": takes whole frames alone; use --encoder software, or --fields progressive");
  }
}

std::string EncoderOptions(const FilmCodec& codec, const FilmEncoder& encoder,
                           const std::string& quality, const std::string& speed) {
  std::string options = encoder.options;
  const auto add = [&](const std::string& more) {
    if (!options.empty() && !more.empty()) options += ' ';
    options += more;
  };
  if (encoder.worst > 0 || !quality.empty()) {
    add(std::string(encoder.qualityOption) + "=" +
        std::to_string(QualityOf(codec, encoder, quality)));
  }
  const auto place = PlaceOf(kSpeedWords, speed, kUsualSpeed);
  if (!place) throw UsageError("--speed " + speed + ": choose one of " + Joined(kSpeedWords));
  const char* more = encoder.speeds[*place];
  if (more == nullptr && !speed.empty()) {
    throw UsageError("--speed " + speed + ": " + codec.title + " has one speed");
  }
  if (more != nullptr) add(more);
  return options;
}

bool IsContainer(const std::string& kind) {
  return std::any_of(std::begin(kUsual), std::end(kUsual),
                     [&](const Usual& usual) { return kind == usual.kind; });
}

const FilmCodec& CodecFor(const std::string& kind, const std::string& name) {
  std::string wanted = name;
  if (wanted.empty()) {
    for (const Usual& usual : kUsual) {
      if (kind == usual.kind) wanted = usual.codec;
    }
  }
  const auto codec = std::find_if(kCodecs.begin(), kCodecs.end(),
                                  [&](const FilmCodec& each) { return each.name == wanted; });
  if (codec == kCodecs.end()) {
    throw UsageError("--codec " + name + ": choose one of " + CodecNames());
  }
  if (!Holds(*codec, kind)) {
    throw UsageError("--codec " + wanted + ": does not go into " + kind + "; " + KindsOf(*codec));
  }
  return *codec;
}

void CheckFormat(const FilmCodec& codec, const FilmFormat& format) {
  if (format.Interlaced() && !codec.fields) {
    std::vector<const char*> able;
    for (const FilmCodec& each : kCodecs) {
      if (each.fields) able.push_back(each.name);
    }
    throw UsageError(std::string("--fields: ") + codec.name +
                     " holds whole frames only; use --codec " + Joined(able) +
                     ", or --fields progressive");
  }
  const int32_t least = codec.MinimumSide();
  if (std::min(format.size.width, format.size.height) < least) {
    throw UsageError("--size " + ToString(format.size) + ": " + codec.name + " needs at least " +
                     ToString(FrameSize{least, least}));
  }
}

}  // namespace kelto::host
