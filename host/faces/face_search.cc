#include "host/faces/face_search.h"

#include <cmath>
#include <cstring>

#include "host/base/error.h"
#include "host/faces/detectors.h"
#include "host/files/input_file.h"
#include "host/processes/reader_process.h"
#include "host/sources/metadata.h"

namespace kelto::host {
namespace {

constexpr size_t kMostFound = 200;

/// A process that a photo has taken over may say anything.
bool IsWithin(const PhotoRect& face, const Photo& photo) {
  constexpr double kRounding = 1e-3;
  return face.width > 0 && face.height > 0 && face.x >= -kRounding && face.y >= -kRounding &&
         face.Right() <= photo.width + kRounding && face.Bottom() <= photo.height + kRounding;
}

}  // namespace

FoundFaces SearchFaces(const Photo& photo, const std::string& model, std::vector<uint8_t>& pixels) {
  FoundFaces found;
  for (FaceRegion face : ReadNotes(photo.given).faces) {
    for (int32_t degrees = 0; degrees < photo.rotate; degrees += 90) {
      face = {1 - face.top - face.height, face.left, face.height, face.width};
    }
    found.faces.push_back({face.left * photo.width, face.top * photo.height,
                           face.width * photo.width, face.height * photo.height});
  }
  if (!found.faces.empty()) {
    found.by = FacesBy::kMetadata;
    return found;
  }
  pixels = DecodePhoto(photo);
  const PixelsToSearch picture{{photo.width, photo.height}, pixels.data()};
  found.faces = model.empty() ? FacesByCascades(picture) : FacesByModel(picture, model);
  if (found.faces.size() > kMostFound) found.faces.resize(kMostFound);
  if (!found.faces.empty()) found.by = model.empty() ? FacesBy::kCascades : FacesBy::kModel;
  return found;
}

FoundFaces LookForFaces(const Photo& photo, const std::string& model) {
  if (!model.empty()) CheckFile(model, "a YuNet model");
  const std::string bytes = ReadApart(photo.given, {model}, [&] {
    std::vector<uint8_t> pixels;
    const FoundFaces found = SearchFaces(photo, model, pixels);
    std::string text(1, static_cast<char>(found.by));
    for (const PhotoRect& face : found.faces) {
      const double numbers[] = {face.x, face.y, face.width, face.height};
      text.append(reinterpret_cast<const char*>(numbers), sizeof numbers);
    }
    return text;
  });
  FoundFaces found;
  double numbers[4];
  for (size_t at = 1; at + sizeof numbers <= bytes.size(); at += sizeof numbers) {
    std::memcpy(numbers, &bytes[at], sizeof numbers);
    const PhotoRect face{numbers[0], numbers[1], numbers[2], numbers[3]};
    if (IsWithin(face, photo) && found.faces.size() < kMostFound) found.faces.push_back(face);
  }
  if (!found.faces.empty() && bytes[0] >= 0 && bytes[0] <= static_cast<char>(FacesBy::kCascades)) {
    found.by = static_cast<FacesBy>(bytes[0]);
  }
  return found;
}

std::string TextOf(const FoundFaces& found) {
  const std::string count = std::to_string(found.faces.size());
  switch (found.by) {
    case FacesBy::kMetadata:
      return count + ", named by the photo's metadata";
    case FacesBy::kModel:
      return count + ", found by the model of --face-model";
    case FacesBy::kCascades:
      return count + ", found by OpenCV's cascades";
    case FacesBy::kNobody:
      break;
  }
  return "none found";
}

}  // namespace kelto::host
