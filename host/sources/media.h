// What the command learns of videos and sound before they go into a film. Demultiplexers and
// decoders read them in a process that may write nowhere; see host/processes/reader_process.h.
#pragma once

#include <string>

#include "host/video/video_info.h"

namespace kelto::host {

/// LookAtVideo in a process of its own. Throws Error when there is no such video.
VideoInfo CheckVideo(const std::string& path);

/// Throws Error when the file has no sound for a film.
void CheckSoundFile(const std::string& path);

/// SoundSeconds in a process of its own, above 0. Throws Error when the file has no sound.
double LookAtSound(const std::string& path);

}  // namespace kelto::host
