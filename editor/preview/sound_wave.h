// How loud a film's sound is over time, found out in the background.
#pragma once

#include <QObject>
#include <QString>
#include <string>
#include <vector>

namespace kelto::editor {

class DrawingProcess;

/// Has a sound read by a run of kelto-preview of its own, which may open no other file.
class SoundWave : public QObject {
  Q_OBJECT

 public:
  SoundWave(QString program, QString module, QObject* parent = nullptr);
  ~SoundWave() override;

  /// The sound of this file is wanted from now on; empty for none.
  void Want(const std::string& file);
  /// Peaks, 0..1, kPeaksPerSecond of them a second; empty while they are not known.
  const std::vector<float>& Peaks() const { return peaks_; }

 signals:
  void Read();
  /// In the sentence that the command prints.
  void Failed(const QString& reason);

 private:
  void Drop();

  QString program_, module_;
  std::string file_;
  std::vector<float> peaks_;
  DrawingProcess* process_ = nullptr;
};

}  // namespace kelto::editor
