#include "editor/widgets/preview_view.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <vector>

#include "editor/rules/timecode.h"
#include "editor/widgets/icons.h"
#include "editor/widgets/picture_area.h"

namespace kelto::editor {

class PreviewView::Private {
 public:
  explicit Private(PreviewView* owner);
  void SetFrame(int32_t frame);
  void SetIcons();
  void Ask(int32_t frame);

  PreviewView* owner_;
  PictureArea* picture_;
  QSlider* slider_;
  QLabel* place_;
  QToolButton *play_, *loop_, *safe_, *full_;
  struct Button {
    QToolButton* button;
    IconShape shape;
  };
  std::vector<Button> buttons_;
  Icons icons_;
  host::FilmFormat format_;
  int32_t frames_ = 1, frame_ = 0;
  bool playing_ = false;

 private:
  QToolButton* AddButton(QHBoxLayout* row, IconShape shape, const QString& name,
                         const QString& keys);
};

QToolButton* PreviewView::Private::AddButton(QHBoxLayout* row, IconShape shape, const QString& name,
                                             const QString& keys) {
  auto* button = new QToolButton(owner_);
  button->setAutoRaise(true);
  button->setAccessibleName(name);
  button->setToolTip(keys.isEmpty() ? name : name + QStringLiteral("  (") + keys + ')');
  row->addWidget(button);
  buttons_.push_back({button, shape});
  return button;
}

PreviewView::Private::Private(PreviewView* owner) : owner_(owner) {
  auto* column = new QVBoxLayout(owner);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  picture_ = new PictureArea(owner);
  // In a holder, to which it comes back from the full screen.
  auto* holder = new QWidget(owner);
  auto* inside = new QVBoxLayout(holder);
  inside->setContentsMargins(0, 0, 0, 0);
  inside->addWidget(picture_);
  column->addWidget(holder, 1);
  slider_ = new QSlider(Qt::Horizontal, owner);
  slider_->setAccessibleName(PreviewView::tr("Place in the film"));
  slider_->setRange(0, 0);
  column->addWidget(slider_);

  auto* row = new QHBoxLayout;
  row->setSpacing(2);
  auto* first =
      AddButton(row, IconShape::kFirst, PreviewView::tr("First frame"), PreviewView::tr("Home"));
  auto* back =
      AddButton(row, IconShape::kBack, PreviewView::tr("A frame back"), QStringLiteral(","));
  play_ = AddButton(row, IconShape::kPlay, PreviewView::tr("Play"), PreviewView::tr("Space"));
  auto* on = AddButton(row, IconShape::kOn, PreviewView::tr("A frame on"), QStringLiteral("."));
  auto* last =
      AddButton(row, IconShape::kLast, PreviewView::tr("Last frame"), PreviewView::tr("End"));
  place_ = new QLabel(owner);
  place_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  place_->setContentsMargins(8, 0, 8, 0);
  row->addWidget(place_, 1);
  loop_ = AddButton(row, IconShape::kLoop, PreviewView::tr("Loop"), QStringLiteral("L"));
  loop_->setCheckable(true);
  safe_ = AddButton(row, IconShape::kSafeArea, PreviewView::tr("Action-safe area"), {});
  safe_->setCheckable(true);
  full_ =
      AddButton(row, IconShape::kFullScreen, PreviewView::tr("Full screen"), QStringLiteral("F11"));
  column->addLayout(row);
  SetIcons();

  connect(slider_, &QSlider::valueChanged, owner, [this](int frame) { Ask(frame); });
  connect(first, &QToolButton::clicked, owner, [this] { Ask(0); });
  connect(last, &QToolButton::clicked, owner, [this] { Ask(frames_ - 1); });
  connect(back, &QToolButton::clicked, owner, [this] { Ask(frame_ - 1); });
  connect(on, &QToolButton::clicked, owner, [this] { Ask(frame_ + 1); });
  connect(play_, &QToolButton::clicked, owner,
          [this] { playing_ ? emit owner_->PauseAsked() : emit owner_->PlayAsked(); });
  connect(loop_, &QToolButton::toggled, owner, &PreviewView::LoopAsked);
  connect(safe_, &QToolButton::toggled, picture_, &PictureArea::SetActionSafe);
  connect(full_, &QToolButton::clicked, picture_, &PictureArea::SwitchFullScreen);
  connect(picture_, &PictureArea::BoxChanged, owner, &PreviewView::BoxChanged);
  picture_->installEventFilter(owner);
}

void PreviewView::Private::SetIcons() {
  for (const Button& each : buttons_) {
    const IconShape shape = each.button == play_ && playing_ ? IconShape::kPause : each.shape;
    each.button->setIcon(icons_.Of(shape, owner_->palette()));
  }
}

void PreviewView::Private::Ask(int32_t frame) {
  frame = std::clamp(frame, 0, frames_ - 1);
  if (frame == frame_) return;
  emit owner_->FrameAsked(frame);
}

void PreviewView::Private::SetFrame(int32_t frame) {
  frame_ = frame;
  {
    const QSignalBlocker quiet(slider_);
    slider_->setValue(frame);
  }
  place_->setText(PreviewView::tr("%1   frame %2 of %3")
                      .arg(QString::fromStdString(Timecode(frame, format_.rate)))
                      .arg(frame)
                      .arg(frames_));
}

PreviewView::PreviewView(QWidget* parent) : QWidget(parent), p_(std::make_unique<Private>(this)) {
  setFocusPolicy(Qt::ClickFocus);
  p_->SetFrame(0);
}

PreviewView::~PreviewView() = default;

void PreviewView::SetFilm(const host::FilmFormat& format, int32_t frames) {
  p_->format_ = format;
  p_->frames_ = std::max(1, frames);
  p_->picture_->SetShape(format.DisplayAspect());
  {
    const QSignalBlocker quiet(p_->slider_);
    p_->slider_->setRange(0, p_->frames_ - 1);
    p_->slider_->setPageStep(std::max(1, static_cast<int>(std::lround(format.rate.PerSecond()))));
  }
  p_->SetFrame(std::min(p_->frame_, p_->frames_ - 1));
}

void PreviewView::SetFrame(const QImage& image, int32_t frame) {
  p_->picture_->SetFrame(image);
  p_->SetFrame(frame);
}

void PreviewView::SetPlaying(bool playing) {
  p_->playing_ = playing;
  p_->play_->setAccessibleName(playing ? tr("Pause") : tr("Play"));
  p_->SetIcons();
}

void PreviewView::SetNotice(const QString& notice) { p_->picture_->SetNotice(notice); }
void PreviewView::SetActionSafe(bool shown) { p_->safe_->setChecked(shown); }
void PreviewView::SwitchFullScreen() { p_->picture_->SwitchFullScreen(); }

int PreviewView::HeightFor(int width) const {
  const int controls = minimumSizeHint().height() - p_->picture_->minimumSizeHint().height();
  return controls + static_cast<int>(std::lround(width / p_->format_.DisplayAspect()));
}

QSize PreviewView::sizeHint() const { return {480, 340}; }

bool PreviewView::TakesKey(const QKeyEvent& event) {
  const auto second = std::max(1, static_cast<int>(std::lround(p_->format_.rate.PerSecond())));
  switch (event.key()) {
    case Qt::Key_Space:
      p_->play_->click();
      return true;
    case Qt::Key_Home:
      return p_->Ask(0), true;
    case Qt::Key_End:
      return p_->Ask(p_->frames_ - 1), true;
    case Qt::Key_Comma:
      return p_->Ask(p_->frame_ - 1), true;
    case Qt::Key_Period:
      return p_->Ask(p_->frame_ + 1), true;
    case Qt::Key_Left:
      return p_->Ask(p_->frame_ - second), true;
    case Qt::Key_Right:
      return p_->Ask(p_->frame_ + second), true;
    case Qt::Key_L:
      return p_->loop_->toggle(), true;
    case Qt::Key_F11:
      return SwitchFullScreen(), true;
    default:
      return false;
  }
}

void PreviewView::keyPressEvent(QKeyEvent* event) {
  if (!TakesKey(*event)) QWidget::keyPressEvent(event);
}

bool PreviewView::eventFilter(QObject* watched, QEvent* event) {
  // A picture that fills the screen is a window, which hands no keys on.
  if (event->type() == QEvent::KeyPress && p_->picture_->FillsScreen() &&
      TakesKey(static_cast<QKeyEvent&>(*event))) {
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

void PreviewView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) p_->SetIcons();
  QWidget::changeEvent(event);
}

}  // namespace kelto::editor
