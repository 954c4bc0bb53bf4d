// The effect with one photograph, shared by all instances that show it.
//
// Locking. The module has no lock and no thread: it is promised one call at a time. Hosts make one
// instance for each render thread and render them side by side, so one process-wide lock, in this
// library that both plug-ins share, stands around everything that calls the module or the host
// library. The other way, a loaded copy of the module for each thread, was not taken: each copy
// would load and hold the photograph again (96 MB for 24 megapixels), and the host does its own
// share of a frame (decoding, blending, encoding) beside the lock anyway. docs/adapters.md has the
// memory that sharing leads to.
//
// Sharing. The module keeps a picture with each of its instances and, past its budget, takes
// pictures back from others: eight instances of one large photograph would reload it in turns. So
// instances of one photograph and levels share one of the module's, set up anew where their
// settings differ.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "adapters/frei0r/covered_pixels.h"
#include "adapters/frei0r/scene.h"
#include "host/effect/photo.h"
#include "host/track/view_track.h"
#include "platform/hfx.h"
#include "runtime/hfx/host.h"

namespace kelto::frei0r {

/// How a frame shows the photo, for those who draw it themselves.
struct ShownPhoto {
  DrawnFrame frame;
  View view;
  bool nearest = false;  ///< by nearest neighbour, whatever the filter
  int filter = 0;        ///< index in the effect's list
};

/// One frame's surroundings. Pixels are B, G, R, A without row padding.
struct FrameRequest {
  const Scene* scene = nullptr;
  uint64_t sceneId = 0;  ///< differs between scenes that may differ
  Moment moment;
  double quality = 1.0;
  hfxImage* input = nullptr;  ///< overwritten
  hfxImage* output = nullptr;
  PixelSize size{};  ///< of the frame, where the images stand for a larger one
  /// The host's video, kept to the bit where the photo does not touch it; null: a colour is behind.
  const hfxImage* video = nullptr;
  bool overNothing = false;          ///< that video is nothing: edges get what they cover as alpha
  CoveredPixels* covered = nullptr;  ///< gets what the photo touches, where the video was kept
};

class PhotoEffect {
 public:
  /// The effect of this photograph and these levels (an entry of the effect's list), made and
  /// loaded when nobody has it yet. Never null: what cannot be shown is reported by Render.
  static std::shared_ptr<PhotoEffect> Share(const std::string& photo, const std::string& levels);

  PhotoEffect(const PhotoEffect&) = delete;
  PhotoEffect& operator=(const PhotoEffect&) = delete;

  /// Renders a frame. Returns an empty text, or in one line why there is none, in which case the
  /// output may hold anything.
  std::string Render(const FrameRequest& request);

  /// Finds out how a frame of the request's size shows the photo; its images are not used. Returns
  /// as Render does.
  std::string Look(FrameRequest request, ShownPhoto& shown);

  /// Bytes of the pictures of all effects.
  static uint64_t PictureBytes();

 private:
  PhotoEffect(std::string photo, std::string levels);
  ~PhotoEffect() = default;
  /// Leaves an effect, or none and why in `fault_`.
  void TryToLoad();
  void Load();
  /// Loads what has to be and sets the effect up; returns why there is none.
  std::string Prepare(const FrameRequest& request);
  void Draw(const FrameRequest& request);
  void KeepVideo(const FrameRequest& request, const host::RenderPlan& plan,
                 const hfx::RenderState& state, bool firstField, hfxImage& output);
  void SetUp(const FrameRequest& request);

  const std::string photo_, levels_;
  std::shared_ptr<hfx::Module> module_;
  std::unique_ptr<hfx::Effect> effect_;           // goes before its module
  PixelSize size_;                                ///< of the photograph
  std::unique_ptr<const host::ViewTrack> track_;  ///< of the scene; null where its keys move
  std::string fault_;                             ///< why there is no effect
  uint64_t missed_ = 0;                           ///< frames asked for without one
  uint64_t sceneId_ = 0;                          ///< set up for this one
};

}  // namespace kelto::frei0r
