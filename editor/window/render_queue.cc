#include "editor/window/render_queue.h"

#include <QtWidgets>
#include <algorithm>

#include "editor/document/command_line.h"

namespace kelto::editor {
namespace {

QString ClockText(double seconds) {
  const int whole = static_cast<int>(std::max(0.0, seconds) + 0.5);
  return QString("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QChar('0'));
}

QString StateText(const RenderJob& job) {
  switch (job.TheState()) {
    case RenderJob::State::kWaiting:
      return RenderQueue::tr("Waiting");
    case RenderJob::State::kRunning:
      return job.SecondsLeft() < 0.0 ? RenderQueue::tr("Starting")
                                     : RenderQueue::tr("%1 left").arg(ClockText(job.SecondsLeft()));
    case RenderJob::State::kDone:
      return RenderQueue::tr("Made in %1").arg(ClockText(job.Elapsed()));
    case RenderJob::State::kCancelled:
      return RenderQueue::tr("Cancelled");
    case RenderJob::State::kFailed:
      break;
  }
  return job.Reason();
}

}  // namespace

QString SnapshotOf(const Document& document, const QString& folder, int number) {
  const QString path = folder + QString("/film-%1.json").arg(number);
  WriteDocument(MovedTo(document, path.toStdString()));
  return path;
}

RenderQueue::RenderQueue(QString command, QWidget* parent)
    : QWidget(parent),
      command_(std::move(command)),
      projects_(std::make_unique<QTemporaryDir>()),
      rows_(new QVBoxLayout) {
  auto* column = new QVBoxLayout(this);
  column->addLayout(rows_);
  column->addStretch();
  setMinimumHeight(72);
}

RenderQueue::~RenderQueue() {
  for (RenderJob* job : jobs_) delete job;
}

RenderJob* RenderQueue::Add(const Document& document, const QString& film,
                            const QStringList& options) {
  const int number = static_cast<int>(jobs_.size());
  const QString project = SnapshotOf(document, projects_->path(), number);
  auto* job = new RenderJob(command_, QString(VerbOf(document)), project, film, options, this);
  jobs_.push_back(job);
  AddRow(job);
  connect(job, &RenderJob::Ended, this, &RenderQueue::StartNext, Qt::QueuedConnection);
  StartNext();
  return job;
}

int RenderQueue::Unfinished() const {
  return static_cast<int>(std::count_if(jobs_.begin(), jobs_.end(), [](const RenderJob* job) {
    return job->TheState() == RenderJob::State::kWaiting ||
           job->TheState() == RenderJob::State::kRunning;
  }));
}

void RenderQueue::StartNext() {
  for (RenderJob* job : jobs_) {
    if (job->TheState() == RenderJob::State::kRunning) return;
  }
  for (RenderJob* job : jobs_) {
    if (job->TheState() == RenderJob::State::kWaiting) return job->Start();
  }
}

void RenderQueue::AddRow(RenderJob* job) {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  auto* name = new QLabel(QFileInfo(job->Film()).fileName());
  name->setToolTip(Qt::convertFromPlainText(job->Film()));
  name->setTextFormat(Qt::PlainText);
  auto* bar = new QProgressBar;
  bar->setAccessibleName(tr("Progress of %1").arg(name->text()));
  bar->setMinimumWidth(120);
  auto* state = new QLabel;
  state->setTextFormat(Qt::PlainText);
  state->setWordWrap(true);
  auto* cancel = new QPushButton(tr("Cancel"));
  auto* show = new QPushButton(tr("Show in Folder"));
  line->addWidget(name);
  line->addWidget(bar, 1);
  line->addWidget(state, 2);
  line->addWidget(cancel);
  line->addWidget(show);
  rows_->insertWidget(0, row);
  const auto update = [job, bar, state, cancel, show] {
    bar->setRange(0, static_cast<int>(std::max<int64_t>(1, job->Total())));
    bar->setValue(static_cast<int>(job->Done()));
    state->setText(StateText(*job));
    const bool going = job->TheState() == RenderJob::State::kWaiting ||
                       job->TheState() == RenderJob::State::kRunning;
    cancel->setVisible(going);
    bar->setVisible(going || job->TheState() == RenderJob::State::kDone);
    show->setVisible(job->TheState() == RenderJob::State::kDone);
  };
  update();
  connect(job, &RenderJob::Moved, row, update);
  connect(cancel, &QPushButton::clicked, job, &RenderJob::Cancel);
  connect(show, &QPushButton::clicked, row, [job] {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(job->Film()).absolutePath()));
  });
}

}  // namespace kelto::editor
