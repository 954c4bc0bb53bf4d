// Parts of a photo, in its pixels.
#pragma once

#include <string_view>

namespace kelto::host {

/// Pixel n reaches from n to n + 1; (0, 0) is the upright photo's upper left corner. May reach
/// outside the photo.
struct PhotoRect {
  double x = 0.0;
  double y = 0.0;
  double width = 1.0;
  double height = 1.0;
  double CentreX() const { return x + width / 2; }
  double CentreY() const { return y + height / 2; }
  double Right() const { return x + width; }
  double Bottom() const { return y + height; }
  bool operator==(const PhotoRect&) const = default;
};

/// Whether `text` has the form of a rectangle, and not that of a zoom with its centre.
bool IsPhotoRect(std::string_view text);

/// Reads "X,Y,WIDTH,HEIGHT", such as "1200,400,1920,1080". Throws UsageError for anything else, and
/// for a width or height that is not above 0.
PhotoRect ParsePhotoRect(std::string_view text);

}  // namespace kelto::host
