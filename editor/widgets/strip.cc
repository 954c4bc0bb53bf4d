#include "editor/widgets/strip.h"

#include <QtWidgets>
#include <algorithm>
#include <functional>

#include "host/options/usual_times.h"

namespace kelto::editor {
namespace {

constexpr double kShortestSeconds = 0.04, kLongestSeconds = 86400.0;
constexpr int kGapWidth = 3;

QDoubleSpinBox* TimeBox(const QString& name, double least) {
  auto* box = new QDoubleSpinBox;
  box->setRange(least, kLongestSeconds);
  box->setDecimals(2);
  box->setSingleStep(0.5);
  box->setSuffix(Strip::tr(" s"));
  box->setAccessibleName(name);
  // Each digit typed would be a change of its own.
  box->setKeyboardTracking(false);
  return box;
}

/// What stands below a thumbnail.
QString CaptionOf(const StripPicture& picture, size_t index, size_t count, const QLocale& locale) {
  QString times = Strip::tr("%1 s").arg(locale.toString(picture.seconds, 'g', 4));
  if (index + 1 < count && picture.fade) {
    times += Strip::tr(", fade %1 s").arg(locale.toString(*picture.fade, 'g', 3));
  }
  return QString("%1  %2\n%3").arg(index + 1).arg(picture.name, times);
}

}  // namespace

/// The thumbnails; pictures are dragged between each other.
class Strip::List : public QListWidget {
 public:
  explicit List(Strip* strip) : strip_(strip) {
    setViewMode(QListView::IconMode);
    setFlow(QListView::LeftToRight);
    setWrapping(false);
    setMovement(QListView::Static);
    setDragDropMode(QAbstractItemView::NoDragDrop);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setIconSize(kThumbnail);
    setSpacing(4);
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int textHeight = 2 * fontMetrics().lineSpacing() + 8;
    cell_ = QSize(kThumbnail.width() + 8, kThumbnail.height() + textHeight);
    setGridSize(cell_ + QSize(8, 4));
    // With room for a scroll bar, so that nothing moves when it comes.
    setFixedHeight(cell_.height() + 8 + style()->pixelMetric(QStyle::PM_ScrollBarExtent));
  }

  QSize Cell() const { return cell_; }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    QListWidget::mousePressEvent(event);
    pressed_ = event->button() == Qt::LeftButton ? row(itemAt(event->pos())) : -1;
    pressedAt_ = event->pos();
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (pressed_ < 0) return;
    const int far = (event->pos() - pressedAt_).manhattanLength();
    if (gap_ < 0 && far < QApplication::startDragDistance()) return;
    gap_ = GapAt(event->pos());
    viewport()->update();
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    QListWidget::mouseReleaseEvent(event);
    const int from = std::exchange(pressed_, -1), gap = std::exchange(gap_, -1);
    viewport()->update();
    if (from < 0 || gap < 0) return;
    const int to = gap > from ? gap - 1 : gap;
    if (to != from) emit strip_->Moved(from, to);
  }
  void keyPressEvent(QKeyEvent* event) override {
    const int at = currentRow();
    const bool left = event->key() == Qt::Key_Left, right = event->key() == Qt::Key_Right;
    if (event->key() == Qt::Key_Escape && gap_ >= 0) {
      pressed_ = gap_ = -1;
      viewport()->update();
    } else if ((left || right) && (event->modifiers() & Qt::AltModifier) != 0) {
      const int to = left ? at - 1 : at + 1;
      if (to >= 0 && to < count()) emit strip_->Moved(at, to);
    } else if (event->key() == Qt::Key_Delete) {
      if (count() > 1) emit strip_->Removed(at);
    } else if (event->key() == Qt::Key_Insert) {
      emit strip_->AddAsked(at + 1);
    } else {
      QListWidget::keyPressEvent(event);
    }
  }
  void paintEvent(QPaintEvent* event) override {
    QListWidget::paintEvent(event);
    if (gap_ < 0) return;
    QPainter painter(viewport());
    const bool last = gap_ == count();
    const QRect cell = visualItemRect(item(last ? gap_ - 1 : gap_));
    const int x = last ? cell.right() + 3 : cell.left() - 5;
    painter.fillRect(x, cell.top(), kGapWidth, cell.height(), palette().highlight());
  }

 private:
  /// Between which pictures a point lies: the number of those ahead of it.
  int GapAt(const QPoint& point) const {
    for (int i = 0; i < count(); ++i) {
      if (point.x() < visualItemRect(item(i)).center().x()) return i;
    }
    return count();
  }

  Strip* strip_;
  QSize cell_;
  int pressed_ = -1;  ///< the picture that the button went down on
  int gap_ = -1;      ///< where it would be dropped, while it is dragged
  QPoint pressedAt_;
};

Strip::Strip(QWidget* parent)
    : QWidget(parent),
      list_(new List(this)),
      seconds_(TimeBox(tr("Seen for"), kShortestSeconds)),
      fade_(TimeBox(tr("Fade to the next"), 0.0)) {
  list_->setAccessibleName(tr("Pictures"));
  auto* times = new QFormLayout;
  times->setContentsMargins(12, 8, 12, 8);
  times->setHorizontalSpacing(12);
  times->addRow(tr("Seen for"), seconds_);
  times->addRow(tr("Fade to the next"), fade_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(list_, 1);
  row->addLayout(times);
  setFocusProxy(list_);
  connect(list_, &QListWidget::currentRowChanged, this, [this](int at) {
    if (at >= 0 && at != scene_.selected) emit Selected(at);
  });
  connect(seconds_, &QDoubleSpinBox::valueChanged, this,
          [this](double seconds) { emit SecondsChanged(scene_.selected, seconds); });
  connect(fade_, &QDoubleSpinBox::valueChanged, this,
          [this](double seconds) { emit FadeChanged(scene_.selected, seconds); });
}

void Strip::SetScene(const StripScene& scene) {
  const QSignalBlocker quiet(list_);
  scene_ = scene;
  const int count = static_cast<int>(scene.pictures.size());
  while (list_->count() > count) delete list_->takeItem(list_->count() - 1);
  QPixmap unknown(kThumbnail);
  unknown.fill(palette().color(QPalette::Midlight));
  for (int i = 0; i < count; ++i) {
    const StripPicture& picture = scene.pictures[static_cast<size_t>(i)];
    if (i == list_->count()) list_->addItem(new QListWidgetItem);
    QListWidgetItem* item = list_->item(i);
    item->setSizeHint(list_->Cell());
    item->setText(CaptionOf(picture, static_cast<size_t>(i), scene.pictures.size(), locale()));
    item->setToolTip(Qt::convertFromPlainText(picture.name));
    const qint64 key = picture.thumbnail.isNull() ? -1 : picture.thumbnail.cacheKey();
    if (item->data(Qt::UserRole).isValid() && item->data(Qt::UserRole).toLongLong() == key) {
      continue;
    }
    item->setData(Qt::UserRole, key);
    item->setIcon(picture.thumbnail.isNull() ? unknown : QPixmap::fromImage(picture.thumbnail));
  }
  list_->setCurrentRow(scene.selected);
  ShowTimes();
}

void Strip::ShowTimes() {
  const QSignalBlocker quietSeconds(seconds_), quietFade(fade_);
  const auto at = static_cast<size_t>(std::max(scene_.selected, 0));
  const bool known = at < scene_.pictures.size();
  seconds_->setEnabled(known);
  fade_->setEnabled(known && at + 1 < scene_.pictures.size());
  if (!known) return;
  seconds_->setValue(scene_.pictures[at].seconds);
  fade_->setValue(scene_.pictures[at].fade.value_or(host::kUsualFadeSeconds));
}

}  // namespace kelto::editor
