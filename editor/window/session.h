// The project being edited: opened, changed, kept and saved.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <functional>

#include "editor/document/history.h"
#include "editor/document/show_changes.h"
#include "editor/preview/photo_size.h"
#include "editor/rules/fades_around.h"
#include "editor/widgets/gesture.h"
#include "framing/pixel_size.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// Holds the document and its history. Failures come as `Failed`, in the sentence that the command
/// prints; the document stays as it was then.
class Session : public QObject {
  Q_OBJECT

 public:
  using Change = std::function<Document(const Document&)>;

  /// Finds out the sizes of several photos, while the window goes on.
  using SeveralSizes = std::function<FoundSizes(const std::vector<std::string>& photos)>;

  /// `sizes` finds out the size of a photo that `several`, where it is given, was not asked for.
  explicit Session(PhotoSizes sizes, SeveralSizes several = {}, QObject* parent = nullptr);
  ~Session() override;

  /// Opens a photo, as a new project beside it, or a project; several photos, a folder of them or a
  /// list as a new slideshow. Whether it could be opened.
  bool Open(const QStringList& paths);
  bool Open(const QString& path) { return Open(QStringList{path}); }
  /// Takes up what was not saved when the editor stopped, as a change that can be undone.
  void Recover();
  /// Whether the project has such a state.
  bool CanRecover() const;
  void DropRecovery();

  bool IsOpen() const { return open_; }
  const History& Steps() const { return history_; }
  const Document& Current() const { return history_.Current(); }
  const host::RenderPlan& Plan() const { return plan_; }
  /// What is seen beside the picture of a show that is being edited.
  const FadesAround& Fades() const { return fades_; }
  PixelSize Photo() const { return photo_; }
  QString Path() const;
  /// The pictures of a show; empty for a film of one.
  const std::vector<PictureEntry>& Pictures() const { return pictures_; }
  int Picture() const { return static_cast<int>(Current().picture); }
  /// Seconds of the sound before the film that is edited begins.
  double SoundBegin() const;
  /// Throws Error.
  PixelSize SizeOf(const std::string& photo);
  /// Finds out the sizes of these photos, for SizeOf, all at once.
  void LearnSizes(const std::vector<std::string>& photos);
  /// Edits this picture of a show from now on.
  void SelectPicture(int picture);
  bool Modified() const { return open_ && history_.Modified(); }

  /// Changes the document; `name` is what the user reads beside "Undo".
  void Apply(const QString& name, const Change& change, Gesture gesture = {});
  void Undo();
  void Redo();
  /// Whether it was saved.
  bool Save();
  bool SaveAs(const QString& path);
  /// Takes the file's text in place of the document, as a change that can be undone.
  void Reload();
  /// Waits until what is not saved has been kept.
  void Settle();

 signals:
  /// Another document, or another state of it.
  void Changed();
  /// A change has left the document as it was.
  void CameToNothing();
  /// What is undone and saved, or where, is another.
  void StateChanged();
  /// Another program has changed the project's file.
  void FileChanged();
  void Failed(const QString& reason);

 private:
  /// Makes what `document` means what is shown. Throws Error, with nothing changed.
  void Take(const Document& document);
  bool Try(const std::function<void()>& work);
  /// Shows the step that the history has come to. Whether it can be shown.
  bool Show();
  void KeepSoon(bool now);
  void Keep();
  void Watch();
  void LookAtFile();

  History history_;
  host::RenderPlan plan_;
  PhotoSizes sizes_;
  SeveralSizes several_;
  FoundSizes known_;  ///< of the photos of what is open
  FadesAround fades_;
  std::vector<PictureEntry> pictures_;
  PixelSize photo_{1, 1};
  std::string openedPhoto_;
  int32_t openedRotation_ = 0;
  bool open_ = false;
  QTimer keepSoon_;
  QThreadPool keeper_;  ///< one thread: what is kept last is the last state
  QFileSystemWatcher watcher_;
};

}  // namespace kelto::editor
