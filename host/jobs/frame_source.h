// Where the frames of a film come from: the effect, in processes that write nowhere.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/base/film_format.h"
#include "host/files/held_file.h"
#include "host/options/frame_range.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Frames in their order.
class FrameSource {
 public:
  virtual ~FrameSource() = default;
  /// The next frame. The view holds until the next call. Throws Error; not to be called again then,
  /// nor after the last frame.
  virtual FrameView Next() = 0;

 protected:
  FrameSource() = default;
  FrameSource(const FrameSource&) = delete;
  FrameSource& operator=(const FrameSource&) = delete;
};

/// Called when a frame has been written: how many there are now, and the frame as the film has it.
using FrameDone = std::function<void(int32_t done, const FrameView& frame)>;

/// Some frames of a plan.
struct Scene {
  RenderPlan plan;
  FrameRange part;
  /// The files that the plan names, as NoteFiles found them; none for those that are not there.
  std::optional<FileState> photo{}, over{};
};

/// Scenes to be rendered one after the other; all of one frame size.
struct SceneList {
  std::string module;  ///< path of the effect's module
  PixelLayout layout = PixelLayout::kYCbYCr;
  std::vector<Scene> scenes;
};

/// Notes which photos and videos the scenes are made of, so that all who render them use the same.
void NoteFiles(SceneList& list);

/// Renders in `workers` processes, each with a module of its own, frame i of all the scenes in
/// worker i modulo `workers`. They begin at once, and no worker is more than a few frames ahead. To
/// be called before this process has any thread: workers begin as its copies. What the module
/// prints in several workers is printed once. On Windows this process renders all frames.
std::unique_ptr<FrameSource> RenderInWorkers(SceneList list, int32_t workers);

}  // namespace kelto::host
