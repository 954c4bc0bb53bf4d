#include "host/facts/show_summary.h"

#include <cstdio>

#include "host/base/shown_text.h"
#include "host/base/texts.h"
#include "host/facts/film_summary.h"
#include "host/options/size.h"

namespace kelto::host {
namespace {

std::string LineOf(const std::string& modulePath, const PictureOfShow& picture, bool& isSoft) {
  FrameInspector inspector(modulePath, picture.plan, picture.photo);
  const FilmSummary summary = SummaryOf(inspector);
  const double rate = picture.plan.format.rate.PerSecond();
  const bool soft = summary.enlargement.value > kMostEnlargement;
  isSoft = isSoft || soft;
  char numbers[160];
  std::snprintf(numbers, sizeof numbers, "%8.2f %8.2f %8.2f %8.3f %10.2f%s  ", picture.begin / rate,
                picture.plan.frames / rate, picture.fade / rate, summary.fastest.value,
                summary.enlargement.value, soft ? "*" : " ");
  return numbers + ShownText(picture.photo.given) + ", " + std::to_string(picture.photo.width) +
         "x" + std::to_string(picture.photo.height) + "\n";
}

}  // namespace

std::string ShowSummaryText(const std::string& modulePath,
                            const std::vector<PictureOfShow>& pictures, int32_t frames,
                            const std::string& audio) {
  const FilmFormat& format = pictures.front().plan.format;
  const double rate = format.rate.PerSecond();
  const bool whole = format.rate.denominator == 1;
  std::string text = "show:   " + std::to_string(pictures.size()) +
                     (pictures.size() == 1 ? " picture, " : " pictures, ") +
                     FixedText(frames / rate, 2) + " s, " + std::to_string(frames) + " frames at " +
                     FixedText(rate, whole ? 0 : 3) + " fps, " + ToString(format.size) +
                     (format.Interlaced() ? ", interlaced\n" : "\n");
  if (!audio.empty()) text += "sound:  " + ShownText(audio) + "\n";
  text += "\n  begins     seen     fade  fastest enlargement  photo\n";
  bool isSoft = false;
  for (const PictureOfShow& picture : pictures) text += LineOf(modulePath, picture, isSoft);
  if (isSoft) {
    text += "\n* above " + FixedText(kMostEnlargement, 1) +
            " times the picture looks soft; zoom in less, make the film smaller, or use a larger "
            "photo\n";
  }
  return text;
}

}  // namespace kelto::host
