#include "host/film/formats.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <map>
#include <system_error>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/film/codecs.h"
#include "host/film/coded_films.h"
#include "host/film/frame_pattern.h"
#include "host/film/picture_sequence.h"
#include "host/film/raw_video.h"
#include "host/film/ten_bit_video.h"
#include "host/film/y4m.h"
#include "host/options/size.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

constexpr PixelLayout kYCbYCr = PixelLayout::kYCbYCr;
constexpr PixelLayout kBGRA = PixelLayout::kBGRA;
constexpr PixelLayout kRgba16 = PixelLayout::kRgba16;

constexpr FilmDepths kPictureDepths = {8, 16};
constexpr bool kPictureAlpha = true;

/// Those that need no encoder of the FFmpeg libraries.
constexpr FilmKind kPlainKinds[] = {
    {"png", nullptr, "numbered pictures, as in frame-%04d.png, the first one 0", kBGRA, 1, 1, 2,
     true, OpenPngSequence, nullptr, kPictureDepths, kPictureAlpha},
    {"tiff", "tif", "numbered pictures, lossless", kBGRA, 1, 1, 2, true, OpenTiffSequence, nullptr,
     kPictureDepths, kPictureAlpha},
#if !defined(_WIN32)
    {"jpeg", "jpg", "numbered pictures of quality 95", kBGRA, 1, 1, 2, true, OpenJpegSequence},
#endif
    {"y4m", nullptr, "uncompressed planar 4:2:2 with a header", kYCbYCr, 2, 1, 2, false, OpenY4m},
    {"yuyv", nullptr, "raw bytes Y Cb Y Cr as the effect gives them, BT.601", kYCbYCr, 2, 1, 2,
     false, OpenRawYCbYCr},
    {"bgra", nullptr, "raw bytes B G R A", kBGRA, 1, 1, 2, false, OpenRawBGRA},
    {"yuv422p10",
     nullptr,
     "raw planes Y, Cb, Cr of ten bits in words, studio range",
     kRgba16,
     2,
     1,
     2,
     false,
     OpenRawYuv422P10,
     nullptr,
     {10, 0}},
    {"rgba64",
     nullptr,
     "raw words R G B A of 16 bits, colours not multiplied by alpha",
     kRgba16,
     1,
     1,
     2,
     false,
     OpenRawRgba64,
     nullptr,
     {16, 0},
     true},
};

/// All kinds, in the order in which they are offered.
const std::vector<FilmKind>& Kinds() {
  static const std::vector<FilmKind> kinds = [] {
    std::vector<FilmKind> all(CodedFilmKinds().begin(), CodedFilmKinds().end());
    all.insert(all.end(), std::begin(kPlainKinds), std::end(kPlainKinds));
    return all;
  }();
  return kinds;
}

bool Every(const std::string&) { return true; }

std::string Names(bool (*wanted)(const std::string&) = &Every) {
  std::vector<const char*> names;
  for (const FilmKind& kind : Kinds()) {
    if (wanted(kind.name)) names.push_back(kind.name);
  }
  return Joined(names);
}

const FilmKind* Find(const std::string& name) {
  const auto kind = std::find_if(Kinds().begin(), Kinds().end(), [&](const FilmKind& each) {
    return each.name == name || (each.otherEnding != nullptr && each.otherEnding == name);
  });
  return kind == Kinds().end() ? nullptr : &*kind;
}

std::string EndingOf(const std::string& output) {
  std::string ending = TextOf(PathOf(output).extension());
  if (!ending.empty()) ending.erase(0, 1);
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ending;
}

/// Whether films end so that only the command of Linux writes.
bool IsKindElsewhere(const std::string& ending) {
  constexpr const char* kElsewhere[] = {"mp4",  "mkv",  "mov", "webm", "gif",
                                        "webp", "apng", "jpg", "jpeg"};
  return std::find(std::begin(kElsewhere), std::end(kElsewhere), ending) != std::end(kElsewhere);
}

/// The largest multiple of `step` that is not above `side`, but at least one step.
int32_t Fitted(int32_t side, int32_t step) { return std::max(side / step * step, step); }

std::string Multiple(const char* side, int32_t step) {
  if (step == 2) return std::string("an even ") + side;
  return std::string("a ") + side + " that is a multiple of " + std::to_string(step);
}

void CheckSize(const FilmKind& kind, FrameSize size, int32_t heightStep, bool interlaced) {
  const bool widthFits = size.width % kind.widthStep == 0;
  const bool heightFits = size.height % heightStep == 0;
  if (widthFits && heightFits) return;
  std::string need;
  if (!widthFits) need += Multiple("width", kind.widthStep);
  if (!widthFits && !heightFits) need += " and ";
  if (!heightFits) need += Multiple("height", heightStep);
  const FrameSize fitted{Fitted(size.width, kind.widthStep), Fitted(size.height, heightStep)};
  throw UsageError("--size " + ToString(size) + ": " + (interlaced ? "interlaced " : "") +
                   kind.name + " needs " + need + ", such as " + ToString(fitted));
}

/// Only files of one size can be one and the same, which saves comparing each with each.
using FilesBySize = std::multimap<uintmax_t, std::string>;

bool IsOneOf(const FilesBySize& files, const std::string& path) {
  std::error_code error;
  const uintmax_t size = fs::file_size(PathOf(path), error);
  if (error) return false;
  const auto [first, last] = files.equal_range(size);
  return std::any_of(first, last, [&](const auto& file) { return IsSameFile(file.second, path); });
}

/// Whether any of `paths` is, by its name or behind links, a picture of a sequence.
bool SequenceHasAny(const FramePattern& pattern, const FilmRequest& request,
                    std::span<const std::string> paths) {
  const auto numberOf = [&](const fs::path& path) {
    auto number = pattern.NumberOf(TextOf(path.filename()));
    if (number &&
        (*number < request.firstNumber || *number - request.firstNumber >= request.frames)) {
      number.reset();
    }
    return number;
  };
  FilesBySize files;
  for (const std::string& path : paths) {
    // There may be no file of the name yet.
    const auto number = numberOf(PathOf(path));
    if (number && IsSameFile(path, pattern.PathOf(*number))) return true;
    std::error_code error;
    const uintmax_t size = fs::file_size(PathOf(path), error);
    if (!error) files.emplace(size, path);
  }
  if (files.empty()) return false;
  // The folder lists which of millions of pictures are there.
  std::error_code error;
  fs::directory_iterator entry(PathOf(pattern.Folder()), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    CheckInterrupt();
    const auto number = numberOf(entry->path());
    if (number && IsOneOf(files, pattern.PathOf(*number))) return true;
  }
  if (!error || error == std::errc::no_such_file_or_directory) return false;
  // One can write into folders that one cannot read.
  for (int32_t i = 0; i < request.frames; ++i) {
    CheckInterrupt();
    if (IsOneOf(files, pattern.PathOf(request.firstNumber + i))) return true;
  }
  return false;
}

}  // namespace

std::span<const FilmKind> FilmKinds() { return Kinds(); }

const FilmKind& KindFor(const std::string& output, const std::string& format) {
  if (!format.empty()) {
    if (const FilmKind* kind = Find(format)) return *kind;
    throw UsageError("--format " + format + ": choose one of " + Names());
  }
  if (output == kStandardOutput) {
    throw UsageError("-o -: say what to write with --format, one of " + Names());
  }
  if (const FilmKind* kind = Find(EndingOf(output))) return *kind;
  if (IsKindElsewhere(EndingOf(output))) {
    throw UsageError(output + ": films of this kind are written only on Linux; write one of " +
                     Names() + ", and convert it there");
  }
  throw UsageError(output + ": the name should end in the film's kind, a dot and one of " +
                   Names() + "; or name the kind with --format");
}

void CheckRequest(const FilmKind& kind, const FilmRequest& request) {
  if (request.audio.empty() && (request.repeatSound || request.soundFade > 0.0)) {
    throw UsageError(
        "--audio-loop and --audio-fade are for films with sound; name it with --audio");
  }
  const bool interlaced = request.format.Interlaced();
  int32_t heightStep = interlaced ? kind.interlacedHeightStep : kind.heightStep;
  if (IsContainer(kind.name)) {
    const FilmCodec& codec = CodecFor(kind.name, request.codec);
    CheckFormat(codec, request.format);
    CheckHardware(codec, request.hardware, request.format);
    for (const FilmEncoder& encoder : EncodersOf(codec, request.hardware)) {
      EncoderOptions(codec, encoder, request.quality, request.speed);
    }
    heightStep = codec.HeightStep(interlaced);
  } else {
    const auto refuse = [&](const std::string& option, const std::string& lack) {
      const std::string others = Names(&IsContainer);
      throw UsageError(option + ": " + kind.name + " films have no " + lack +
                       (others.empty() ? ", nor have the others that this command writes"
                                       : "; use one of " + others));
    };
    if (!request.codec.empty()) refuse("--codec " + request.codec, "codec");
    if (!request.quality.empty()) refuse("--quality " + request.quality, "codec");
    if (!request.speed.empty()) refuse("--speed " + request.speed, "codec");
    if (!request.hardware.empty()) refuse("--encoder " + request.hardware, "codec");
    if (!request.audio.empty()) refuse("--audio " + request.audio, "sound");
  }
  CheckSize(kind, request.format.size, heightStep, interlaced);
  if (kind.check != nullptr) kind.check(kind, request);
  if (kind.pictures && request.output != kStandardOutput) {
    const FramePattern pattern(request.output);
    if (request.frames > 1 && !pattern.Numbered()) {
      throw UsageError(request.output + ": " + std::to_string(request.frames) +
                       " pictures need a number in the name, as in frame-%04d." + kind.name);
    }
  }
}

bool WouldReplace(const FilmKind& kind, const FilmRequest& request, const std::string& path) {
  return WouldReplaceAny(kind, request, {&path, 1});
}

bool WouldReplaceAny(const FilmKind& kind, const FilmRequest& request,
                     std::span<const std::string> paths) {
  if (request.output == kStandardOutput) return false;
  std::string output = request.output;
  if (kind.pictures) {
    const FramePattern pattern(output);
    if (pattern.Numbered()) return SequenceHasAny(pattern, request, paths);
    output = pattern.PathOf(request.firstNumber);
  }
  return std::any_of(paths.begin(), paths.end(),
                     [&](const std::string& path) { return IsSameFile(path, output); });
}

}  // namespace kelto::host
