// Coded sound as bytes, on its way from the process that reads it.
#pragma once

#include <string>

#include "host/film/libav.h"

namespace kelto::host {

/// What a container has to know of a stream of sound.
struct SoundForm {
  Owned<AVCodecParameters> sound;
  AVRational timeBase{};
};

std::string BytesOf(const AVCodecParameters& sound, AVRational timeBase);
/// Throws Error, which says only what is wrong, where the bytes are not such a form, or the sound
/// is beyond the limits of media_limits.h.
SoundForm FormFrom(const std::string& bytes);

std::string BytesOf(const AVPacket& packet);
/// Puts what BytesOf made into `packet`. Throws Error, which says only what is wrong.
void PacketFrom(const std::string& bytes, AVPacket& packet);

}  // namespace kelto::host
