#include "editor/window/render_queue.h"

#include <QtWidgets>
#include <algorithm>

#include "editor/document/command_line.h"
#include "editor/window/small_screens.h"

namespace kelto::editor {
namespace {

/// Of a film's name, beside its progress.
constexpr int kNameLetters = 24;

bool IsGoing(const RenderJob& job) {
  return job.TheState() == RenderJob::State::kWaiting ||
         job.TheState() == RenderJob::State::kRunning;
}

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
  auto* films = new QWidget;
  auto* filmColumn = new QVBoxLayout(films);
  filmColumn->setContentsMargins(8, 4, 8, 4);
  filmColumn->addLayout(rows_);
  filmColumn->addStretch();
  clear_ = new QPushButton(tr("Clear Finished"));
  clear_->setToolTip(tr("Takes films that are made or were given up off the list"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 4, 8, 0);
  row->addWidget(Scrolling(films), 1);
  row->addWidget(clear_, 0, Qt::AlignTop);
  setMinimumHeight(72);
  connect(clear_, &QPushButton::clicked, this, &RenderQueue::ClearFinished);
  connect(this, &RenderQueue::FilmsChanged, this, [this] { clear_->setEnabled(Finished() > 0); });
  emit FilmsChanged();
}

RenderQueue::~RenderQueue() {
  for (RenderJob* job : jobs_) delete job;
}

RenderJob* RenderQueue::Add(const Document& document, const QString& film,
                            const QStringList& options) {
  const QString project = SnapshotOf(document, projects_->path(), added_++);
  auto* job = new RenderJob(command_, QString(VerbOf(document)), project, film, options, this);
  jobs_.push_back(job);
  AddRow(job);
  connect(job, &RenderJob::Ended, this, &RenderQueue::StartNext, Qt::QueuedConnection);
  connect(job, &RenderJob::Ended, this, &RenderQueue::FilmsChanged);
  StartNext();
  emit FilmsChanged();
  return job;
}

int RenderQueue::Unfinished() const {
  return static_cast<int>(std::count_if(jobs_.begin(), jobs_.end(),
                                        [](const RenderJob* job) { return IsGoing(*job); }));
}

void RenderQueue::ClearFinished() {
  std::erase_if(jobs_, [](RenderJob* job) {
    if (IsGoing(*job)) return false;
    job->deleteLater();  // its row goes with it
    return true;
  });
  emit FilmsChanged();
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
  const QString film = QFileInfo(job->Film()).fileName();
  auto* name = new QLabel;
  // As wide in each row, for what follows to stand below each other.
  name->setFixedWidth(name->fontMetrics().averageCharWidth() * kNameLetters);
  name->setText(name->fontMetrics().elidedText(film, Qt::ElideMiddle, name->width()));
  name->setAccessibleName(film);
  name->setToolTip(Qt::convertFromPlainText(job->Film()));
  name->setTextFormat(Qt::PlainText);
  auto* bar = new QProgressBar;
  bar->setAccessibleName(tr("Progress of %1").arg(film));
  bar->setMinimumWidth(120);
  auto* state = new QLabel;
  state->setTextFormat(Qt::PlainText);
  state->setWordWrap(true);
  auto* cancel = new QPushButton(tr("Cancel"));
  auto* again = new QPushButton(tr("Try Again"));
  auto* show = new QPushButton(tr("Show in Folder"));
  line->addWidget(name);
  line->addWidget(bar, 1);
  line->addWidget(state, 2);
  line->addWidget(cancel);
  line->addWidget(again);
  line->addWidget(show);
  rows_->insertWidget(0, row);
  const auto update = [job, bar, state, cancel, again, show] {
    bar->setRange(0, static_cast<int>(std::max<int64_t>(1, job->Total())));
    bar->setValue(static_cast<int>(job->Done()));
    state->setText(StateText(*job));
    const bool going = IsGoing(*job), made = job->TheState() == RenderJob::State::kDone;
    cancel->setVisible(going);
    bar->setVisible(going);
    again->setVisible(!going && !made);
    show->setVisible(made);
  };
  update();
  connect(job, &RenderJob::Moved, row, update);
  connect(job, &QObject::destroyed, row, &QObject::deleteLater);
  connect(cancel, &QPushButton::clicked, job, &RenderJob::Cancel);
  connect(again, &QPushButton::clicked, this, [this, job] {
    job->WaitAgain();
    StartNext();
    emit FilmsChanged();
  });
  connect(show, &QPushButton::clicked, row, [job] {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(job->Film()).absolutePath()));
  });
}

}  // namespace kelto::editor
