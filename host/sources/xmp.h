// XMP: metadata as XML, in a packet within the file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/sources/metadata.h"

namespace kelto::host {

struct XmpNotes {
  std::string date{};         ///< when the photo was taken, as it stands there
  std::string description{};  ///< in the language that counts where nothing is asked for
  /// Regions of the Metadata Working Group that are faces, and rectangles of IPTC's image regions
  /// that are people; in the orientation in which the photo is stored, and within it.
  std::vector<FaceRegion> faces{};
  /// Of the photo that the regions were drawn on, in pixels; 0 where nothing is said.
  double appliedWidth = 0.0, appliedHeight = 0.0;
};

/// The first packet in a file's bytes; empty where there is none.
std::string_view XmpPacketIn(std::string_view bytes);

/// Reads a packet. What is damaged counts as absent.
XmpNotes ReadXmp(std::string_view packet);

/// A region of a stored photo as it is when the photo is turned upright by an EXIF orientation,
/// 1..8.
FaceRegion Upright(const FaceRegion& region, int orientation);

}  // namespace kelto::host
