// Sound that another process reads.
#pragma once

#include <memory>

#include "host/film/sound_packets.h"
#include "host/film/sound_track.h"

namespace kelto::host {

/// OpenSound in a process of its own that reads the sound's file and writes nothing; the packets
/// come from there. To be called while this process has no other thread. Throws Error.
std::unique_ptr<SoundPackets> OpenSoundApart(const SoundRequest& request,
                                             const AVFormatContext& container);

}  // namespace kelto::host
