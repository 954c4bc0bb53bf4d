#include "editor/window/render_job.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace kelto::editor {

RenderJob::RenderJob(QString command, QString verb, QString project, QString film,
                     QStringList options, QObject* parent)
    : QObject(parent), command_(std::move(command)), film_(std::move(film)) {
  words_ = QStringList{verb, project, "-o", film_, "--json"} + options;
  connect(&process_, &QProcess::readyReadStandardError, this, &RenderJob::ReadEvents);
  connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
    ReadEvents();
    if (state_ != State::kRunning) return;
    const bool made = status == QProcess::NormalExit && code == 0;
    if (!made && reason_.isEmpty()) reason_ = tr("The command ended without saying why.");
    End(made ? State::kDone : State::kFailed);
  });
  connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    reason_ = tr("%1 cannot be started: %2").arg(command_, process_.errorString());
    End(State::kFailed);
  });
}

RenderJob::~RenderJob() {
  if (process_.state() == QProcess::NotRunning) return;
  disconnect(&process_, nullptr, this, nullptr);
  process_.terminate();  // it takes its unfinished film away
  if (!process_.waitForFinished(3000)) process_.kill();
}

void RenderJob::WaitAgain() {
  if (state_ != State::kCancelled && state_ != State::kFailed) return;
  // One that was cancelled just now takes its unfinished film away first.
  if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(3000)) return;
  reason_.clear();
  done_ = total_ = 0;
  secondsLeft_ = -1.0;
  state_ = State::kWaiting;
  emit Moved();
}

void RenderJob::Start() {
  state_ = State::kRunning;
  clock_.start();
  process_.start(command_, words_, QIODevice::ReadOnly);
  emit Moved();
}

void RenderJob::Cancel() {
  if (state_ == State::kRunning) process_.terminate();
  if (state_ == State::kRunning || state_ == State::kWaiting) End(State::kCancelled);
}

double RenderJob::Elapsed() const {
  return clock_.isValid() ? static_cast<double>(clock_.elapsed()) / 1000.0 : 0.0;
}

void RenderJob::ReadEvents() {
  process_.setReadChannel(QProcess::StandardError);
  while (process_.canReadLine()) {
    const QJsonObject event = QJsonDocument::fromJson(process_.readLine()).object();
    const QString name = event["event"].toString();
    if (name == "start") {
      total_ = event["frames"].toInteger();
    } else if (name == "progress") {
      done_ = event["done"].toInteger();
      total_ = event["total"].toInteger();
      secondsLeft_ = event["secondsLeft"].toDouble(-1.0);
    } else if (name == "error") {
      reason_ = event["text"].toString();
    }
    emit Moved();
  }
}

void RenderJob::End(State state) {
  state_ = state;
  if (state == State::kDone) done_ = total_;
  emit Moved();
  emit Ended();
}

}  // namespace kelto::editor
