// The ways to code a film's pictures, as one table: names, rules and settings.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// What reaches the encoder: studio-range planes, chroma halved in width, and in height too or not;
/// or red, green and blue. Films of 16 bits are RGB in any case.
enum class CodedForm { k420, k422, k422TenBit, kRgb };

/// An encoder of the FFmpeg libraries.
struct FilmEncoder {
  const char* name;
  /// Width and height it needs at the least.
  int32_t minimumSide;
  /// "key=value" pairs with spaces between. Counts of threads are fixed because the bytes of some
  /// encoders depend on them.
  const char* options;
  /// Constant qualities for QualityWords, and the worst that there is; 0 where films have no
  /// choice of qualities.
  std::array<int32_t, 4> qualities{};
  int32_t worst = 0;
  /// More options for each of SpeedWords; null where the encoder has one speed.
  std::array<const char*, 4> speeds{};
  /// The option that takes the constant quality, and the best one that it takes.
  const char* qualityOption = "crf";
  int32_t best = 0;
  /// Of encoders that the machine has in hardware, one of HardwareWords; null for all others, which
  /// are in software. They take frames of eight bits that are whole.
  const char* hardware = nullptr;
  bool pairedChroma = false;  ///< whether Cb and Cr alternate in one plane (NV12)
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
  std::vector<int32_t> depths = {8};  ///< bits a channel that films can have, ascending
  /// More options where the film is transparent; null where it cannot be.
  const char* alphaOptions = nullptr;

  /// Of the frames that its films take, unless these are deep.
  PixelLayout Layout() const {
    return form == CodedForm::kRgb ? PixelLayout::kBGRA : PixelLayout::kYCbYCr;
  }
  int32_t HeightStep(bool interlaced) const {
    return (form == CodedForm::k420 ? 2 : 1) * (interlaced ? 2 : 1);
  }
  /// The least width and height that any of the encoders in software takes.
  int32_t MinimumSide() const;
};

std::span<const FilmCodec> FilmCodecs();

/// Words for how good a film looks, the least first, and how quickly it is coded, the slowest
/// first.
std::span<const char* const> QualityWords();
std::span<const char* const> SpeedWords();

/// The encoders of the codec in hardware of this kind, or, where `hardware` is empty, in software.
std::vector<FilmEncoder> EncodersOf(const FilmCodec& codec, const std::string& hardware);

/// Throws UsageError when no encoder in this hardware codes such films; none is needed where
/// `hardware` is empty.
void CheckHardware(const FilmCodec& codec, const std::string& hardware, const FilmFormat& format);

/// The options of an encoder for a film of this quality, one of QualityWords or a constant quality
/// of the encoder's own scale, and this speed; empty texts ask for the usual ones. Throws
/// UsageError that names --quality or --speed.
std::string EncoderOptions(const FilmCodec& codec, const FilmEncoder& encoder,
                           const std::string& quality, const std::string& speed);

/// Whether films of this kind hold a codec's pictures, and may have sound.
bool IsContainer(const std::string& kind);

/// The codec called `name`, or when it is empty the one usual in films of `kind`. Throws UsageError
/// when there is no such codec or the kind does not hold it.
const FilmCodec& CodecFor(const std::string& kind, const std::string& name);

/// Throws UsageError when the codec cannot hold films of this format.
void CheckFormat(const FilmCodec& codec, const FilmFormat& format);

}  // namespace kelto::host
