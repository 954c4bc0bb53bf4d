// How many bits films hold a channel, and whether they hold transparency.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/film/formats.h"

namespace kelto::host {

/// The bits a channel that films of this kind and codec can have, ascending; `transparent` ones.
std::vector<int32_t> DepthsOf(const FilmKind& kind, const std::string& codec, bool transparent);

/// Whether films of this kind and codec can be transparent.
bool HoldsAlpha(const FilmKind& kind, const std::string& codec);

/// Reads "8", "10", "16" or "auto", which is 0. Throws UsageError.
int32_t ParseDepth(const std::string& text);

/// What is asked of a film, and what its photo has.
struct DepthAsked {
  int32_t depth = 0;         ///< 0: as the photo and the film allow
  int32_t photoBits = 8;     ///< of a sample of the photo
  bool transparent = false;  ///< whether the film is to have nothing behind the photo
  bool hardware = false;     ///< whether the encoder is one in hardware, which has eight bits
};

/// The depth of such a film. Throws UsageError that says what to use instead, where the film cannot
/// have it, or cannot be transparent.
int32_t DepthOf(const FilmKind& kind, const std::string& codec, const DepthAsked& asked);

/// Opens a film whose frames come in FrameLayout(kind, request): one that holds fewer bits than
/// they have gets them dithered.
std::unique_ptr<FrameSink> OpenFilm(const FilmKind& kind, const FilmRequest& request);

/// The layout of the frames that a film takes.
PixelLayout FrameLayout(const FilmKind& kind, const FilmRequest& request);

}  // namespace kelto::host
