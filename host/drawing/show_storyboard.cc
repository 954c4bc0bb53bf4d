#include "host/drawing/show_storyboard.h"

#include <algorithm>
#include <cmath>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/deep/shown_film.h"
#include "host/drawing/photo_map.h"
#include "host/drawing/storyboard.h"
#include "host/drawing/whole_photo.h"
#include "host/files/path_text.h"
#include "host/options/size.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

constexpr double kWidth = 1600.0, kMargin = 32.0, kHead = 84.0, kGap = 16.0, kCaption = 44.0;
/// A bitmap's sides are no longer.
constexpr double kMostHeight = 32000.0;
constexpr int32_t kMostColumns = 6;
constexpr Ink kPaper{0.11, 0.115, 0.13}, kText{0.93, 0.93, 0.95}, kFaint{0.62, 0.63, 0.68};

/// Where the cells of a sheet lie: those of a picture in a row, the photo first.
class Grid {
 public:
  Grid(const FilmFormat& format, size_t pictures, int32_t frames) {
    const double shape = format.sampleAspect.Ratio() * format.size.width / format.size.height;
    for (cells_ = std::min(frames, kMostColumns - 1) + 1; cells_ >= 1; --cells_) {
      // As many pictures beside each other as there is room for.
      across_ = std::max(1, kMostColumns / cells_);
      const int32_t columns = across_ * cells_;
      width_ = (kWidth - 2 * kMargin - (columns - 1) * kGap) / columns;
      height_ = width_ / shape;
      rows_ = static_cast<int32_t>((pictures + static_cast<size_t>(across_) - 1) /
                                   static_cast<size_t>(across_));
      if (Height() <= kMostHeight) return;
    }
    throw UsageError("the frames are too tall for a sheet of this many pictures");
  }

  /// Cells of a picture: its photo, and frames.
  int32_t Cells() const { return cells_; }
  double Height() const {
    return std::ceil(kHead + rows_ * (height_ + kCaption + kGap) + kMargin - kGap);
  }
  Box Cell(size_t picture, int32_t cell) const {
    const auto index = static_cast<int32_t>(picture);
    const int32_t column = index % across_ * cells_ + cell, row = index / across_;
    return {kMargin + column * (width_ + kGap), kHead + row * (height_ + kCaption + kGap), width_,
            height_};
  }

 private:
  int32_t cells_ = 1, across_ = 1, rows_ = 1;
  double width_ = 0.0, height_ = 0.0;
};

std::string FactsOf(const std::vector<PictureOfShow>& pictures, int32_t total) {
  const FilmFormat& format = pictures.front().plan.format;
  const double rate = format.rate.PerSecond();
  return std::to_string(pictures.size()) + (pictures.size() == 1 ? " picture, " : " pictures, ") +
         FixedText(total / rate, 2) + " seconds, " + ToString(format.size) + ", " +
         std::to_string(total) + " frames at " +
         FixedText(rate, format.rate.denominator == 1 ? 0 : 3) + " fps";
}

void DrawPhotoCell(Drawing& drawing, const std::string& module, const PictureOfShow& picture,
                   const Box& cell) {
  FrameInspector inspector(module, picture.plan, picture.photo);
  ShownFilm whole(module, WholePhoto(picture.plan, picture.photo, 2 * cell.width), picture.photo);
  DrawPhotoMap(drawing, cell, whole.Render(0, kWholeQuality),
               {picture.photo.width, picture.photo.height}, MarksOf(inspector), PathOf(inspector));
}

void DrawFrames(Drawing& drawing, const std::string& module, const PictureOfShow& picture,
                size_t index, const Grid& grid) {
  ShownFilm film(module, picture.plan, picture.photo);
  film.SetAbortQuery(IsInterrupted);
  const int32_t count = grid.Cells() - 1, total = picture.plan.frames;
  // A single one from the middle: at its ends a picture is not seen alone, nor with its caption.
  const std::vector<int32_t> frames =
      count > 1 ? StripFrames(count, total) : std::vector<int32_t>{total / 2};
  const double rate = picture.plan.format.rate.PerSecond();
  for (size_t i = 0; i < frames.size(); ++i) {
    const Box cell = grid.Cell(index, static_cast<int32_t>(i) + 1);
    drawing.Picture(film.Render(frames[i], kWholeQuality), cell);
    drawing.Text(FixedText((picture.begin + frames[i]) / rate, 2) + " s",
                 {cell.Right(), cell.Bottom() + 18.0}, 14.0, kFaint, Align::kRight);
  }
}

/// The words over the frames, whose letters are too small on a sheet, on one line.
std::string WordsOver(const PictureOfShow& picture) {
  std::string words = picture.plan.caption.text;
  std::replace(words.begin(), words.end(), '\n', ' ');
  return words;
}

void DrawCaption(Drawing& drawing, const PictureOfShow& picture, size_t index, const Grid& grid) {
  const Box cell = grid.Cell(index, 0);
  const double rate = picture.plan.format.rate.PerSecond();
  const std::string name = std::to_string(index + 1) + "  " + NameOf(picture.photo.given);
  drawing.Text(drawing.Shortened(name, cell.width, 14.0), {cell.left, cell.Bottom() + 18.0}, 14.0,
               kText);
  std::string facts = FixedText(picture.plan.frames / rate, 2) + " s";
  if (picture.fade > 0) facts += ", fade " + FixedText(picture.fade / rate, 2) + " s";
  drawing.Text(facts, {cell.left, cell.Bottom() + 36.0}, 13.0, kFaint);
  if (grid.Cells() < 2) return;
  const Box first = grid.Cell(index, 1), last = grid.Cell(index, grid.Cells() - 1);
  drawing.Text(drawing.Shortened(WordsOver(picture), last.Right() - first.left, 13.0),
               {first.left, cell.Bottom() + 36.0}, 13.0, kText);
}

}  // namespace

std::string DrawShowStoryboard(const std::string& modulePath,
                               const std::vector<PictureOfShow>& pictures, const ShowSheet& sheet) {
  if (pictures.size() > kMostStoryPictures) {
    throw UsageError("a sheet has room for " + std::to_string(kMostStoryPictures) +
                     " pictures, and the show has " + std::to_string(pictures.size()));
  }
  const Grid grid(pictures.front().plan.format, pictures.size(), sheet.frames);
  Drawing drawing(sheet.file, kWidth, grid.Height());
  drawing.Fill({0.0, 0.0, kWidth, grid.Height()}, kPaper);
  drawing.Text(drawing.Shortened(sheet.title, kWidth - 2 * kMargin, 22.0, true), {kMargin, 36.0},
               22.0, kText, Align::kLeft, true);
  drawing.Text(FactsOf(pictures, sheet.total), {kMargin, 60.0}, 15.0, kFaint);
  for (size_t i = 0; i < pictures.size(); ++i) {
    if (IsInterrupted()) throw Error("interrupted");
    const Box cell = grid.Cell(i, 0);
    DrawPhotoCell(drawing, modulePath, pictures[i], cell);
    if (grid.Cells() > 1) DrawFrames(drawing, modulePath, pictures[i], i, grid);
    DrawCaption(drawing, pictures[i], i, grid);
  }
  return drawing.Coded();
}

}  // namespace kelto::host
