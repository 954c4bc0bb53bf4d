#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "host/moves/interest.h"

namespace kelto::host {
namespace {

/// Side of a square of as many pixels as the picture has when it is looked at: coarse, since
/// subjects are large.
constexpr double kMapSide = 64.0;
constexpr double kBlur = 2.5;
/// The same for the picture in which sharpness is seen.
constexpr double kSharpSide = 8 * kMapSide;
/// What a place that is out of focus counts.
constexpr double kBlurred = 0.3;

/// A channel that goes on evenly where its opposite edges meet, as a Fourier transform takes it to.
cv::Mat WithoutJumps(const cv::Mat& channel) {
  const int width = channel.cols, height = channel.rows;
  cv::Mat jumps = cv::Mat::zeros(channel.size(), CV_32F);
  for (int y = 0; y < height; ++y) {
    const float jump = channel.at<float>(y, width - 1) - channel.at<float>(y, 0);
    jumps.at<float>(y, 0) += jump;
    jumps.at<float>(y, width - 1) -= jump;
  }
  for (int x = 0; x < width; ++x) {
    const float jump = channel.at<float>(height - 1, x) - channel.at<float>(0, x);
    jumps.at<float>(0, x) += jump;
    jumps.at<float>(height - 1, x) -= jump;
  }
  // The smooth picture with these jumps solves a discrete Poisson equation.
  cv::Mat spectrum, smooth;
  cv::dft(jumps, spectrum, cv::DFT_COMPLEX_OUTPUT);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double laplacian =
          2 * std::cos(2 * CV_PI * x / width) + 2 * std::cos(2 * CV_PI * y / height) - 4;
      const bool mean = x == 0 && y == 0;
      spectrum.at<cv::Vec2f>(y, x) *= mean ? 0.0f : static_cast<float>(1 / laplacian);
    }
  }
  cv::dft(spectrum, smooth, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
  return channel - smooth;
}

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

/// The size of a picture shrunk to about as many pixels as a square of this side has, 1 by 1 at the
/// least; its own where it has no more.
cv::Size SizeWithin(double side, const cv::Mat& picture) {
  const double scale = std::min(1.0, side / std::sqrt(static_cast<double>(picture.total())));
  return {std::max(1, cvRound(picture.cols * scale)), std::max(1, cvRound(picture.rows * scale))};
}

/// How sharp the picture is at each place of a map of this size, from 0 to 1, which a twentieth of
/// the places reach: what it differs from its surroundings by, seen much finer than the map.
cv::Mat SharpnessOf(const cv::Mat& picture, cv::Size size) {
  cv::Mat lightness, differences, sharpness;
  cv::cvtColor(picture, lightness, cv::COLOR_BGRA2GRAY);
  lightness.convertTo(lightness, CV_32F);
  cv::Laplacian(lightness, differences, CV_32F);
  cv::resize(cv::abs(differences), sharpness, size, 0, 0, cv::INTER_AREA);
  cv::GaussianBlur(sharpness, sharpness, {}, kBlur, kBlur, cv::BORDER_REPLICATE);
  std::vector<float> sorted(sharpness.begin<float>(), sharpness.end<float>());
  const auto high = sorted.begin() + static_cast<ptrdiff_t>(sorted.size() * 19 / 20);
  std::nth_element(sorted.begin(), high, sorted.end());
  return cv::min(sharpness / (*high + 1e-6f), 1.0);
}

/// What a place counts along one side: 1 in its middle, half at its ends.
float WeightAt(int place, int places) {
  const double fromMiddle = (2 * place + 1.0) / places - 1;
  return static_cast<float>(1 - 0.5 * fromMiddle * fromMiddle);
}

}  // namespace

cv::Mat InterestOf(const PhotoPixels& pixels) {
  const cv::Mat whole(pixels.size.height, pixels.size.width, CV_8UC4,
                      const_cast<uint8_t*>(pixels.bytes.data()));
  // Of the one that sharpness is seen in: a large picture is gone through once.
  cv::Mat fine, small, colours, lab;
  const cv::Size size = SizeWithin(kMapSide, whole);
  cv::resize(whole, fine, SizeWithin(kSharpSide, whole), 0, 0, cv::INTER_AREA);
  cv::resize(fine, small, size, 0, 0, cv::INTER_AREA);
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
    cv::Mat residual = SpectralResidual(WithoutJumps(channel));
    cv::GaussianBlur(residual, residual, {}, kBlur, kBlur, cv::BORDER_REPLICATE);
    interest += residual / (cv::sum(residual)[0] + 1e-12) * (most - least);
  }
  interest = interest.mul(kBlurred + (1 - kBlurred) * SharpnessOf(fine, size));
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      interest.at<float>(y, x) *= WeightAt(x, size.width) * WeightAt(y, size.height);
    }
  }
  return interest;
}

}  // namespace kelto::host
