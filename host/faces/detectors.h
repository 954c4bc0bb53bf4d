// Faces by what a picture looks like.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framing/pixel_size.h"
#include "host/options/photo_rect.h"

namespace kelto::host {

/// Pixels B, G, R, A without padding, upright; all of `size`.
struct PixelsToSearch {
  PixelSize size;
  const uint8_t* bytes = nullptr;
};

/// Why FacesByCascades finds nothing on this machine; empty where it can.
std::string CascadesFault();

/// The faces that look at the camera, from left to right, by OpenCV's cascades for such faces. A
/// face has to be found by two of them, several times over, and take a twentieth of the picture's
/// shorter side, because single cascades take clouds and leaves for faces. None where the machine
/// lacks the cascades. The same picture gets the same faces.
std::vector<PhotoRect> FacesByCascades(const PixelsToSearch& picture);

/// Why FacesByModel cannot be used in this build; empty where it can.
std::string ModelFault();

/// The faces that the YuNet model in the file `model` finds, from left to right. Throws Error that
/// names the file where OpenCV cannot use it, and UsageError in a build without.
std::vector<PhotoRect> FacesByModel(const PixelsToSearch& picture, const std::string& model);

}  // namespace kelto::host
