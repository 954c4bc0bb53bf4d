// A film that a process of the command makes.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace kelto::editor {

/// Runs `kelto render PROJECT -o FILM ...`, or another verb such as slideshow, and reads its
/// events. Its end, whatever it is, comes as `Ended`; a film that failed leaves no file, as the
/// command sees to.
class RenderJob : public QObject {
  Q_OBJECT

 public:
  enum class State { kWaiting, kRunning, kDone, kFailed, kCancelled };

  /// `options` are further words for the command.
  RenderJob(QString command, QString verb, QString project, QString film, QStringList options,
            QObject* parent = nullptr);
  ~RenderJob() override;

  void Start();
  /// One that was cancelled or has failed waits to be started once more.
  void WaitAgain();
  /// Ends the process; the film is not made.
  void Cancel();

  State TheState() const { return state_; }
  const QString& Film() const { return film_; }
  /// What the command said when it failed, or how the process ended.
  const QString& Reason() const { return reason_; }
  int64_t Done() const { return done_; }
  int64_t Total() const { return total_; }
  /// As the command reckons; below 0 while it does not know.
  double SecondsLeft() const { return secondsLeft_; }
  /// Seconds since the process began.
  double Elapsed() const;

 signals:
  void Moved();
  void Ended();

 private:
  void ReadEvents();
  void End(State state);

  QString command_, film_, reason_;
  QStringList words_;
  QProcess process_;
  QElapsedTimer clock_;
  State state_ = State::kWaiting;
  int64_t done_ = 0, total_ = 0;
  double secondsLeft_ = -1.0;
};

}  // namespace kelto::editor
