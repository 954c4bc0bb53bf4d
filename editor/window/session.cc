#include "editor/window/session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <set>
#include <utility>

#include "editor/document/recovery.h"
#include "editor/document/show_fades.h"
#include "host/base/error.h"
#include "host/jobs/picture_list.h"
#include "host/project/project_file.h"

namespace kelto::editor {
namespace {

/// While a drag goes on.
constexpr int kKeepAfterMilliseconds = 300;

struct Opened {
  Document document;
  std::optional<std::string> saved;  ///< the file's text, where there is a file
};

/// Where the show of these photos lies once it is saved: in their folder, and named after it.
std::string ShowBeside(const QString& first) {
  const QFileInfo info(first);
  const QDir folder = info.isDir() ? QDir(first) : info.absoluteDir();
  const QString name = folder.dirName().isEmpty() ? QString("slideshow") : folder.dirName();
  return folder.absoluteFilePath(name + ".json").toStdString();
}

/// `learn` is called ahead of `sizes` with the photos of which several will be asked for.
Opened OpenedOf(const QStringList& paths, const PhotoSizes& sizes,
                const std::function<void(const std::vector<std::string>&)>& learn) {
  const std::string name = paths.first().toStdString();
  if (paths.size() == 1 && host::IsProjectName(name)) {
    const Document document = ReadDocument(name);
    learn(PhotosWithoutViews(document));
    return {WithMovesAsViews(document, sizes), document.text};
  }
  if (paths.size() == 1 && !QFileInfo(paths.first()).isDir()) {
    try {
      return {NewDocument(name, sizes(name), ProjectBeside(name)), {}};
    } catch (const host::Error&) {
      // A list is no photo.
      if (host::EndsLikeAPicture(name)) throw;
    }
  }
  std::vector<std::string> inputs;
  for (const QString& path : paths) inputs.push_back(path.toStdString());
  std::vector<std::string> photos;
  for (const host::ListedPicture& picture : host::PicturesOf(inputs)) {
    if (!picture.options.empty()) {
      throw host::Error(picture.place +
                        ": the editor takes no options from a list; `kelto slideshow` does");
    }
    photos.push_back(picture.path);
  }
  learn(photos);
  return {NewShow(photos, ShowBeside(paths.first()), sizes), {}};
}

}  // namespace

Session::Session(PhotoSizes sizes, SeveralSizes several, QObject* parent)
    : QObject(parent), sizes_(std::move(sizes)), several_(std::move(several)) {
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

bool Session::Open(const QStringList& paths) {
  FoundSizes before = std::exchange(known_, {});
  const bool could = Try([&] {
    const Opened opened = OpenedOf(
        paths, [this](const std::string& photo) { return SizeOf(photo); },
        [this](const std::vector<std::string>& photos) { LearnSizes(photos); });
    Settle();              // first: where it fails, all stays as it is
    openedPhoto_.clear();  // its file may have been replaced
    Take(opened.document);
    history_.Begin(opened.document, opened.saved.has_value());
    if (opened.saved) history_.BeganFrom(*opened.saved);
    open_ = true;
    Watch();
    emit Changed();
    emit StateChanged();
  });
  if (!could) known_ = std::move(before);
  return could;
}

PixelSize Session::SizeOf(const std::string& photo) {
  const auto found = known_.find(photo);
  if (found == known_.end()) return known_[photo].size = sizes_(photo);
  if (found->second.fault.empty()) return found->second.size;
  const std::string fault = found->second.fault;
  // Faults are of one attempt: the file may be mended, and who cancelled may want it after all.
  std::erase_if(known_, [](const auto& one) { return !one.second.fault.empty(); });
  throw host::Error(fault);
}

void Session::LearnSizes(const std::vector<std::string>& photos) {
  if (!several_) return;
  std::vector<std::string> unknown;
  std::set<std::string> seen;
  for (const std::string& photo : photos) {
    const auto found = known_.find(photo);
    // What could not be read may have been mended.
    const bool known = found != known_.end() && found->second.fault.empty();
    if (!known && seen.insert(photo).second) unknown.push_back(photo);
  }
  if (unknown.empty()) return;
  for (auto& [photo, size] : several_(unknown)) known_[photo] = size;
}

void Session::Take(const Document& document) {
  host::RenderPlan plan = PlanOf(document);
  std::vector<PictureEntry> pictures = PicturesOf(document);
  FadesAround fades = FadesOf(document);
  if (plan.photo != openedPhoto_ || plan.rotate != openedRotation_) {
    photo_ = TurnedSize(plan, SizeOf(plan.photo));
    openedPhoto_ = plan.photo;
    openedRotation_ = plan.rotate;
  }
  plan_ = std::move(plan);
  fades_ = std::move(fades);
  pictures_ = std::move(pictures);
}

double Session::SoundBegin() const {
  const size_t at = Current().picture;
  return at < pictures_.size() ? pictures_[at].begin : 0.0;
}

void Session::SelectPicture(int picture) {
  if (!open_ || picture < 0 || picture >= static_cast<int>(pictures_.size())) return;
  const bool could = Try([&] {
    Document other = Current();
    other.picture = static_cast<size_t>(picture);
    Take(other);
    history_.EndGesture();
    history_.Look(other.picture);
  });
  if (!could) return;
  emit Changed();
  emit StateChanged();
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
    if (next == Current()) return emit CameToNothing();
    Take(next);
    // Another program may have left fewer pictures.
    if (!pictures_.empty()) next.picture = std::min(next.picture, pictures_.size() - 1);
    history_.Do(std::move(next), name.toStdString(), gesture.id);
    emit Changed();
    emit StateChanged();
  });
  if (gesture.finished) history_.EndGesture();
  KeepSoon(gesture.finished);
}

bool Session::Show() {
  if (!Try([&] { Take(Current()); })) return false;
  emit Changed();
  emit StateChanged();
  KeepSoon(true);
  return true;
}

void Session::Undo() {
  if (!history_.CanUndo()) return;
  history_.Undo();
  if (!Show()) history_.Redo();
}

void Session::Redo() {
  if (!history_.CanRedo()) return;
  history_.Redo();
  if (!Show()) history_.Undo();
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
           Take(Current());
           Watch();
           emit StateChanged();
         });
}

void Session::Reload() {
  Document there;
  const bool read = Try([&] {
    there = ReadDocument(Current().path);
    LearnSizes(PhotosWithoutViews(there));
  });
  if (!read) return;
  const std::string text = there.text;
  Apply(tr("Reload"), [&](const Document& document) {
    there.picture = document.picture;
    return WithMovesAsViews(there, [this](const std::string& photo) { return SizeOf(photo); });
  });
  if (history_.HasFile()) {
    history_.Saved(Current().path);
    history_.BeganFrom(text);
  }
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
