// Coded sound, packet by packet.
#pragma once

#include "host/film/libav.h"

namespace kelto::host {

class SoundPackets {
 public:
  virtual ~SoundPackets() = default;
  /// The next packet, in units of TimeBase(), 0 being the film's beginning; false at the end.
  /// Throws Error.
  virtual bool Read(AVPacket& packet) = 0;
  virtual AVRational TimeBase() const = 0;
  /// Fills in what a container has to know.
  virtual void Describe(AVCodecParameters& sound) const = 0;

 protected:
  SoundPackets() = default;
  SoundPackets(const SoundPackets&) = delete;
  SoundPackets& operator=(const SoundPackets&) = delete;
};

}  // namespace kelto::host
