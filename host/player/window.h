// A window on the screen.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/base/film_format.h"

namespace kelto::host {

/// What the user wants.
struct PlayerCommand {
  enum Kind {
    kQuit,
    kPause,    ///< or play
    kStep,     ///< `amount` frames
    kSeconds,  ///< `amount` seconds on
    kFirst,
    kLast,
    kBar,  ///< the bar was clicked or dragged at x = `amount`
    kDisplay,
    kHelp,
    kFullScreen,
    kRedraw,  ///< the window's size or what it showed is another
  };
  Kind kind;
  double amount = 0.0;
};

/// A window with a picture above a bar. Operations throw Error.
class Window {
 public:
  /// Opens a window in which a film of `size` pixels fits whole, on the user's screen.
  Window(const std::string& title, FrameSize size, SampleAspect aspect, int32_t barHeight);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// The next thing that the user wants, waiting up to `seconds` for it.
  std::optional<PlayerCommand> Next(double seconds);
  /// Takes a frame of PixelLayout::kBGRA and the film's size for the picture.
  void SetPicture(const FrameView& frame);
  /// Shows picture, bar and, where there is one, a page over the picture; both PixelLayout::kBGRA,
  /// the bar BarWidth() wide.
  void Show(const FrameView& bar, const std::optional<FrameView>& page);
  void SetTitle(const std::string& title);
  void SwitchFullScreen();
  int32_t BarWidth() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace kelto::host
