// The frames of a film while it is made, as a small picture on the terminal.
#pragma once

#include <memory>

#include "host/base/film_format.h"
#include "host/base/library.h"

namespace kelto::host {

/// Whether this build can show any.
bool CanShowLive();

/// The library that draws; none in a build that cannot.
Libraries LiveLibraries();

/// When frames are shown.
enum class LiveUse {
  kKnown,  ///< where the environment says that the terminal shows pictures
  kAsk,    ///< where the terminal says so, too, when it is asked
  kNever,
};

/// A picture above the progress line. A terminal of which it is not certain that it shows pictures
/// gets none; neither does an error stream that is no terminal, nor one that is for programs or
/// silent.
class LivePicture {
 public:
  /// Finds out what the terminal can do. To be called before the sandbox is entered.
  explicit LivePicture(LiveUse use);
  /// Takes the picture away.
  ~LivePicture();
  LivePicture(const LivePicture&) = delete;
  LivePicture& operator=(const LivePicture&) = delete;

  /// `frame` has been made; `aspect` is its width over its height as shown. Shown at most four
  /// times a second, the first at once, and for a twentieth of the time at the most.
  void Show(const FrameView& frame, PixelLayout layout, double aspect);

 private:
  class Screen;
  std::unique_ptr<Screen> screen_;  ///< null where nothing is shown
};

}  // namespace kelto::host
