#include "editor/window/move_finder.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "editor/document/show_changes.h"
#include "host/base/error.h"

namespace kelto::editor {

MoveFinder::MoveFinder(QString command, const Document& document, QObject* parent)
    : QObject(parent), command_(std::move(command)), document_(PictureAlone(document)) {
  connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
    Read(status == QProcess::NormalExit && code == 0);
    deleteLater();
  });
  connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    emit Failed(tr("%1 cannot be started: %2").arg(command_, process_.errorString()));
    deleteLater();
  });
}

MoveFinder::~MoveFinder() {
  // Those who wait for what it finds may be half gone: the window that closes.
  process_.disconnect(this);
  process_.kill();  // it writes no files
  process_.waitForFinished(1000);
}

void MoveFinder::Start() {
  const host::RenderPlan plan = PlanOf(document_);
  const QString size = QString("%1x%2").arg(plan.format.size.width).arg(plan.format.size.height);
  process_.start(command_,
                 {"new", QString::fromStdString(plan.photo), "-o", "-", "--move", "auto", "--size",
                  size, "--rotate", QString::number(plan.rotate)},
                 QIODevice::ReadOnly);
}

void MoveFinder::Read(bool made) {
  if (!made) {
    QString reason = QString::fromUtf8(process_.readAllStandardError()).trimmed();
    emit Failed(reason.startsWith("kelto: ") ? reason.mid(7) : reason);
    return;
  }
  try {
    const Document found{document_.path, process_.readAllStandardOutput().toStdString()};
    emit Found(PlanOf(found).views);
  } catch (const host::Error& error) {
    emit Failed(QString::fromStdString(error.what()));
  }
}

}  // namespace kelto::editor
