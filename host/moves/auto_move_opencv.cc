#include <algorithm>
#include <array>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <vector>

#include "host/moves/auto_move.h"
#include "host/moves/interest.h"
#include "host/moves/stretch.h"

namespace kelto::host {
namespace {

/// The share of all interest that makes a connected area the subject, and the share of the greatest
/// area's that makes others subjects beside it.
constexpr double kSubject = 0.12, kBesideIt = 0.5;
/// What is left around a subject, as a factor of its size.
constexpr double kRoom = 1.1;
/// A move that keeps a large subject whole still goes in by this factor.
constexpr double kLeastAmount = 1.05;

/// Places of a map of interest as parts of the photo.
class MapOfPhoto {
 public:
  MapOfPhoto(const cv::Mat& interest, PixelSize photo)
      : across_(static_cast<double>(photo.width) / interest.cols),
        down_(static_cast<double>(photo.height) / interest.rows) {}

  cv::Point2d Middle(int x, int y) const { return {(x + 0.5) * across_, (y + 0.5) * down_}; }
  PhotoRect Part(const cv::Rect& places) const {
    return {places.x * across_, places.y * down_, places.width * across_, places.height * down_};
  }
  /// At least 1 by 1.
  cv::Size Places(double width, double height) const {
    return {std::max(1, cvRound(width / across_)), std::max(1, cvRound(height / down_))};
  }

 private:
  double across_, down_;  ///< photo pixels a place
};

/// The centre of the window of this size within the photo that has the most interest in it, what
/// lies in its middle counting more. In photo pixels; the photo's middle where nothing is special.
cv::Point2d BestCentre(const cv::Mat& interest, const MapOfPhoto& map, const PhotoRect& window,
                       const PhotoRect& photo) {
  const cv::Size half = map.Places(window.width / 2, window.height / 2);
  // Twice a box is a tent.
  cv::Mat sums;
  cv::boxFilter(interest, sums, -1, half, {-1, -1}, false, cv::BORDER_CONSTANT);
  cv::boxFilter(sums, sums, -1, half, {-1, -1}, false, cv::BORDER_CONSTANT);
  cv::Point2d best(photo.CentreX(), photo.CentreY());
  float most = 0.0f;
  for (int y = 0; y < sums.rows; ++y) {
    for (int x = 0; x < sums.cols; ++x) {
      if (!(sums.at<float>(y, x) > most)) continue;
      most = sums.at<float>(y, x);
      best = map.Middle(x, y);
    }
  }
  return best;
}

/// The areas of more interest than `threshold` that a view should show whole: the one that has the
/// most, if that is enough to be the subject, and those about as strong.
std::optional<cv::Rect> SubjectsAbove(const cv::Mat& interest, double threshold) {
  const cv::Mat above = interest > threshold;
  cv::Mat labels, boxes, centres;
  const int count = cv::connectedComponentsWithStats(above, labels, boxes, centres);
  std::vector<double> masses(static_cast<size_t>(count), 0.0);
  for (int y = 0; y < interest.rows; ++y) {
    for (int x = 0; x < interest.cols; ++x) {
      masses[static_cast<size_t>(labels.at<int>(y, x))] += interest.at<float>(y, x);
    }
  }
  masses[0] = 0.0;  // of what is not above it
  const double most = *std::max_element(masses.begin(), masses.end());
  if (!(most > kSubject * cv::sum(interest)[0])) return std::nullopt;
  cv::Rect all;
  for (int i = 1; i < count; ++i) {
    if (masses[static_cast<size_t>(i)] < kBesideIt * most) continue;
    const auto side = [&](int which) { return boxes.at<int>(i, which); };
    all |= cv::Rect(side(cv::CC_STAT_LEFT), side(cv::CC_STAT_TOP), side(cv::CC_STAT_WIDTH),
                    side(cv::CC_STAT_HEIGHT));
  }
  return all;
}

/// The part of the photo that has the subjects, if there are any and a view as large as `most` can
/// show them: less of what surrounds them rather than none whole.
std::optional<PhotoRect> Subjects(const cv::Mat& interest, const MapOfPhoto& map,
                                  const PhotoRect& most) {
  cv::Scalar mean, deviation;
  cv::meanStdDev(interest, mean, deviation);
  for (const double deviations : {1.5, 2.0, 2.5, 3.0}) {
    const auto all = SubjectsAbove(interest, mean[0] + deviations * deviation[0]);
    if (!all) return std::nullopt;
    const PhotoRect part = map.Part(*all);
    if (part.width <= most.width && part.height <= most.height) return part;
  }
  return std::nullopt;
}

}  // namespace

bool CanFindInterest() { return true; }

Libraries AutoMoveLibraries() { return {{"OpenCV", cv::getVersionString()}}; }

std::vector<PhotoRect> AutoMove(const PhotoViews& views, const PhotoPixels& pixels, Fit fit,
                                double amount) {
  const PhotoRect fill = views.Fill();
  const PhotoRect wide = fit == Fit::kBeside ? views.Whole() : fill;
  PhotoRect window = views.About(0, 0, wide.width / amount);
  const cv::Mat interest = InterestOf(pixels);
  const MapOfPhoto map(interest, pixels.size);
  const cv::Point2d centre = BestCentre(interest, map, window, views.Photo());
  const std::optional<PhotoRect> subjects = Subjects(interest, map, fill);
  if (subjects) {
    const double needed =
        kRoom * std::max(subjects->width, subjects->height * fill.width / fill.height);
    const double most = fit == Fit::kFill ? fill.width / kLeastAmount : fill.width;
    window = views.About(0, 0, std::max(window.width, std::min(needed, most)));
  }
  PhotoRect last = views.About(centre.x, centre.y, window.width);
  if (subjects) {
    last.x = BeginHaving(last.x, last.width, subjects->x, subjects->Right());
    last.y = BeginHaving(last.y, last.height, subjects->y, subjects->Bottom());
  }
  last = views.Inside(last);
  const PhotoRect first =
      fit != Fit::kFill ? views.Whole()
                        : views.Inside(views.About(last.CentreX(), last.CentreY(), fill.width));
  return {first, last};
}

}  // namespace kelto::host
