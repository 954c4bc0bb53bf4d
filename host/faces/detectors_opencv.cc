#include <algorithm>
#include <cmath>
#include <filesystem>
#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#include "host/base/error.h"
#include "host/faces/detectors.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// Side that a picture's longer one is reduced to: a face of a twentieth of it still has the pixels
/// that the detectors need.
constexpr double kSearchedSide = 800.0;
/// Of the picture's shorter side.
constexpr double kLeastFace = 0.05;
constexpr int kLeastPixels = 24;
/// How much larger a cascade's window grows from one look at the picture to the next.
constexpr double kWindowStep = 1.1;
/// How many windows about a face must agree, of the cascade that finds it and of the one that is
/// asked whether it sees it, too.
constexpr int kFound = 6, kConfirmed = 3;

constexpr const char* kFinder = "haarcascade_frontalface_alt2.xml";
constexpr const char* kConfirmer = "haarcascade_frontalface_alt.xml";

std::string CascadeFile(const char* name) { return (fs::path(KELTO_CASCADES) / name).string(); }

/// OpenCV's threads would make the order of faces depend on the machine, and its log would be taken
/// for what codecs print.
void SettleOpenCv() {
  cv::setNumThreads(1);
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
}

/// The picture in blue, green and red, reduced; `scale` is its size by the picture's.
cv::Mat Reduced(const PixelsToSearch& picture, double& scale) {
  const cv::Mat whole(picture.size.height, picture.size.width, CV_8UC4,
                      const_cast<uint8_t*>(picture.bytes));
  scale = std::min(1.0, kSearchedSide / std::max(whole.cols, whole.rows));
  const cv::Size size(std::max(1, cvRound(whole.cols * scale)),
                      std::max(1, cvRound(whole.rows * scale)));
  cv::Mat small, colours;
  cv::resize(whole, small, size, 0, 0, cv::INTER_AREA);
  cv::cvtColor(small, colours, cv::COLOR_BGRA2BGR);
  return colours;
}

/// A part of the reduced picture as one of the picture, within it.
PhotoRect InPicture(const cv::Rect2d& part, double scale, PixelSize size) {
  const cv::Rect2d whole(0, 0, size.width, size.height);
  const cv::Rect2d face(part.x / scale, part.y / scale, part.width / scale, part.height / scale);
  const cv::Rect2d inside = face & whole;
  return {inside.x, inside.y, inside.width, inside.height};
}

std::vector<PhotoRect> Sorted(std::vector<PhotoRect> faces) {
  std::sort(faces.begin(), faces.end(), [](const PhotoRect& a, const PhotoRect& b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
  });
  return faces;
}

/// Whether the other cascade sees a face of about this size there, too.
bool IsConfirmed(cv::CascadeClassifier& confirmer, const cv::Mat& grey, const cv::Rect& face) {
  const int room = face.width / 4;
  const cv::Rect around(face.x - room, face.y - room, face.width + 2 * room,
                        face.height + 2 * room);
  std::vector<cv::Rect> again;
  confirmer.detectMultiScale(grey(around & cv::Rect({}, grey.size())), again, kWindowStep,
                             kConfirmed, 0, face.size() * 2 / 3, face.size() * 3 / 2);
  return !again.empty();
}

}  // namespace

std::string CascadesFault() {
  for (const char* name : {kFinder, kConfirmer}) {
    std::error_code error;
    if (!fs::is_regular_file(CascadeFile(name), error)) {
      return CascadeFile(name) + " is missing; install the package opencv-data";
    }
  }
  return "";
}

std::string ModelFault() { return ""; }

std::vector<PhotoRect> FacesByCascades(const PixelsToSearch& picture) {
  if (!CascadesFault().empty()) return {};
  SettleOpenCv();
  double scale = 1.0;
  cv::Mat grey;
  cv::cvtColor(Reduced(picture, scale), grey, cv::COLOR_BGR2GRAY);
  cv::equalizeHist(grey, grey);
  const int least = std::max(kLeastPixels, cvRound(kLeastFace * std::min(grey.cols, grey.rows)));
  std::vector<PhotoRect> faces;
  try {
    cv::CascadeClassifier finder(CascadeFile(kFinder)), confirmer(CascadeFile(kConfirmer));
    std::vector<cv::Rect> found;
    finder.detectMultiScale(grey, found, kWindowStep, kFound, 0, {least, least});
    for (const cv::Rect& face : found) {
      if (IsConfirmed(confirmer, grey, face)) {
        faces.push_back(InPicture(face, scale, picture.size));
      }
    }
  } catch (const cv::Exception& error) {
    throw Error(std::string(KELTO_CASCADES) + ": cannot be used: " + error.err +
                "; install the package opencv-data again");
  }
  return Sorted(std::move(faces));
}

std::vector<PhotoRect> FacesByModel(const PixelsToSearch& picture, const std::string& model) {
  constexpr float kLeastScore = 0.8f, kMostOverlap = 0.3f;
  constexpr int kMostFaces = 200;
  SettleOpenCv();
  double scale = 1.0;
  const cv::Mat colours = Reduced(picture, scale);
  cv::Mat found;
  try {
    const cv::Ptr<cv::FaceDetectorYN> detector = cv::FaceDetectorYN::create(
        model, "", colours.size(), kLeastScore, kMostOverlap, kMostFaces);
    detector->detect(colours, found);
  } catch (const cv::Exception& error) {
    const std::string reason = error.err.substr(0, error.err.find('\n'));
    throw Error(model + ": cannot be used as a YuNet model by OpenCV " + cv::getVersionString() +
                ", which takes face_detection_yunet_2022mar.onnx: " + reason);
  }
  std::vector<PhotoRect> faces;
  for (int i = 0; i < found.rows; ++i) {
    const float* row = found.ptr<float>(i);
    const PhotoRect face = InPicture({row[0], row[1], row[2], row[3]}, scale, picture.size);
    if (face.width >= 1.0 && face.height >= 1.0) faces.push_back(face);
  }
  return Sorted(std::move(faces));
}

}  // namespace kelto::host
