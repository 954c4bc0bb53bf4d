#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include "host/moves/auto_move.h"

namespace kelto::host {
namespace {

/// Side of a square of as many pixels as the picture has when it is looked at: coarse, since
/// subjects are large.
constexpr double kMapSide = 64.0;
constexpr double kBlur = 2.5;

/// How eye-catching each place of one channel is.
cv::Mat SpectralResidual(const cv::Mat& channel) {
  cv::Mat spectrum, parts[2], magnitude, angle, ordinary;
  cv::dft(channel, spectrum, cv::DFT_COMPLEX_OUTPUT);
  cv::split(spectrum, parts);
  cv::cartToPolar(parts[0], parts[1], magnitude, angle);
  magnitude += 1e-6f;
  cv::log(magnitude, magnitude);
  cv::blur(magnitude, ordinary, {3, 3});
  cv::exp(magnitude - ordinary, magnitude);
  cv::polarToCart(magnitude, angle, parts[0], parts[1]);
  cv::merge(parts, 2, spectrum);
  cv::Mat residual;
  cv::dft(spectrum, residual, cv::DFT_INVERSE | cv::DFT_SCALE);
  cv::split(residual, parts);
  return parts[0].mul(parts[0]) + parts[1].mul(parts[1]);
}

/// One value for each place of a picture shrunk by kMapSide; they add up to 1.
cv::Mat Interest(const PhotoPixels& pixels) {
  const cv::Mat whole(pixels.size.height, pixels.size.width, CV_8UC4,
                      const_cast<uint8_t*>(pixels.bytes.data()));
  const double scale = std::min(1.0, kMapSide / std::sqrt(static_cast<double>(whole.total())));
  const cv::Size size(std::max(1, cvRound(whole.cols * scale)),
                      std::max(1, cvRound(whole.rows * scale)));
  cv::Mat small, colours, lab;
  cv::resize(whole, small, size, 0, 0, cv::INTER_AREA);
  cv::cvtColor(small, colours, cv::COLOR_BGRA2BGR);
  colours.convertTo(colours, CV_32F, 1 / 255.0);
  // Lightness and two axes of colour, apart about as far as the eye distinguishes them.
  cv::cvtColor(colours, lab, cv::COLOR_BGR2Lab);
  std::vector<cv::Mat> channels;
  cv::split(lab, channels);
  cv::Mat interest = cv::Mat::zeros(size, CV_32F);
  for (const cv::Mat& channel : channels) {
    double least = 0, most = 0;
    cv::minMaxLoc(channel, &least, &most);
    // Of an even channel only rounding remains.
    if (most - least < 1.0) continue;
    cv::Mat residual = SpectralResidual(channel);
    cv::GaussianBlur(residual, residual, {}, kBlur, kBlur, cv::BORDER_REPLICATE);
    interest += residual / (cv::sum(residual)[0] + 1e-12) * (most - least);
  }
  return interest;
}

/// The centre of the window of this size within the photo that has the most interest in it, what
/// lies in its middle counting more. In photo pixels; the photo's middle where nothing is special.
cv::Point2d BestCentre(const PhotoPixels& pixels, const PhotoRect& window) {
  const cv::Mat interest = Interest(pixels);
  const double scale = static_cast<double>(interest.cols) / pixels.size.width;
  const cv::Size half(std::max(1, cvRound(window.width * scale / 2)),
                      std::max(1, cvRound(window.height * scale / 2)));
  // Twice a box is a tent.
  cv::Mat sums;
  cv::boxFilter(interest, sums, -1, half, {-1, -1}, false, cv::BORDER_CONSTANT);
  cv::boxFilter(sums, sums, -1, half, {-1, -1}, false, cv::BORDER_CONSTANT);
  const double width = pixels.size.width, height = pixels.size.height;
  cv::Point2d best(width / 2, height / 2);
  float most = 0.0f;
  for (int y = 0; y < sums.rows; ++y) {
    for (int x = 0; x < sums.cols; ++x) {
      if (!(sums.at<float>(y, x) > most)) continue;
      most = sums.at<float>(y, x);
      best = {(x + 0.5) / scale, (y + 0.5) * height / sums.rows};
    }
  }
  return best;
}

}  // namespace

bool CanFindInterest() { return true; }

Libraries AutoMoveLibraries() { return {{"OpenCV", cv::getVersionString()}}; }

std::vector<PhotoRect> AutoMove(const PhotoViews& views, const PhotoPixels& pixels, Fit fit,
                                double amount) {
  const PhotoRect fill = views.Fill();
  const PhotoRect wide = fit == Fit::kBeside ? views.Whole() : fill;
  const PhotoRect window = views.About(0, 0, wide.width / amount);
  const cv::Point2d centre = BestCentre(pixels, window);
  const PhotoRect last = views.Inside(views.About(centre.x, centre.y, window.width));
  const PhotoRect first =
      fit != Fit::kFill ? views.Whole()
                        : views.Inside(views.About(last.CentreX(), last.CentreY(), fill.width));
  return {first, last};
}

}  // namespace kelto::host
