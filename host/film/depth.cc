#include "host/film/depth.h"

#include <algorithm>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/film/codecs.h"
#include "host/film/dithered_sink.h"

namespace kelto::host {
namespace {

constexpr PixelLayout kDeep = PixelLayout::kRgba16;

std::string TitleOf(const FilmKind& kind, const std::string& codec) {
  return IsContainer(kind.name) ? std::string(CodecFor(kind.name, codec).title) + " films"
                                : std::string(kind.name) + " films";
}

/// The kinds and codecs for which `holds` is true, as advice: "--codec prores or ffv1, or ...".
template <typename Holds>
std::string Advice(const Holds& holds) {
  std::vector<std::string> codecs, kinds;
  for (const FilmCodec& codec : FilmCodecs()) {
    const auto film = std::find_if(FilmKinds().begin(), FilmKinds().end(), [&](auto& kind) {
      return std::string(kind.name) == codec.kinds.front();
    });
    if (film != FilmKinds().end() && holds(*film, codec.name)) {
      codecs.push_back(std::string(codec.name) + " (" + codec.kinds.front() + ")");
    }
  }
  for (const FilmKind& kind : FilmKinds()) {
    if (!IsContainer(kind.name) && holds(kind, "")) kinds.emplace_back(kind.name);
  }
  const auto listed = [](const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
  };
  std::string text;
  if (!codecs.empty()) text = "--codec " + listed(codecs);
  if (!kinds.empty()) text += (text.empty() ? "" : "; or ") + ("--format " + listed(kinds));
  return text.empty() ? "another system's command" : text;
}

bool Has(const std::vector<int32_t>& depths, int32_t depth) {
  return std::find(depths.begin(), depths.end(), depth) != depths.end();
}

std::string BitsText(const std::vector<int32_t>& depths) {
  std::string text;
  for (const int32_t depth : depths) text += (text.empty() ? "" : " or ") + std::to_string(depth);
  return text;
}

}  // namespace

std::vector<int32_t> DepthsOf(const FilmKind& kind, const std::string& name, bool transparent) {
  if (IsContainer(kind.name)) {
    const FilmCodec& codec = CodecFor(kind.name, name);
    // The only such codec with transparency has it with eight bits.
    if (transparent && codec.form == CodedForm::k420) return {8};
    return codec.depths;
  }
  std::vector<int32_t> depths;
  std::copy_if(std::begin(kind.depths), std::end(kind.depths), std::back_inserter(depths),
               [](int32_t depth) { return depth != 0; });
  return depths;
}

bool HoldsAlpha(const FilmKind& kind, const std::string& codec) {
  return IsContainer(kind.name) ? CodecFor(kind.name, codec).alphaOptions != nullptr : kind.alpha;
}

int32_t ParseDepth(const std::string& text) {
  if (text == "auto") return 0;
  if (text == "8" || text == "10" || text == "16") return std::stoi(text);
  throw UsageError("choose one of 8, 10, 16, auto");
}

int32_t DepthOf(const FilmKind& kind, const std::string& codec, const DepthAsked& asked) {
  const std::vector<int32_t> depths = DepthsOf(kind, codec, asked.transparent);
  if (asked.transparent && !HoldsAlpha(kind, codec)) {
    throw UsageError("--background none: " + TitleOf(kind, codec) + " have no transparency; use " +
                     Advice(&HoldsAlpha));
  }
  if (asked.hardware && asked.depth > 8) {
    throw UsageError("--depth " + std::to_string(asked.depth) +
                     ": encoders in hardware have 8 bits; use --encoder software");
  }
  if (asked.hardware) return 8;
  if (asked.depth == 0) {
    // The least that holds the photo's bits; else all that there are.
    const auto enough = std::find_if(depths.begin(), depths.end(), [&](int32_t depth) {
      return depth >= std::min(asked.photoBits, 16);
    });
    return enough != depths.end() ? *enough : depths.back();
  }
  if (!Has(depths, asked.depth)) {
    const auto holds = [&](const FilmKind& other, const std::string& name) {
      return Has(DepthsOf(other, name, asked.transparent), asked.depth) &&
             (!asked.transparent || HoldsAlpha(other, name));
    };
    throw UsageError("--depth " + std::to_string(asked.depth) + ": " + TitleOf(kind, codec) +
                     (asked.transparent ? " with transparency have " : " have ") +
                     BitsText(depths) + " bits; use " + Advice(holds));
  }
  return asked.depth;
}

std::unique_ptr<FrameSink> OpenFilm(const FilmKind& kind, const FilmRequest& request) {
  // The raw form of 16 bits has no other frames.
  const bool holdsFrames =
      !request.deep || request.depth > 8 || request.transparent || kind.layout == kDeep;
  return holdsFrames ? kind.open(request) : DitherInto(kind, request);
}

PixelLayout FrameLayout(const FilmKind& kind, const FilmRequest& request) {
  if (request.deep) return kDeep;
  return IsContainer(kind.name) ? CodecFor(kind.name, request.codec).Layout() : kind.layout;
}

}  // namespace kelto::host
