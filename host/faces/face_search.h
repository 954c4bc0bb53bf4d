// The faces in a photograph, by what knows best of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/effect/photo.h"
#include "host/options/photo_rect.h"

namespace kelto::host {

enum class FacesBy { kNobody, kMetadata, kModel, kCascades };

struct FoundFaces {
  FacesBy by = FacesBy::kNobody;   ///< kNobody where there are none
  std::vector<PhotoRect> faces{};  ///< in pixels of the upright photo, within it
};

/// The faces that the photo's metadata name; else those that the YuNet model in the file `model`
/// finds, where one is given; else those that OpenCV's cascades find. Works in this process, which
/// is one that may read the photo and the model and write nowhere. Decodes into `pixels` where the
/// metadata name none. Throws Error that names photo or model.
FoundFaces SearchFaces(const Photo& photo, const std::string& model, std::vector<uint8_t>& pixels);

/// The same in a process of its own.
FoundFaces LookForFaces(const Photo& photo, const std::string& model);

/// How many there are and who found them, "2, by OpenCV's cascades".
std::string TextOf(const FoundFaces& found);

}  // namespace kelto::host
