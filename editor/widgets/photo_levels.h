// A photo at half its size, a quarter and so on, so that drawing all of it takes as long as drawing
// a part.
#pragma once

#include <QImage>
#include <QPainter>
#include <vector>

namespace kelto::editor {

class PhotoLevels {
 public:
  PhotoLevels() = default;
  explicit PhotoLevels(const QImage& photo);

  bool IsEmpty() const { return levels_.empty(); }
  int Width() const { return IsEmpty() ? 0 : levels_.front().width(); }
  /// Draws the photo into `target`, of which only `seen` is looked at. Pixels larger than a few of
  /// the painter's are drawn as squares.
  void Draw(QPainter& painter, const QRectF& target, const QRectF& seen) const;

 private:
  std::vector<QImage> levels_;  ///< the first as it was given
};

}  // namespace kelto::editor
