#include "host/drawing/storyboard.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/deep/shown_film.h"
#include "host/drawing/axis_ticks.h"
#include "host/drawing/photo_map.h"
#include "host/drawing/whole_photo.h"
#include "host/files/path_text.h"
#include "host/options/size.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

constexpr double kWidth = 1600.0, kMargin = 32.0, kHead = 76.0;
constexpr double kMapHeight = 900.0;
constexpr double kGap = 16.0, kCaption = 26.0;
constexpr double kNameSize = 22.0;
constexpr int32_t kFramesInRow = 6;

constexpr Ink kPaper{0.11, 0.115, 0.13}, kText{0.93, 0.93, 0.95}, kFaint{0.62, 0.63, 0.68};

class Sheet {
 public:
  Sheet(const std::string& modulePath, const RenderPlan& plan, const Photo& photo,
        const StoryboardOptions& options)
      : module_(modulePath),
        plan_(plan),
        photo_(photo),
        inspector_(modulePath, plan, photo),
        marks_(MarksOf(inspector_)),
        strip_(StripFrames(options.frames, plan.frames)),
        columns_(std::min(kFramesInRow, std::max(3, static_cast<int32_t>(strip_.size())))),
        cellWidth_((kWidth - 2 * kMargin - (columns_ - 1) * kGap) / columns_),
        cellHeight_(cellWidth_ / ShownAspect()),
        mapHeight_(MapHeight(kWidth - 2 * kMargin, kMapHeight, Size(), marks_)),
        drawing_(options.file, kWidth, Height()) {}

  std::string Draw() {
    drawing_.Fill({0.0, 0.0, kWidth, Height()}, kPaper);
    DrawHead();
    DrawMap();
    DrawStrip();
    return drawing_.Coded();
  }

 private:
  PixelSize Size() const { return {photo_.width, photo_.height}; }
  double ShownAspect() const {
    const FilmFormat& format = plan_.format;
    return format.sampleAspect.Ratio() * format.size.width / format.size.height;
  }
  double StripTop() const { return kHead + mapHeight_ + 2 * kGap; }
  double Height() const {
    const auto rows = (static_cast<int32_t>(strip_.size()) + columns_ - 1) / columns_;
    return std::ceil(StripTop() + rows * (cellHeight_ + kCaption + kGap) + kMargin - kGap);
  }

  void DrawHead() {
    const std::string name = NameOf(photo_.given);
    drawing_.Text(drawing_.Shortened(name, kWidth - 2 * kMargin, kNameSize, true), {kMargin, 36.0},
                  kNameSize, kText, Align::kLeft, true);
    drawing_.Text(StoryboardFacts(plan_, photo_), {kMargin, 60.0}, 15.0, kFaint);
  }
  void DrawMap() {
    const Box room{kMargin, kHead, kWidth - 2 * kMargin, mapHeight_};
    ShownFilm whole(module_, WholePhoto(plan_, photo_), photo_);
    DrawPhotoMap(drawing_, room, whole.Render(0, kWholeQuality), Size(), marks_,
                 PathOf(inspector_));
  }
  void DrawStrip() {
    ShownFilm film(module_, plan_, photo_);
    film.SetAbortQuery(IsInterrupted);
    for (size_t i = 0; i < strip_.size(); ++i) {
      const auto index = static_cast<int32_t>(i);
      const int32_t column = index % columns_, row = index / columns_;
      const Box cell{kMargin + column * (cellWidth_ + kGap),
                     StripTop() + row * (cellHeight_ + kCaption + kGap), cellWidth_, cellHeight_};
      drawing_.Picture(film.Render(strip_[i], kWholeQuality), cell);
      const double base = cell.Bottom() + 18.0;
      drawing_.Text("frame " + std::to_string(strip_[i]), {cell.left, base}, 14.0, kText);
      drawing_.Text(FixedText(strip_[i] / plan_.format.rate.PerSecond(), 2) + " s",
                    {cell.Right(), base}, 14.0, kFaint, Align::kRight);
    }
  }

  std::string module_;
  const RenderPlan& plan_;
  const Photo& photo_;
  FrameInspector inspector_;
  std::vector<ViewMark> marks_;
  std::vector<int32_t> strip_;
  int32_t columns_;
  double cellWidth_, cellHeight_, mapHeight_;
  Drawing drawing_;
};

}  // namespace

std::string StoryboardFacts(const RenderPlan& plan, const Photo& photo) {
  const FilmFormat& format = plan.format;
  const double rate = format.rate.PerSecond();
  return std::to_string(photo.width) + "x" + std::to_string(photo.height) + " photo, film of " +
         FixedText(plan.frames / rate, 2) + " seconds, " + ToString(format.size) + ", " +
         std::to_string(plan.frames) + (plan.frames == 1 ? " frame" : " frames") + " at " +
         FixedText(rate, format.rate.denominator == 1 ? 0 : 3) + " fps";
}

std::vector<int32_t> StripFrames(int32_t count, int32_t total) {
  const int32_t shown = std::min(count, total);
  if (shown <= 1) return {0};
  std::vector<int32_t> frames;
  frames.reserve(static_cast<size_t>(shown));
  for (int32_t i = 0; i < shown; ++i) {
    frames.push_back(
        static_cast<int32_t>(std::lround(static_cast<double>(i) * (total - 1) / (shown - 1))));
  }
  return frames;
}

std::string DrawStoryboard(const std::string& modulePath, const RenderPlan& plan,
                           const Photo& photo, const StoryboardOptions& options) {
  return Sheet(modulePath, plan, photo, options).Draw();
}

}  // namespace kelto::host
