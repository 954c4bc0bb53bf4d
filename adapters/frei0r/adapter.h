// One instance of a plug-in, as a host sees it.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/frei0r/frame_clock.h"
#include "adapters/frei0r/parameters.h"
#include "platform/api.h"
#include "platform/hfx.h"

namespace kelto::frei0r {

class PhotoEffect;
struct CoveredPixels;
struct Moment;
struct Scene;

/// What Adapter::Fault returns where memory ran out; a text that needs none.
inline constexpr const char* kNoMemory = "no memory";

/// Holds parameters and renders frames of one size. Making one opens no file; the photograph is
/// loaded with the first frame. Nothing throws but the constructor, std::bad_alloc: whatever is
/// wrong gives a frame of background (or of the incoming video) and one line on the console.
///
/// Instances may be used side by side, and one instance from several threads: some hosts render
/// parts of a frame at once.
class KELTO_PLATFORM_API Adapter {
 public:
  /// `rowLength` pixels lie from one row of a frame to the next, `width` at least. `clock` reads
  /// the host's times.
  Adapter(Role role, uint32_t width, uint32_t height, uint32_t rowLength, FrameClock clock);
  ~Adapter();
  Adapter(const Adapter&) = delete;
  Adapter& operator=(const Adapter&) = delete;

  /// Sets the number at a place of the table; held within its bounds, and left as it is when it is
  /// not a number. For a place with a text nothing happens.
  void SetNumber(int index, double value) noexcept;
  /// Sets the text at a place of the table; null is the empty text.
  void SetText(int index, const char* value) noexcept;
  double Number(int index) const;
  /// Good until the text is set again.
  const char* Text(int index) const;

  /// Renders a frame of pixels B, G, R, A; writes nothing between rows. `in` may be null and may be
  /// `out` itself; `time` may be any number.
  void Render(double time, const uint32_t* in, uint32_t* out) noexcept;
  /// The same of a motion's frame `frame`, for hosts whose times need no reading. `covered`, unless
  /// null, gets the pixels that the photograph touches; the others are the video's, or all are
  /// covered.
  void RenderFrame(int64_t frame, const uint32_t* in, uint32_t* out,
                   CoveredPixels* covered) noexcept;
  /// What a frame of such an instance is made of, for those who draw it with more than 8 bits.
  struct Parts;
  /// Gets them. False, with or without a fault, where only RenderFrame can draw it: outlines,
  /// fields, studio levels and pictures reduced for playing are the effect's own. Throws
  /// std::bad_alloc.
  bool TakeApart(int64_t frame, Parts& parts);

  /// Width over height of a pixel as shown, for hosts that report it; it overrules a project's.
  void SetPixelAspect(double ratio) noexcept;
  /// Why the last frame shows no photograph; empty when it does.
  std::string Fault() const;

  /// Bytes of all pictures that the effect holds in this process.
  static uint64_t PictureBytes();

 private:
  void ReadParameters();
  void RenderOver(const uint32_t* in, uint32_t* out, int64_t frame, CoveredPixels* covered);
  Moment MomentOf(int64_t frame) const;
  hfxImage ImageOf(const uint32_t* pixels) const;
  void FillBackground(const uint32_t* in, uint32_t* out) const;
  void MakeOpaque(uint32_t* out) const;

  mutable std::mutex mutex_;
  Role role_;
  uint32_t width_, height_, rowLength_;
  Values values_;
  bool changed_ = true;
  double pixelAspect_ = 0.0;  ///< 0: as the scene has it
  std::string fault_;
  FrameClock clock_;
  std::unique_ptr<Scene> scene_;
  uint64_t sceneId_ = 0;
  std::shared_ptr<PhotoEffect> effect_;
  std::vector<uint32_t> videoCopy_, original_;
};

}  // namespace kelto::frei0r
