#include "host/film/codecs.h"

#include <algorithm>

#include "host/base/error.h"
#include "host/options/size.h"

namespace kelto::host {
namespace {

// Constant qualities at which a film is commonly held to look like its source.
const std::vector<FilmCodec> kCodecs = {
    {"h264",
     "H.264",
     CodedForm::k420,
     true,
     {"mp4", "mkv", "mov"},
     {{"libx264", 2, "crf=18 threads=8"}}},
    {"h265",
     "H.265",
     CodedForm::k420,
     false,
     {"mp4", "mkv", "mov"},
     // Without info the film does not tell the processor it was made on.
     {{"libx265", 16,
       "crf=18 threads=2 "
       "x265-params=log-level=none:info=0:lookahead-slices=0:lookahead-threads=0"}}},
    {"prores",
     "ProRes 4:2:2 HQ",
     CodedForm::k422TenBit,
     true,
     {"mov", "mkv"},
     {{"prores_ks", 2, "profile=hq threads=4"}}},
    {"ffv1",
     "FFV1, lossless 4:2:2",
     CodedForm::k422,
     true,
     {"mkv"},
     {{"ffv1", 4, "level=3 coder=1 context=1 g=1 slicecrc=1 threads=4"}}},
    {"vp9",
     "VP9",
     CodedForm::k420,
     false,
     {"webm", "mkv", "mp4"},
     {{"libvpx-vp9", 2, "b=0 crf=15 deadline=good cpu-used=3 threads=4 row-mt=0 tile-columns=2"}}},
    {"av1",
     "AV1",
     CodedForm::k420,
     false,
     {"mp4", "mkv", "webm"},
     {{"libsvtav1", 64, "crf=22 preset=8"},
      {"libaom-av1", 2, "b=0 crf=20 cpu-used=6 threads=4 row-mt=0"}}},
};

/// The codec of a film whose codec nobody named.
struct Usual {
  const char* kind;
  const char* codec;
};
constexpr Usual kUsual[] = {{"mp4", "h264"}, {"mkv", "h264"}, {"mov", "h264"}, {"webm", "vp9"}};

template <typename Names>
std::string Listed(const Names& names) {
  std::string list;
  for (const char* name : names) {
    list += list.empty() ? "" : ", ";
    list += name;
  }
  return list;
}

std::string CodecNames() {
  std::vector<const char*> names;
  names.reserve(kCodecs.size());
  for (const FilmCodec& codec : kCodecs) names.push_back(codec.name);
  return Listed(names);
}

/// The kinds that hold the codec, as advice.
std::string KindsOf(const FilmCodec& codec) {
  return (codec.kinds.size() == 1 ? "use " : "use one of ") + Listed(codec.kinds);
}

bool Holds(const FilmCodec& codec, const std::string& kind) {
  return std::any_of(codec.kinds.begin(), codec.kinds.end(),
                     [&](const char* each) { return kind == each; });
}

}  // namespace

int32_t FilmCodec::MinimumSide() const {
  return std::min_element(
             encoders.begin(), encoders.end(),
             [](const auto& a, const auto& b) { return a.minimumSide < b.minimumSide; })
      ->minimumSide;
}

std::span<const FilmCodec> FilmCodecs() { return kCodecs; }

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
    std::string able;
    for (const FilmCodec& each : kCodecs) {
      if (each.fields) able += (able.empty() ? "" : ", ") + std::string(each.name);
    }
    throw UsageError(std::string("--fields: ") + codec.name +
                     " holds whole frames only; use --codec " + able + ", or --fields progressive");
  }
  const int32_t least = codec.MinimumSide();
  if (std::min(format.size.width, format.size.height) < least) {
    throw UsageError("--size " + ToString(format.size) + ": " + codec.name + " needs at least " +
                     ToString(FrameSize{least, least}));
  }
}

}  // namespace kelto::host
