#include "host/live/live_picture.h"

#include <chafa.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

#include "host/live/small_picture.h"
#include "host/live/terminal_form.h"
#include "host/terminal/library_text.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

using namespace std::chrono_literals;

constexpr auto kShortestBreak = 250ms;
/// Breaks are this many times as long as what is shown between them takes.
constexpr int kBreakFactor = 20;
/// The picture has at most so many rows of the terminal, half of them, and so many pixels.
constexpr int kMostRows = 16, kFewestRows = 3, kMostLivePixels = 360, kMostLiveWidth = 960;

/// Sequences that have the terminal show at once what stands between them; others pass over them.
constexpr const char* kHoldScreen = "\033[?2026h";
constexpr const char* kShowScreen = "\033[?2026l";
/// Removes, and forgets, the picture that the cursor is on.
constexpr const char* kRemoveKitty = "\033_Ga=d,d=C,q=2\033\\";

/// The room that a picture has, in the terminal's cells, and the pixels of each.
struct LiveRoom {
  int columns = 0, rows = 0, cellWidth = 0, cellHeight = 0;
  bool Any() const { return rows >= kFewestRows && columns > 0; }
  FrameSize Pixels() const { return {columns * cellWidth, rows * cellHeight}; }
};

/// The room for a picture of this shape. A terminal that does not say how large its cells are gets
/// a picture that is small enough for the smallest there are: one that is too tall would roll the
/// screen.
LiveRoom RoomOn(int terminal, double aspect) {
  winsize size{};
  if (ioctl(terminal, TIOCGWINSZ, &size) != 0 || size.ws_col < 2) return {};
  LiveRoom room;
  room.cellWidth = size.ws_xpixel > 0 ? size.ws_xpixel / size.ws_col : 6;
  room.cellHeight = size.ws_ypixel > 0 && size.ws_row > 0 ? size.ws_ypixel / size.ws_row : 12;
  room.cellWidth = std::clamp(room.cellWidth, 4, 64);
  room.cellHeight = std::clamp(room.cellHeight, 6, 64);
  room.rows = std::min({kMostRows, size.ws_row / 2, kMostLivePixels / room.cellHeight});
  const double across = room.rows * room.cellHeight * aspect / room.cellWidth;
  const int most = std::min(size.ws_col - 1, kMostLiveWidth / room.cellWidth);
  room.columns = std::clamp(static_cast<int>(std::lround(across)), 1, most);
  if (across > most) {
    room.rows = static_cast<int>(std::lround(most * room.cellWidth / aspect / room.cellHeight));
  }
  return room;
}

struct FreeChafa {
  void operator()(ChafaCanvasConfig* config) const { chafa_canvas_config_unref(config); }
  void operator()(ChafaCanvas* canvas) const { chafa_canvas_unref(canvas); }
  void operator()(ChafaTermInfo* terminal) const { chafa_term_info_unref(terminal); }
  void operator()(GString* text) const { g_string_free(text, TRUE); }
};
template <typename Record>
using OwnedChafa = std::unique_ptr<Record, FreeChafa>;

/// What has a terminal draw the pixels at the cursor.
std::string TextOfPicture(TerminalForm form, const LiveRoom& room,
                          const std::vector<uint8_t>& pixels) {
  const OwnedChafa<ChafaCanvasConfig> config(chafa_canvas_config_new());
  chafa_canvas_config_set_geometry(config.get(), room.columns, room.rows);
  chafa_canvas_config_set_cell_geometry(config.get(), room.cellWidth, room.cellHeight);
  chafa_canvas_config_set_pixel_mode(config.get(), form == TerminalForm::kKitty
                                                       ? CHAFA_PIXEL_MODE_KITTY
                                                       : CHAFA_PIXEL_MODE_SIXELS);
  const OwnedChafa<ChafaCanvas> canvas(chafa_canvas_new(config.get()));
  const FrameSize size = room.Pixels();
  // Chafa 1.12 takes rows to begin at multiples of four bytes, whatever row length is given.
  chafa_canvas_draw_all_pixels(canvas.get(), CHAFA_PIXEL_RGBA8_UNASSOCIATED, pixels.data(),
                               size.width, size.height, 4 * size.width);
  // Both forms are written alike on all terminals that have them.
  const OwnedChafa<ChafaTermInfo> terminal(
      chafa_term_db_get_fallback_info(chafa_term_db_get_default()));
  const OwnedChafa<GString> text(chafa_canvas_print(canvas.get(), terminal.get()));
  return {text->str, text->len};
}

}  // namespace

class LivePicture::Screen {
 public:
  explicit Screen(TerminalForm form) : form_(form) {
    // The others are the encoder's.
    chafa_set_n_threads(1);
  }

  void Show(const FrameView& frame, PixelLayout layout, double aspect) {
    const auto begin = Clock::now();
    if (begin < next_) return;
    const LiveRoom room = RoomOn(fileno(ErrorStream()), aspect);
    if (room.Any()) {
      const std::string remove = form_ == TerminalForm::kKitty ? kRemoveKitty : "";
      // One row more, since a sixel picture ends with whole bands of six rows of pixels.
      DrawPicture(kHoldScreen + remove +
                      TextOfPicture(form_, room, SmallPicture(frame, layout, room.Pixels())) +
                      kShowScreen,
                  room.rows + 1, remove);
    }
    const auto end = Clock::now();
    next_ = end + std::max<Clock::duration>(kShortestBreak, kBreakFactor * (end - begin));
  }

 private:
  using Clock = std::chrono::steady_clock;
  TerminalForm form_;
  Clock::time_point next_{};
};

bool CanShowLive() { return true; }

Libraries LiveLibraries() { return {{"Chafa", KELTO_CHAFA_VERSION}}; }

LivePicture::LivePicture(LiveUse use) {
  if (use == LiveUse::kNever || CurrentReporting() != Reporting::kUsual || !StandardErrorDraws()) {
    return;
  }
  TerminalForm form = FormByEnvironment(environ);
  if (form == TerminalForm::kNone && use == LiveUse::kAsk) {
    form = FormByAnswer(fileno(ErrorStream()));
  }
  if (form != TerminalForm::kNone) screen_ = std::make_unique<Screen>(form);
}

LivePicture::~LivePicture() {
  if (screen_) ClearProgress();
}

void LivePicture::Show(const FrameView& frame, PixelLayout layout, double aspect) {
  if (screen_) screen_->Show(frame, layout, aspect);
}

}  // namespace kelto::host
