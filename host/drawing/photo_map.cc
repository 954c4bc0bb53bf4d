#include "host/drawing/photo_map.h"

#include <algorithm>
#include <cmath>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/drawing/axis_ticks.h"
#include "host/facts/key_times.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

constexpr int32_t kMaxPathPoints = 600;
/// Beside the photo no more than this many of its longer sides is shown, however far a view
/// reaches.
constexpr double kMostBeside = 1.25;
constexpr Ink kDark{0.0, 0.0, 0.0, 0.75}, kBright{1.0, 1.0, 1.0};
constexpr Ink kPathInk{1.0, 0.82, 0.1};
constexpr double kNumberSize = 15.0;
/// Sets the keys off on light and dark photos alike.
constexpr Ink kMarkInks[] = {
    {0.35, 0.75, 1.0}, {1.0, 0.6, 0.2}, {0.45, 0.9, 0.5}, {1.0, 0.5, 0.75}, {0.95, 0.9, 0.35}};

const Ink& InkOf(size_t mark) { return kMarkInks[mark % std::size(kMarkInks)]; }

bool SeeTheSame(const DrawnArea& a, const DrawnArea& b) {
  const double near = 0.01 * (a.right - a.left);
  return std::abs(a.left - b.left) < near && std::abs(a.right - b.right) < near &&
         std::abs(a.top - b.top) < near && std::abs(a.bottom - b.bottom) < near;
}

/// What is shown in photo pixels: the photo and the marks, within bounds.
Box Extent(PixelSize size, const std::vector<ViewMark>& marks) {
  double left = 0.0, top = 0.0, right = size.width, bottom = size.height;
  for (const ViewMark& mark : marks) {
    left = std::min(left, mark.area.left);
    top = std::min(top, mark.area.top);
    right = std::max(right, mark.area.right);
    bottom = std::max(bottom, mark.area.bottom);
  }
  const double beside = kMostBeside * std::max(size.width, size.height);
  left = std::max(left, -beside);
  top = std::max(top, -beside);
  right = std::min(right, size.width + beside);
  bottom = std::min(bottom, size.height + beside);
  return {left, top, right - left, bottom - top};
}

/// A line that shows on everything.
void Outlined(Drawing& drawing, const Box& box, const Ink& ink) {
  drawing.Frame(box, kDark, 5.0);
  drawing.Frame(box, ink, 2.5);
}

void DrawPath(Drawing& drawing, const std::vector<Point>& points) {
  drawing.Line(points, kDark, 6.0);
  drawing.Line(points, kPathInk, 2.8);
  // Dots at even times: close together the view is slow.
  constexpr size_t kDots = 24;
  const size_t step = std::max<size_t>(1, (points.size() + kDots - 1) / kDots);
  for (size_t i = 0; i < points.size(); i += step) {
    drawing.Disc(points[i], 5.0, kDark);
    drawing.Disc(points[i], 3.4, kPathInk);
  }
  drawing.Disc(points.back(), 5.0, kDark);
  drawing.Disc(points.back(), 3.4, kPathInk);
}

/// The mark's number and time on a label in a corner of its box.
class Labels {
 public:
  Labels(Drawing& drawing, const Box& room) : drawing_(drawing), room_(room) {}

  void Draw(const ViewMark& mark, const Box& box, const Ink& ink) {
    const double number = drawing_.WidthOf(mark.numbers, kNumberSize, true);
    const double times = drawing_.WidthOf(mark.times, kNumberSize);
    const Box label = Place(box, number + times + 30.0, kNumberSize + 12.0);
    drawing_.Fill(label, {0.0, 0.0, 0.0, 0.78});
    drawing_.Fill({label.left, label.top, number + 14.0, label.height}, ink);
    const double base = label.top + kNumberSize + 4.0;
    drawing_.Text(mark.numbers, {label.left + 7.0, base}, kNumberSize, {0.0, 0.0, 0.0},
                  Align::kLeft, true);
    drawing_.Text(mark.times, {label.left + number + 21.0, base}, kNumberSize, kBright);
    taken_.push_back(label);
  }

 private:
  /// The first corner of `box`, inside it, where no other label is; below the last one tried, else.
  Box Place(const Box& box, double width, double height) {
    const double left = std::clamp(box.left, room_.left, room_.Right() - width);
    const double right = std::clamp(box.Right() - width, room_.left, room_.Right() - width);
    const double top = std::clamp(box.top, room_.top, room_.Bottom() - height);
    const double bottom = std::clamp(box.Bottom() - height, room_.top, room_.Bottom() - height);
    for (const Box& place : {Box{left, top, width, height}, Box{right, top, width, height},
                             Box{right, bottom, width, height}, Box{left, bottom, width, height}}) {
      if (IsFree(place)) return place;
    }
    Box place{left, top, width, height};
    while (!IsFree(place) && place.Bottom() + height <= room_.Bottom()) place.top += height + 2.0;
    return place;
  }
  bool IsFree(const Box& box) const {
    return std::none_of(taken_.begin(), taken_.end(), [&](const Box& other) {
      return box.left < other.Right() && other.left < box.Right() && box.top < other.Bottom() &&
             other.top < box.Bottom();
    });
  }

  Drawing& drawing_;
  Box room_;
  std::vector<Box> taken_;
};

}  // namespace

std::vector<ViewMark> MarksOf(FrameInspector& inspector) {
  std::vector<ViewMark> marks;
  int32_t number = 0;
  for (const KeyTime& key : KeyTimesOf(inspector.Plan())) {
    const FrameFacts facts = inspector.Of(key.frame);
    const DrawnArea area = inspector.ViewArea(facts);
    const std::string text = std::to_string(++number);
    const std::string time = FixedText(facts.seconds, 2) + " s";
    const auto same = std::find_if(marks.begin(), marks.end(), [&](const ViewMark& mark) {
      return SeeTheSame(mark.area, area);
    });
    if (same == marks.end()) {
      marks.push_back({text, time, area});
    } else {
      same->numbers += ", " + text;
      same->times += ", " + time;
    }
  }
  return marks;
}

std::vector<Point> PathOf(FrameInspector& inspector) {
  const int32_t frames = inspector.Plan().frames;
  const int32_t step = (frames - 1) / kMaxPathPoints + 1;
  std::vector<Point> path;
  for (int32_t number = 0; number < frames; number += step) {
    CheckInterrupt();
    const DrawnArea area = inspector.ViewArea(inspector.Of(number));
    path.push_back({(area.left + area.right) / 2, (area.top + area.bottom) / 2});
  }
  return path;
}

double MapHeight(double width, double most, PixelSize size, const std::vector<ViewMark>& marks) {
  const Box extent = Extent(size, marks);
  return std::min(most, width * extent.height / extent.width);
}

void DrawPhotoMap(Drawing& drawing, const Box& room, const FrameView& picture, PixelSize size,
                  const std::vector<ViewMark>& marks, const std::vector<Point>& path) {
  const Box extent = Extent(size, marks);
  const double scale = std::min(room.width / extent.width, room.height / extent.height);
  const double left = room.left + (room.width - extent.width * scale) / 2;
  const double top = room.top + (room.height - extent.height * scale) / 2;
  const auto place = [&](double x, double y) {
    return Point{left + (x - extent.left) * scale, top + (y - extent.top) * scale};
  };
  const Point corner = place(0.0, 0.0);
  drawing.Picture(picture, {corner.x, corner.y, size.width * scale, size.height * scale});

  const Box shown{left, top, extent.width * scale, extent.height * scale};
  const Drawing::Clip clip(
      drawing, {shown.left - 3.0, shown.top - 3.0, shown.width + 6.0, shown.height + 6.0});
  std::vector<Box> boxes;
  for (const ViewMark& mark : marks) {
    const Point from = place(mark.area.left, mark.area.top);
    const Point to = place(mark.area.right, mark.area.bottom);
    boxes.push_back({from.x, from.y, to.x - from.x, to.y - from.y});
    Outlined(drawing, boxes.back(), InkOf(boxes.size() - 1));
  }
  std::vector<Point> points;
  points.reserve(path.size());
  for (const Point& point : path) points.push_back(place(point.x, point.y));
  if (!points.empty()) DrawPath(drawing, points);
  Labels labels(drawing, shown);
  for (size_t i = 0; i < marks.size(); ++i) labels.Draw(marks[i], boxes[i], InkOf(i));
}

}  // namespace kelto::host
