// What photographs say of themselves beside their pixels: EXIF, XMP and IPTC. Parsers read it in a
// process that may write nowhere; see host/processes/reader_process.h.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// A face by what the photo's metadata say, in widths and heights of the upright photo.
struct FaceRegion {
  double left = 0.0, top = 0.0, width = 0.0, height = 0.0;
  bool operator==(const FaceRegion&) const = default;
};

struct PhotoNotes {
  std::string date{};         ///< the day on which it was taken, as YYYY-MM-DD; empty if unknown
  std::string description{};  ///< UTF-8, of whatever the file has; empty for none
  std::vector<FaceRegion> faces{};
};

/// Reads them in this process. What is damaged counts as absent.
PhotoNotes ReadNotes(const std::string& path);

/// The same in a process of its own. Throws Error where that process fails or the file cannot be
/// read.
PhotoNotes LookAtNotes(const std::string& path);

}  // namespace kelto::host
