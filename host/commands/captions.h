// The texts of captions.
#pragma once

#include <string>

namespace kelto::host {

/// The text of `caption` for the picture `photo`: {name} becomes the name of its file without its
/// ending, with spaces for underscores, {date} the day on which it was taken, as YYYY-MM-DD, and
/// {description} what its metadata describe it as; nothing where they do not say. "\\n" begins a
/// line. Spaces and lines that remain at the ends are left out. Reads the photo in a process of its
/// own where that is needed. Throws UsageError for other names in braces and for longer texts than
/// captions have, and Error for the photo.
std::string CaptionFor(const std::string& caption, const std::string& photo);

/// The same text without what stands for something of a photo. Throws UsageError.
std::string TitleText(const std::string& title);

}  // namespace kelto::host
