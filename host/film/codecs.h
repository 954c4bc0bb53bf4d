// The ways to code a film's pictures, as one table: names, rules and settings.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// What reaches the encoder: studio-range planes, chroma halved in width, and in height too or not.
enum class CodedForm { k420, k422, k422TenBit };

/// An encoder of the FFmpeg libraries.
struct FilmEncoder {
  const char* name;
  /// Width and height it needs at the least.
  int32_t minimumSide;
  /// "key=value" pairs with spaces between. Counts of threads are fixed because the bytes of some
  /// encoders depend on them.
  const char* options;
};

struct FilmCodec {
  const char* name;   ///< as --codec takes it
  const char* title;  ///< as people call it
  CodedForm form;
  /// Whether a frame may be two fields. H.265 codes each field as a picture of its own, which many
  /// players show at half the height; VP9 and AV1 know no fields.
  bool fields;
  std::vector<const char*> kinds;     ///< names of the film kinds that hold it
  std::vector<FilmEncoder> encoders;  ///< the first one that is there and fits is taken

  int32_t HeightStep(bool interlaced) const {
    return (form == CodedForm::k420 ? 2 : 1) * (interlaced ? 2 : 1);
  }
  /// The least width and height that any of the encoders takes.
  int32_t MinimumSide() const;
};

std::span<const FilmCodec> FilmCodecs();

/// Whether films of this kind hold a codec's pictures, and may have sound.
bool IsContainer(const std::string& kind);

/// The codec called `name`, or when it is empty the one usual in films of `kind`. Throws UsageError
/// when there is no such codec or the kind does not hold it.
const FilmCodec& CodecFor(const std::string& kind, const std::string& name);

/// Throws UsageError when the codec cannot hold films of this format.
void CheckFormat(const FilmCodec& codec, const FilmFormat& format);

}  // namespace kelto::host
