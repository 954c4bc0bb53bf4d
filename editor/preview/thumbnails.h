// Small pictures that photos fill, made in the background.
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace kelto::editor {

class DrawingProcess;

/// Has each photo decoded by a run of kelto-preview of its own, one at a time, as the sandbox wants
/// it. They come by the event loop.
class Thumbnails : public QObject {
  Q_OBJECT

 public:
  /// `program` is kelto-preview, `module` the effect's, `size` that of the pictures.
  Thumbnails(QString program, QString module, QSize size, QObject* parent = nullptr);
  ~Thumbnails() override;

  /// These photos are wanted from now on, by their paths, the first ones first.
  void Want(const std::vector<std::string>& photos);
  /// The photo's picture; null while it has not been made, and where it cannot be.
  QImage Of(const std::string& photo) const;

 signals:
  void Made();

 private:
  void Next();
  void Take(const QImage& picture);

  QString program_, module_;
  QSize size_;
  std::map<std::string, QImage> made_;  ///< a null picture where there can be none
  std::deque<std::string> wanted_;
  std::string current_;
  DrawingProcess* process_ = nullptr;
};

}  // namespace kelto::editor
