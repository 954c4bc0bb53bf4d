// The effect at work on one scene after the other.
#pragma once

#include <functional>
#include <memory>

#include "host/frames/plan_session.h"
#include "host/jobs/frame_source.h"

namespace kelto::host {

/// Renders any frame of a list's scenes; holds one session at a time, so scenes are best asked for
/// in their order. Operations throw Error; so they do where a scene's photo or video is not the
/// file that NoteFiles has noted, or has changed since: frames of a film that are rendered in
/// several places must not show different photos.
class SceneRenderer {
 public:
  /// NoteFiles has seen `list`. `aborted` is asked while frames render; once it answers true,
  /// Render throws.
  SceneRenderer(SceneList list, std::function<bool()> aborted);

  /// Frame `number` of a scene's film. The view holds until the next call.
  FrameView Render(size_t scene, int32_t number);
  /// The same into a frame's memory; see PlanSession::RenderInto.
  void RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, size_t scene, int32_t number);

 private:
  void Open(size_t scene);
  /// To be called when a frame has been rendered.
  void Settle();
  /// Throws unless the files that the session of `scene` has read are those noted.
  void CheckFiles(const Scene& scene) const;

  SceneList list_;
  std::function<bool()> aborted_;
  size_t open_;  ///< the scene that is
  std::unique_ptr<HeldFile> photo_;
  std::unique_ptr<PlanSession> session_;  ///< of the scene that is open
  bool settled_ = false;  ///< whether the session has read all that it needs of the photo
};

/// Frame `index` of all scenes' frames: which scene's, and which of its film.
struct ScenePlace {
  size_t scene;
  int32_t number;
};

/// Counts through the frames of all scenes.
class SceneCursor {
 public:
  explicit SceneCursor(const SceneList& list) : list_(list) { Settle(); }
  /// Whether there is a frame left.
  bool More() const { return scene_ < list_.scenes.size(); }
  ScenePlace Place() const { return {scene_, list_.scenes[scene_].part.first + passed_}; }
  void Advance() {
    ++passed_;
    Settle();
  }

 private:
  void Settle() {
    while (More() && passed_ >= list_.scenes[scene_].part.Count()) {
      ++scene_;
      passed_ = 0;
    }
  }

  const SceneList& list_;
  size_t scene_ = 0;
  int32_t passed_ = 0;
};

}  // namespace kelto::host
