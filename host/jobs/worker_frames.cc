// Frames rendered by several processes.
#include <string>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/effect/module_file.h"
#include "host/jobs/frame_source.h"
#include "host/jobs/scene_renderer.h"
#include "host/processes/shared_console.h"
#include "host/processes/shared_frames.h"
#include "host/processes/worker.h"
#include "host/sandbox/sandbox.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/library_text.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// Frames that a worker may be ahead: one being taken, one being rendered, and more so that a
/// worker which the system lets wait for a moment does not keep the others from working.
constexpr size_t kPlaces = 4;

/// What a worker does: every `workers`th frame from `index` on.
void RenderShare(const SceneList& list, int32_t index, int32_t workers, SharedFrames& frames,
                 Channel& line) {
  SandboxAccess access{ModuleFolders(list.module), {}};
  for (const Scene& scene : list.scenes) {
    access.reads.insert(access.reads.end(), {scene.plan.photo, scene.plan.over});
  }
  EnterSandbox(access);
  // No question of aborting: the owner ends its workers.
  SceneRenderer renderer(list, nullptr);
  size_t done = 0;
  int32_t turn = 0;
  for (SceneCursor cursor(list); cursor.More(); cursor.Advance()) {
    const bool mine = turn == index;
    turn = (turn + 1) % workers;
    if (!mine) continue;
    const ScenePlace place = cursor.Place();
    const size_t to = index * kPlaces + done % kPlaces;
    if (done < kPlaces) {
      // A copy, so that what the effect leaves alone is there too.
      frames.Store(to, renderer.Render(place.scene, place.number));
    } else {
      if (!line.Receive()) return;
      renderer.RenderInto(frames.Start(to), frames.RowBytes(), place.scene, place.number);
    }
    PrintLibraryText(list.scenes[place.scene].plan.photo);
    if (!line.Send({})) return;
    ++done;
  }
}

class WorkerFrames : public FrameSource {
 public:
  WorkerFrames(SceneList list, int32_t workers)
      : frames_(list.scenes.front().plan.format.size, list.layout, workers * kPlaces),
        console_(workers),
        photo_(list.scenes.size() == 1 ? list.scenes.front().plan.photo : "") {
    for (int32_t i = 0; i < workers; ++i) {
      workers_.push_back(std::make_unique<Worker>(WorkerEnd::kAtOnce, [&](Channel& line) {
        RenderShare(list, i, workers, frames_, line);
      }));
    }
  }

  FrameView Next() override {
    if (next_ > 0) Release(next_ - 1);
    const size_t worker = next_ % workers_.size();
    const size_t place = worker * kPlaces + next_ / workers_.size() % kPlaces;
    ++next_;
    AwaitFrame(worker);
    return frames_.View(place);
  }

 private:
  /// Gives the place of a frame that was taken back to its worker. One that has gone meanwhile is
  /// missed when it is its turn.
  void Release(size_t frame) { workers_[frame % workers_.size()]->Line().Send({}); }

  void AwaitFrame(size_t index) {
    Worker& worker = *workers_[index];
    for (;;) {
      const auto message = worker.Line().Receive();
      if (!message) break;
      switch (message->kind) {
        case MessageKind::kDone:
          return;
        case MessageKind::kConsole:
          if (console_.IsNews(index, message->text)) PrintMessage(message->text);
          break;
        case MessageKind::kMemory:
        case MessageKind::kShare:
        case MessageKind::kResult:
          break;  // these have what CheckJob let them have
        case MessageKind::kFailed:
          TellLibraryText(index);
          throw Error(message->text);
        case MessageKind::kMisused:
          TellLibraryText(index);
          throw UsageError(message->text);
      }
    }
    CheckInterrupt();
    const std::string end = worker.WaitForEnd();
    TellLibraryText(index);
    throw Error("a process that renders frames " + end);
  }

  /// What came after the last frame that was rendered.
  void TellLibraryText(size_t index) {
    for (const std::string& text : workers_[index]->TakeLibraryText()) {
      const std::string line = photo_.empty() ? text : photo_ + ": " + text;
      if (console_.IsNews(index, line)) PrintMessage(line);
    }
  }

  SharedFrames frames_;
  SharedConsole console_;
  std::string photo_;  ///< the only one; empty where there are several
  std::vector<std::unique_ptr<Worker>> workers_;
  size_t next_ = 0;
};

}  // namespace

std::unique_ptr<FrameSource> RenderInWorkers(SceneList list, int32_t workers) {
  NoteFiles(list);
  return std::make_unique<WorkerFrames>(std::move(list), workers);
}

}  // namespace kelto::host
