// A build without the library that looks at pictures.
#include "host/base/error.h"
#include "host/faces/detectors.h"

namespace kelto::host {

std::string CascadesFault() { return "this build lacks OpenCV"; }

std::string ModelFault() { return CascadesFault(); }

std::vector<PhotoRect> FacesByCascades(const PixelsToSearch&) { return {}; }

std::vector<PhotoRect> FacesByModel(const PixelsToSearch&, const std::string&) {
  throw UsageError("--face-model: this build cannot look at pictures; leave the option out");
}

}  // namespace kelto::host
