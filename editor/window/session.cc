#include "editor/window/session.h"

#include <QFile>

#include "editor/document/recovery.h"
#include "host/base/error.h"
#include "host/project/project_file.h"

namespace kelto::editor {
namespace {

/// While a drag goes on.
constexpr int kKeepAfterMilliseconds = 300;

}  // namespace

Session::Session(PhotoSizes sizes, QObject* parent) : QObject(parent), sizes_(std::move(sizes)) {
  keeper_.setMaxThreadCount(1);
  keepSoon_.setSingleShot(true);
  keepSoon_.setInterval(kKeepAfterMilliseconds);
  connect(&keepSoon_, &QTimer::timeout, this, &Session::Keep);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, [this] {
    // A file that is replaced is not there for a moment.
    QTimer::singleShot(100, this, &Session::LookAtFile);
  });
}

Session::~Session() { Settle(); }

bool Session::Try(const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const host::Error& error) {
    emit Failed(QString::fromStdString(error.what()));
  } catch (const std::exception& error) {
    emit Failed(QString::fromStdString(error.what()));
  }
  return false;
}

bool Session::Open(const QString& path) {
  return Try([&] {
    const std::string name = path.toStdString();
    const bool project = host::IsProjectName(name);
    PixelSize size;
    const auto created = [&] {
      size = sizes_(name);
      return NewDocument(name, size, ProjectBeside(name));
    };
    const Document document = project ? ReadDocument(name) : created();
    host::RenderPlan plan = PlanOf(document);
    if (project) size = sizes_(plan.photo);
    Settle();
    history_.Begin(document, project);
    plan_ = std::move(plan);
    photo_ = size;
    openedPhoto_ = plan_.photo;
    open_ = true;
    Watch();
    emit Changed();
    emit StateChanged();
  });
}

QString Session::Path() const { return QString::fromStdString(Current().path); }

bool Session::CanRecover() const { return open_ && FindUnsaved(Current().path).has_value(); }

void Session::Recover() {
  const auto unsaved = FindUnsaved(Current().path);
  if (unsaved) Apply(tr("Recover"), [&](const Document&) { return unsaved->document; });
}

void Session::DropRecovery() { ForgetUnsaved(Current().path); }

void Session::Apply(const QString& name, const Change& change, Gesture gesture) {
  if (!open_) return;
  Try([&] {
    Document next = change(Current());
    host::RenderPlan plan = PlanOf(next);
    if (plan.photo != openedPhoto_) {
      photo_ = sizes_(plan.photo);
      openedPhoto_ = plan.photo;
    }
    history_.Do(std::move(next), name.toStdString(), gesture.id);
    plan_ = std::move(plan);
    emit Changed();
    emit StateChanged();
  });
  if (gesture.finished) history_.EndGesture();
  KeepSoon(gesture.finished);
}

void Session::Show() {
  Try([&] { plan_ = PlanOf(Current()); });
  emit Changed();
  emit StateChanged();
  KeepSoon(true);
}

void Session::Undo() {
  if (!history_.CanUndo()) return;
  history_.Undo();
  Show();
}

void Session::Redo() {
  if (!history_.CanRedo()) return;
  history_.Redo();
  Show();
}

bool Session::Save() { return SaveAs(Path()); }

bool Session::SaveAs(const QString& path) {
  return open_ && Try([&] {
           const std::string name = path.toStdString();
           const std::string before = Current().path;
           WriteDocument(before == name ? Current() : MovedTo(Current(), name));
           history_.Saved(name);
           Settle();
           ForgetUnsaved(before);
           ForgetUnsaved(name);
           plan_ = PlanOf(Current());
           Watch();
           emit StateChanged();
         });
}

void Session::Reload() {
  Apply(tr("Reload"), [&](const Document& document) {
    Document there = ReadDocument(document.path);
    return there;
  });
  if (history_.HasFile()) history_.Saved(Current().path);
  emit StateChanged();
}

void Session::KeepSoon(bool now) {
  if (now) {
    keepSoon_.stop();
    Keep();
  } else if (!keepSoon_.isActive()) {
    keepSoon_.start();
  }
}

void Session::Keep() {
  if (!open_) return;
  const Document document = Current();
  const bool modified = history_.Modified();
  const std::string saved = history_.SavedText();
  keeper_.start([this, document, modified, saved] {
    try {
      if (modified) {
        KeepUnsaved(document, saved);
      } else {
        ForgetUnsaved(document.path);
      }
    } catch (const host::Error& error) {
      const QString reason = QString::fromStdString(error.what());
      QMetaObject::invokeMethod(this, [this, reason] { emit Failed(reason); });
    }
  });
}

void Session::Settle() {
  if (keepSoon_.isActive()) {
    keepSoon_.stop();
    Keep();
  }
  keeper_.waitForDone();
}

void Session::Watch() {
  if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
  if (history_.HasFile()) watcher_.addPath(Path());
}

void Session::LookAtFile() {
  if (!open_ || !history_.HasFile()) return;
  if (!QFile::exists(Path())) return;
  if (!watcher_.files().contains(Path())) watcher_.addPath(Path());
  try {
    if (host::ReadProjectText(Current().path) != history_.SavedText()) emit FileChanged();
  } catch (const host::Error&) {
    // It is being written; another change follows.
  }
}

}  // namespace kelto::editor
