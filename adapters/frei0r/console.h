// What the user of a host reads: lines on the standard error.
#pragma once

#include <string>

namespace kelto::frei0r {

/// Writes "kelto_pan_zoom: TEXT" as one line, the first time only: a host asks for the same frames
/// of the same settings again and again, on several threads. `topic` says what counts as the same
/// ("" for the text itself). Control characters become '?'.
void SayOnce(const std::string& text, const std::string& topic = "");

}  // namespace kelto::frei0r
