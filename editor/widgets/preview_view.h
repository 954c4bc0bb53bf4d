// The frame being looked at, with what plays and scrubs it.
#pragma once

#include <QImage>
#include <QWidget>
#include <memory>

#include "host/base/film_format.h"

namespace kelto::editor {

/// Shows frames that are given to it, and says what the user wants of the film.
class PreviewView : public QWidget {
  Q_OBJECT

 public:
  explicit PreviewView(QWidget* parent = nullptr);
  ~PreviewView() override;

  /// The film's shape, rate and length; a frame at least.
  void SetFilm(const host::FilmFormat& format, int32_t frames);
  void SetFrame(const QImage& image, int32_t frame);
  void SetPlaying(bool playing);
  /// Why there is no frame, below the picture; empty for nothing.
  void SetNotice(const QString& notice);
  void SetActionSafe(bool shown);
  void SwitchFullScreen();
  /// What the player's keys do: Space, Home, End, comma and full stop for a frame, arrows for a
  /// second, L, F11. False for other keys.
  bool TakesKey(const QKeyEvent& event);

  QSize sizeHint() const override;

  /// At which the frame fills this width.
  int HeightFor(int width) const;

 signals:
  void PlayAsked();
  void PauseAsked();
  void FrameAsked(int32_t frame);
  void LoopAsked(bool loop);
  /// The pixels that frames are shown in have changed, in pixels of the screen.
  void BoxChanged(QSize box);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Private;
  std::unique_ptr<Private> p_;
};

}  // namespace kelto::editor
