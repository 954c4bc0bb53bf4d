#include "editor/window/sizes_dialog.h"

#include <QtWidgets>
#include <atomic>
#include <exception>
#include <memory>

namespace kelto::editor {
namespace {

/// A dialog that comes and goes at once would be no help.
constexpr int kQuietMilliseconds = 400;
constexpr int kLookMilliseconds = 50;

}  // namespace

FoundSizes FindWithDialog(
    const std::vector<std::string>& photos,
    const std::function<FoundSizes(const std::vector<std::string>&, const SizesProgress&)>& find,
    QWidget* parent) {
  FoundSizes found;
  std::exception_ptr fault;
  std::atomic<size_t> done = 0;
  std::atomic<bool> over = false, cancelled = false;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    try {
      found = find(photos, [&](size_t count) {
        done = count;
        return !cancelled;
      });
    } catch (...) {
      fault = std::current_exception();
    }
    over = true;
  }));
  {
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(kQuietMilliseconds, &loop, &QEventLoop::quit);
    thread->start();
    // The window is drawn meanwhile; what is typed waits.
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }
  if (!over) {
    QProgressDialog dialog(QCoreApplication::translate("Sizes", "Looking at the photographs…"),
                           QCoreApplication::translate("Sizes", "Cancel"), 0,
                           static_cast<int>(photos.size()), parent);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(0);
    dialog.setAutoClose(false);
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
      if (over) return loop.quit();
      if (dialog.wasCanceled()) cancelled = true;
      if (!cancelled) dialog.setValue(static_cast<int>(done));
    });
    look.start(kLookMilliseconds);
    loop.exec();
  }
  thread->wait();
  if (fault) std::rethrow_exception(fault);
  return found;
}

}  // namespace kelto::editor
