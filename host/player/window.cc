#include "host/player/window.h"

// The command has a main of its own.
#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "host/base/error.h"
#include "host/options/size.h"
#include "host/player/player.h"

namespace kelto::host {
namespace {

constexpr int kLeastWidth = 320, kLeastHeight = 200;
/// Of the screen, what a new window takes at the most.
constexpr double kMostOfScreen = 0.9;
/// B, G, R, A in memory.
constexpr uint32_t kFormat = SDL_PIXELFORMAT_BGRA32;

[[noreturn]] void Fail(const std::string& doing) { throw Error(doing + ": " + SDL_GetError()); }

struct Quit {
  ~Quit() { SDL_Quit(); }
};
/// Where there is no screen, SDL may take up with a driver that shows nothing, after its libraries
/// have printed messages of their own.
void OpenScreen() {
  constexpr const char* kNeed = "playing needs a screen; is DISPLAY or WAYLAND_DISPLAY set?";
  constexpr const char* kScreens[] = {"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"};
  if (std::none_of(std::begin(kScreens), std::end(kScreens), std::getenv)) {
    throw Error(std::string("no window can be opened: ") + kNeed);
  }
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    throw Error(std::string("no window can be opened: ") + SDL_GetError() + "; " + kNeed);
  }
  const std::string_view driver = SDL_GetCurrentVideoDriver();
  if (driver == "offscreen" || driver == "dummy") {
    SDL_Quit();
    throw Error(std::string("no window can be opened: ") + kNeed);
  }
}

struct Destroy {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};
using Texture = std::unique_ptr<SDL_Texture, Destroy>;

std::optional<PlayerCommand> CommandOfKey(const SDL_Keysym& key) {
  switch (key.sym) {
    case SDLK_q:
    case SDLK_ESCAPE:
      return PlayerCommand{PlayerCommand::kQuit};
    case SDLK_SPACE:
      return PlayerCommand{PlayerCommand::kPause};
    case SDLK_PERIOD:
      return PlayerCommand{PlayerCommand::kStep, 1.0};
    case SDLK_COMMA:
      return PlayerCommand{PlayerCommand::kStep, -1.0};
    case SDLK_RIGHT:
      return PlayerCommand{PlayerCommand::kSeconds, 1.0};
    case SDLK_LEFT:
      return PlayerCommand{PlayerCommand::kSeconds, -1.0};
    case SDLK_HOME:
      return PlayerCommand{PlayerCommand::kFirst};
    case SDLK_END:
      return PlayerCommand{PlayerCommand::kLast};
    case SDLK_d:
      return PlayerCommand{PlayerCommand::kDisplay};
    case SDLK_f:
      return PlayerCommand{PlayerCommand::kFullScreen};
    case SDLK_h:
      return PlayerCommand{PlayerCommand::kHelp};
    default:
      return std::nullopt;
  }
}

/// The largest size of `shown`'s shape in `room`, in its middle.
SDL_Rect FitInto(const SDL_Rect& room, double width, double height) {
  const double scale = std::min(room.w / width, room.h / height);
  const int w = std::max(1, static_cast<int>(std::lround(width * scale)));
  const int h = std::max(1, static_cast<int>(std::lround(height * scale)));
  return {room.x + (room.w - w) / 2, room.y + (room.h - h) / 2, w, h};
}

}  // namespace

Libraries WindowLibraries() {
  SDL_version sdl;
  SDL_GetVersion(&sdl);
  return {{"SDL", std::to_string(sdl.major) + "." + std::to_string(sdl.minor) + "." +
                      std::to_string(sdl.patch)}};
}

struct Window::Parts {
  Quit quit;                                   // goes last
  double shownWidth = 1.0, shownHeight = 1.0;  ///< shape of the picture
  int barHeight = 0;
  bool dragging = false;
  std::unique_ptr<SDL_Window, Destroy> window;
  std::unique_ptr<SDL_Renderer, Destroy> renderer;
  Texture picture;
  Texture bar, page;

  SDL_Rect Room() const {
    SDL_Rect room{0, 0, 0, 0};
    if (SDL_GetRendererOutputSize(renderer.get(), &room.w, &room.h) != 0) Fail("the window");
    return room;
  }
  Texture NewTexture(FrameSize size) const {
    Texture texture(SDL_CreateTexture(renderer.get(), kFormat, SDL_TEXTUREACCESS_STREAMING,
                                      size.width, size.height));
    if (!texture) Fail(ToString(size) + " pixels cannot be shown");
    // The fourth byte is no alpha.
    SDL_SetTextureBlendMode(texture.get(), SDL_BLENDMODE_NONE);
    return texture;
  }
  static void Fill(SDL_Texture* texture, const FrameView& frame) {
    if (SDL_UpdateTexture(texture, nullptr, frame.pixels, static_cast<int>(frame.rowBytes)) != 0) {
      Fail("a frame cannot be shown");
    }
  }
  /// Draws pixels as they are, through a texture that is kept as long as the size stays.
  void Draw(Texture& texture, const FrameView& frame, int x, int y) const {
    int width = 0, height = 0;
    if (texture) SDL_QueryTexture(texture.get(), nullptr, nullptr, &width, &height);
    if (width != frame.size.width || height != frame.size.height) texture = NewTexture(frame.size);
    Fill(texture.get(), frame);
    const SDL_Rect place{x, y, frame.size.width, frame.size.height};
    SDL_RenderCopy(renderer.get(), texture.get(), nullptr, &place);
  }
  std::optional<PlayerCommand> CommandOf(const SDL_Event& event);
};

Window::Window(const std::string& title, FrameSize size, SampleAspect aspect, int32_t barHeight) {
  // The command has its own way with signals, and a player lets the screen go dark when paused.
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
  // The click that brings the window to the front is meant for what lies under it, too.
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  SDL_SetMainReady();
  OpenScreen();
  parts_ = std::make_unique<Parts>();
  parts_->barHeight = barHeight;
  parts_->shownWidth = size.width * aspect.Ratio();
  parts_->shownHeight = size.height;

  SDL_Rect screen{0, 0, 1280, 720};
  SDL_GetDisplayUsableBounds(0, &screen);
  const SDL_Rect room{0, 0, static_cast<int>(screen.w * kMostOfScreen),
                      static_cast<int>(screen.h * kMostOfScreen) - barHeight};
  SDL_Rect shown = FitInto(room, parts_->shownWidth, parts_->shownHeight);
  if (shown.w > parts_->shownWidth) {
    shown.w = static_cast<int>(std::lround(parts_->shownWidth));
    shown.h = size.height;
  }
  parts_->window.reset(SDL_CreateWindow(
      title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, std::max(shown.w, kLeastWidth),
      std::max(shown.h + barHeight, kLeastHeight), SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN));
  if (!parts_->window) Fail("no window can be opened");
  SDL_SetWindowMinimumSize(parts_->window.get(), kLeastWidth, kLeastHeight);
  parts_->renderer.reset(SDL_CreateRenderer(parts_->window.get(), -1, 0));
  if (!parts_->renderer) Fail("nothing can be drawn into the window");
  parts_->picture = parts_->NewTexture(size);
  // Only now: the renderer may have put another window in the place of the first.
  SDL_ShowWindow(parts_->window.get());
}

Window::~Window() = default;

std::optional<PlayerCommand> Window::Parts::CommandOf(const SDL_Event& event) {
  const auto onBar = [&](int32_t y) { return y >= Room().h - barHeight; };
  switch (event.type) {
    case SDL_QUIT:
      return PlayerCommand{PlayerCommand::kQuit};
    case SDL_KEYDOWN:
      return CommandOfKey(event.key.keysym);
    case SDL_WINDOWEVENT:
      return PlayerCommand{PlayerCommand::kRedraw};
    case SDL_MOUSEBUTTONDOWN:
      dragging = event.button.button == SDL_BUTTON_LEFT && onBar(event.button.y);
      if (dragging) return PlayerCommand{PlayerCommand::kBar, static_cast<double>(event.button.x)};
      return std::nullopt;
    case SDL_MOUSEMOTION:
      if (dragging) return PlayerCommand{PlayerCommand::kBar, static_cast<double>(event.motion.x)};
      return std::nullopt;
    case SDL_MOUSEBUTTONUP:
      dragging = false;
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

std::optional<PlayerCommand> Window::Next(double seconds) {
  // Asked for again and again: SDL 2.26, where it waits, wakes itself by a message to the window,
  // and when that comes after the window has gone, X ends the program.
  constexpr uint64_t kNap = 4;
  const auto patience = static_cast<uint64_t>(std::ceil(std::clamp(seconds, 0.0, 1.0) * 1000.0));
  const uint64_t end = SDL_GetTicks64() + patience;
  SDL_Event event;
  for (;;) {
    bool any = false;
    for (; SDL_PollEvent(&event) != 0; any = true) {
      if (const auto command = parts_->CommandOf(event)) return command;
    }
    // What means nothing here may come in numbers: the caller's time is not to be used up by it.
    const uint64_t now = SDL_GetTicks64();
    if (any || now >= end) return std::nullopt;
    SDL_Delay(static_cast<uint32_t>(std::min(kNap, end - now)));
  }
}

void Window::SetPicture(const FrameView& frame) { Parts::Fill(parts_->picture.get(), frame); }

void Window::Show(const FrameView& bar, const std::optional<FrameView>& page) {
  SDL_Renderer* const renderer = parts_->renderer.get();
  SDL_Rect room = parts_->Room();
  room.h = std::max(1, room.h - parts_->barHeight);
  SDL_SetRenderDrawColor(renderer, 0, 0, 0, 255);
  SDL_RenderClear(renderer);
  const SDL_Rect place = FitInto(room, parts_->shownWidth, parts_->shownHeight);
  SDL_RenderCopy(renderer, parts_->picture.get(), nullptr, &place);
  if (page) {
    parts_->Draw(parts_->page, *page, (room.w - page->size.width) / 2,
                 (room.h - page->size.height) / 2);
  }
  parts_->Draw(parts_->bar, bar, 0, room.h);
  SDL_RenderPresent(renderer);
}

void Window::SetTitle(const std::string& title) {
  SDL_SetWindowTitle(parts_->window.get(), title.c_str());
}

void Window::SwitchFullScreen() {
  const bool full = (SDL_GetWindowFlags(parts_->window.get()) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0;
  SDL_SetWindowFullscreen(parts_->window.get(), full ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
}

int32_t Window::BarWidth() const { return std::max(1, parts_->Room().w); }

}  // namespace kelto::host
