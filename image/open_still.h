// An open still image file.
#pragma once

#include "platform/ipl.h"
#include "platform/still_importer.h"

namespace kelto {

/// Owns an importer and closes it.
class OpenStill {
 public:
  OpenStill() = default;
  OpenStill(const OpenStill&) = delete;
  OpenStill& operator=(const OpenStill&) = delete;
  ~OpenStill() { Close(); }

  bool isOpen() const { return importer_ != nullptr; }
  /// Opens the file that `file` names; the importer's error code.
  OSErr Open(const FSSpec& file);
  /// The picture's bounds in its own coordinates, which need not start at (0, 0).
  OSErr GetBounds(StillRect* bounds) const;
  /// Decodes the picture into the pixels of a BGRA image of the bounds' size and closes the file.
  /// The importer's first error code.
  OSErr DrawAndClose(const StillRect& bounds, const IplImage& target);

 private:
  OSErr Close();

  GraphicsImportComponent importer_ = nullptr;
};

}  // namespace kelto
