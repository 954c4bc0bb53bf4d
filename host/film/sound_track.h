// The sound of a film: another file's, from its beginning, no longer than the pictures.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/film/libav.h"
#include "host/film/sound_packets.h"

namespace kelto::host {

/// Where a film's sound comes from and what becomes of it.
struct SoundRequest {
  std::string file;
  std::string kind;        ///< the film's, as --format takes it
  bool editList = false;   ///< whether the container can hide what a decoder needs before time 0
  AVRational frameTime{};  ///< seconds a frame
  int64_t frames = 0;      ///< of the whole film, where the sound is cut
  bool repeat = false;     ///< whether it begins again where it ends before the film
  double fade = 0.0;       ///< seconds in which it fades out at the film's end
};

class SoundTrack {
 public:
  virtual ~SoundTrack() = default;
  /// Writes to the container what sounds before frame number `frame` begins, as far as there is
  /// sound. Throws Error.
  virtual void WriteUntil(int64_t frame) = 0;

 protected:
  SoundTrack() = default;
  SoundTrack(const SoundTrack&) = delete;
  SoundTrack& operator=(const SoundTrack&) = delete;
};

/// The sound of a file as a container takes it: copied as it is where the container has a place for
/// it, else coded as AAC, or Opus in WebM. When the file has pictures too, their beginning is the
/// film's. Throws Error when the file has no sound.
std::unique_ptr<SoundPackets> OpenSound(const SoundRequest& request,
                                        const AVFormatContext& container);

/// Adds a stream of sound to a container whose header is not written yet.
std::unique_ptr<SoundTrack> AddSoundTrack(const SoundRequest& request, AVFormatContext& container,
                                          std::unique_ptr<SoundPackets> packets);

}  // namespace kelto::host
