// Every kind of film that can be written, as one table: names, rules and how to open one.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>

#include "host/base/film_format.h"
#include "host/film/frame_sink.h"

namespace kelto::host {

/// A film to be opened.
struct FilmRequest {
  std::string output;  ///< path, path with a place for numbers, or kStandardOutput
  FilmFormat format;
  int32_t frames = 1;
  std::string codec{};       ///< name of a FilmCodec; empty for the one usual in films of the kind
  std::string audio{};       ///< file whose sound goes into the film; empty for a silent one
  int32_t firstNumber = 0;   ///< of numbered pictures
  std::string quality{};     ///< how good it looks, and how quickly it is coded, as EncoderOptions
  std::string speed{};       ///< takes them
  std::string hardware{};    ///< one of HardwareWords; empty for an encoder in software
  bool repeatSound = false;  ///< whether the sound begins again where it ends before the film
  double soundFade = 0.0;    ///< seconds in which it fades out at the film's end
  int32_t depth = 8;         ///< bits a channel, one of DepthsOf
  bool deep = false;         ///< whether its frames come in PixelLayout::kRgba16
  bool transparent = false;  ///< whether their alpha is kept
};

/// Ascending; 0 for none.
using FilmDepths = std::array<int32_t, 2>;

struct FilmKind {
  const char* name;         ///< as --format takes it; a dot before it makes the file name's ending
  const char* otherEnding;  ///< another ending that means this kind, else null
  const char* description;  ///< for the help text
  /// Of the frames that its sinks take, unless the request is deep; of a container, the codec says.
  PixelLayout layout;
  /// Width and height must be multiples of these; of a container, the codec asks for more.
  int32_t widthStep, heightStep, interlacedHeightStep;
  bool pictures;  ///< a file a frame
  std::unique_ptr<FrameSink> (*open)(const FilmRequest& request);
  /// Throws UsageError for what only this kind cannot hold; null where that is nothing.
  void (*check)(const FilmKind& kind, const FilmRequest& request) = nullptr;
  FilmDepths depths = {8, 0};  ///< bits a channel that films can have; codecs have their own
  bool alpha = false;          ///< whether films can be transparent; codecs say so themselves
};

std::span<const FilmKind> FilmKinds();

/// The kind called `format`, or, when `format` is empty, the one that `output` ends in. Throws
/// UsageError that says which there are.
const FilmKind& KindFor(const std::string& output, const std::string& format);

/// Throws UsageError when the kind cannot hold frames of this format or this many of them, or not
/// the codec or the sound; the text says what it can hold. Opens no file.
void CheckRequest(const FilmKind& kind, const FilmRequest& request);

/// Whether writing the film would replace the file `path`, as it would the photo of that name. No
/// file has an empty name.
bool WouldReplace(const FilmKind& kind, const FilmRequest& request, const std::string& path);

/// The same for any of `paths`; as quick for many as for one, however many pictures the film has. A
/// noted interrupt (see InterruptSignal) ends it with Error.
bool WouldReplaceAny(const FilmKind& kind, const FilmRequest& request,
                     std::span<const std::string> paths);

}  // namespace kelto::host
