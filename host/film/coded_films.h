// The kinds of film that the FFmpeg libraries write. A build without them has none of these, and no
// sound.
#pragma once

#include <span>
#include <string>

#include "host/base/library.h"
#include "host/film/codecs.h"
#include "host/film/formats.h"

namespace kelto::host {

/// Containers and animations; empty in a build without.
std::span<const FilmKind> CodedFilmKinds();

/// The kind of film that people expect who do not say one.
const char* UsualFilmKind();

/// The name of the installed FFmpeg's encoder that codes frames of this size; empty when it has
/// none. In software, or in this hardware, of which it is not said that the machine has it.
std::string InstalledEncoder(const FilmCodec& codec, FrameSize size = {},
                             const std::string& hardware = "");

/// Throws Error when the file `path` has no sound for a film.
void CheckSound(const std::string& path);

/// How long the file's sound is, in seconds: to the end of its last packet, whatever the file says
/// of itself. Throws Error when it has none.
double SoundSeconds(const std::string& path);

/// The libraries that write them.
Libraries CodedFilmLibraries();

}  // namespace kelto::host
