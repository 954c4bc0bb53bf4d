#include "editor/widgets/photo_levels.h"

#include <algorithm>

namespace kelto::editor {
namespace {

/// No smaller levels are made.
constexpr int kSmallest = 256;
/// Painter's pixels a photo pixel from which on squares are drawn.
constexpr double kSquares = 3.0;

}  // namespace

PhotoLevels::PhotoLevels(const QImage& photo) {
  if (photo.isNull()) return;
  levels_.push_back(photo);
  while (std::max(levels_.back().width(), levels_.back().height()) > 2 * kSmallest) {
    const QImage& last = levels_.back();
    levels_.push_back(last.scaled(std::max(1, last.width() / 2), std::max(1, last.height() / 2),
                                  Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  }
}

void PhotoLevels::Draw(QPainter& painter, const QRectF& target, const QRectF& seen) const {
  const QRectF drawn = target.intersected(seen);
  if (IsEmpty() || drawn.isEmpty()) return;
  const double pixels = target.width() * painter.device()->devicePixelRatioF();
  size_t level = 0;
  while (level + 1 < levels_.size() && levels_[level + 1].width() >= pixels) ++level;
  const QImage& image = levels_[level];
  const double across = image.width() / target.width(), down = image.height() / target.height();
  const QRectF part((drawn.x() - target.x()) * across, (drawn.y() - target.y()) * down,
                    drawn.width() * across, drawn.height() * down);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, pixels / image.width() < kSquares);
  painter.drawImage(drawn, image, part);
}

}  // namespace kelto::editor
