// The film, drawn by the engine in a process of its own.
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <cstdint>
#include <memory>

#include "editor/rules/fades_around.h"
#include "editor/rules/film_way.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// Draws the frames of a plan that changes, and plays them in real time. Everything is answered by
/// signals from the event loop. Of what is asked for while a frame is drawn, only the last is drawn
/// next. When the process ends by itself, as a fault in a codec makes it, `Failed` says so and the
/// next change starts another.
class Preview : public QObject {
  Q_OBJECT

 public:
  /// `program` is the process's executable, kelto-preview; `module` the effect's.
  Preview(QString program, QString module, QObject* parent = nullptr);
  ~Preview() override;

  /// Shows this plan from now on. Its photo is read again only where that is another. The frame
  /// being looked at stays, as far as the film has it.
  /// `fades` are what is seen beside a picture of a show. Frames are counted from the card on that
  /// comes before the first one; to begin with, the picture's first is looked at.
  void SetPlan(const host::RenderPlan& plan, const FadesAround& fades = {});
  /// Reads the photo with all its pixels, where PhotoRead gave fewer.
  void WantWholePhoto();
  /// The pixels that there are for showing frames. Films of larger frames are drawn that size while
  /// they play or change; 0 x 0, as at first: always the film's own.
  void SetBox(QSize box);

  int32_t Frame() const;
  int32_t Frames() const;
  bool Playing() const;

 public slots:
  /// Goes to a frame, the nearest that there is.
  void Seek(int32_t frame);
  void Play();
  void Pause();
  void SetLoop(bool loop);

 signals:
  /// The photo, upright; reduced where it has more than 32 million pixels, and to those of a screen
  /// where it can be read in less time so, until WantWholePhoto.
  void PhotoRead(const QImage& photo);
  /// A frame of the plan given last. `exact`: in the film's size and full quality.
  void FrameDrawn(const QImage& image, int32_t frame, bool exact);
  void WayFound(const kelto::editor::FilmWay& way);
  void PlayingChanged(bool playing);
  /// In the sentence that the command prints.
  void Failed(const QString& reason);

 private:
  class Private;
  std::unique_ptr<Private> p_;
};

}  // namespace kelto::editor
