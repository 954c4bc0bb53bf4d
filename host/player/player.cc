#include "host/player/player.h"

#include <chrono>
#include <cmath>
#include <deque>
#include <filesystem>
#include <optional>
#include <utility>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/deep/shown_film.h"
#include "host/facts/key_times.h"
#include "host/files/path_text.h"
#include "host/playback/playback.h"
#include "host/playback/quality_control.h"
#include "host/player/status_bar.h"
#include "host/player/window.h"
#include "host/terminal/interrupt.h"
#include "platform/hfx.h"

namespace kelto::host {
namespace {

/// How long nothing but the user is waited for; Ctrl-C is noticed after that.
constexpr double kPatience = 0.1;

double Now() {
  using Seconds = std::chrono::duration<double>;
  return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::vector<double> Times(const std::vector<KeyTime>& keys) {
  std::vector<double> times;
  times.reserve(keys.size());
  for (const KeyTime& key : keys) times.push_back(key.time);
  return times;
}

class Player {
 public:
  Player(Window& window, const PlayerFilm& film, const PlayerOptions& options)
      : name_(film.name),
        rate_(film.format.rate.PerSecond()),
        frames_(film.frames),
        film_(film.open()),
        window_(window),
        bar_(film.marks),
        clock_(film.frames, film.format.rate, options.loop),
        control_(1.0 / rate_),
        target_(film.target) {
    film_->SetAbortQuery(IsInterrupted);
    if (!options.paused) clock_.Play(Now());
  }

  void Run() {
    while (!quit_) {
      CheckInterrupt();
      Draw();
      double wait = clock_.Playing() ? clock_.NextDue(Now()) - Now() : kPatience;
      while (const auto command = window_.Next(std::min(wait, kPatience))) {
        Execute(*command);
        wait = 0.0;
      }
    }
  }

 private:
  void Execute(const PlayerCommand& command);
  /// Renders the frame due, unless the window shows it already, and shows it with the bar.
  void Draw();
  void Render(int32_t frame, double quality);
  PlayerStatus Status(double now);

  std::string name_;
  double rate_;
  int32_t frames_;
  std::unique_ptr<PlayedFilm> film_;
  Window& window_;
  StatusBar bar_;
  std::unique_ptr<Drawing> help_;  ///< while it is shown
  Playback clock_;
  QualityControl control_;
  bool target_;
  bool quit_ = false;
  bool redraw_ = true;    ///< the window needs drawing though the frame stays
  bool rerender_ = true;  ///< the frame needs rendering though its number stays
  bool sought_ = true;    ///< the frame due is not the one after the last for a reason
  int32_t shown_ = 0;
  double shownQuality_ = 0.0;
  bool shownPlaying_ = false;
  int32_t dropped_ = 0;
  std::deque<double> shownAt_;  ///< the last second's frames
};

void Player::Execute(const PlayerCommand& command) {
  const double now = Now();
  redraw_ = true;
  switch (command.kind) {
    case PlayerCommand::kQuit:
      quit_ = true;
      break;
    case PlayerCommand::kPause:
      if (clock_.Playing()) {
        clock_.Pause(now);
      } else {
        clock_.Play(now);
      }
      sought_ = true;
      break;
    case PlayerCommand::kStep:
      clock_.Step(static_cast<int64_t>(command.amount), now);
      break;
    case PlayerCommand::kSeconds:
      clock_.Seek(clock_.FrameAt(now) + std::llround(command.amount * rate_), now);
      sought_ = true;
      break;
    case PlayerCommand::kFirst:
      clock_.Seek(0, now);
      sought_ = true;
      break;
    case PlayerCommand::kLast:
      clock_.Seek(frames_ - 1, now);
      sought_ = true;
      break;
    case PlayerCommand::kBar: {
      const double fraction =
          StatusBar::FractionAt(static_cast<int32_t>(command.amount), window_.BarWidth());
      clock_.Seek(std::llround(fraction * (frames_ - 1)), now);
      sought_ = true;
      break;
    }
    case PlayerCommand::kDisplay:
      target_ = !target_;
      film_->Change({key::kDisplay,
                     std::string(target_ ? entry::kDisplayTarget : entry::kDisplaySource),
                     {},
                     -1});
      rerender_ = true;
      break;
    case PlayerCommand::kHelp:
      help_ = help_ ? nullptr : DrawHelp();
      break;
    case PlayerCommand::kFullScreen:
      window_.SwitchFullScreen();
      break;
    case PlayerCommand::kRedraw:
      break;
  }
}

void Player::Render(int32_t frame, double quality) {
  window_.SetPicture(film_->Render(frame, quality));
  const bool on = frame > shown_ && !sought_;
  if (on && clock_.Playing()) dropped_ += frame - shown_ - 1;
  shown_ = frame;
  shownQuality_ = quality;
  rerender_ = sought_ = false;
}

void Player::Draw() {
  const double begin = Now();
  const int32_t due = clock_.FrameAt(begin);
  const bool playing = clock_.Playing();
  const double quality = playing ? control_.Quality() : QualityControl::kFull;
  // While playing, better quality comes with the next frame.
  const bool render = rerender_ || due != shown_ || (!playing && quality != shownQuality_);
  if (!render && !redraw_ && playing == shownPlaying_) return;
  if (render) Render(due, quality);
  const PlayerStatus status = Status(Now());
  const FrameView bar = bar_.Draw(window_.BarWidth(), status);
  window_.Show(bar, help_ ? std::optional(help_->Pixels()) : std::nullopt);
  window_.SetTitle(name_ + " - " + PlaceText(status) + ", " + DrawingText(status));
  redraw_ = false;
  shownPlaying_ = playing;
  if (!playing || !render) return;
  const double end = Now();
  shownAt_.push_back(end);
  control_.Drawn(end - begin, end);
}

PlayerStatus Player::Status(double now) {
  while (!shownAt_.empty() && shownAt_.front() <= now - 1.0) shownAt_.pop_front();
  PlayerStatus status;
  status.frame = shown_;
  status.frames = frames_;
  status.seconds = shown_ / rate_;
  status.length = frames_ / rate_;
  status.playing = clock_.Playing();
  status.fullQuality = shownQuality_ == QualityControl::kFull;
  status.target = target_;
  status.shownRate = static_cast<double>(shownAt_.size());
  status.dropped = dropped_;
  return status;
}

}  // namespace

RenderPlan ForPlaying(RenderPlan plan) {
  plan.playMode = hfxPlayModePreview;
  return plan;
}

bool ShowsTarget(const RenderPlan& plan) {
  const SettingValue* display = HeldValue(plan.FindSetting(key::kDisplay));
  return display != nullptr && *display == SettingValue(std::string(entry::kDisplayTarget));
}

PlayerFilm FilmToPlay(const std::string& modulePath, const RenderPlan& plan, const Photo& photo) {
  PlayerFilm film{NameOf(photo.given), plan.format, plan.frames};
  film.marks = Times(KeyTimesOf(plan));
  film.target = ShowsTarget(plan);
  film.open = [=] { return std::make_unique<ShownFilm>(modulePath, ForPlaying(plan), photo); };
  return film;
}

void PlayInWindow(const PlayerFilm& film, const SandboxAccess& access,
                  const PlayerOptions& options) {
  Window window(film.name, film.format.size, film.format.sampleAspect, StatusBar::kHeight);
  EnterSandbox(access);
  Player(window, film, options).Run();
}

}  // namespace kelto::host
