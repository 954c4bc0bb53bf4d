#include "editor/preview/preview.h"

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editor/messages/answers.h"
#include "editor/messages/plain_bytes.h"
#include "editor/messages/requests.h"
#include "editor/preview/drawing_process.h"
#include "editor/preview/plan_request.h"
#include "editor/preview/show_depth.h"
#include "host/base/error.h"
#include "host/playback/playback.h"
#include "host/playback/quality_control.h"

namespace kelto::editor {
namespace {

/// How long nothing has to change for the frame to be drawn in the film's own size.
constexpr auto kRest = std::chrono::milliseconds(120);
/// Samples of the way while it changes, and at rest: more than a screen has columns.
constexpr int32_t kQuickWay = 100, kFullWay = 2000;

double Now() {
  using Seconds = std::chrono::duration<double>;
  return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The film's size, made smaller to fit into a box where there is one; even sides, as fields and
/// 4:2:2 have them.
host::FrameSize SizeWithin(const host::FilmFormat& format, QSize box) {
  const host::FrameSize film = format.size;
  if (box.isEmpty()) return film;
  const double shown = film.width * format.sampleAspect.Ratio();
  const double scale =
      std::min(box.width() / shown, static_cast<double>(box.height()) / film.height);
  if (scale >= 1.0) return film;
  const auto side = [&](int32_t length) {
    return std::max(2, static_cast<int32_t>(std::lround(length * scale / 2)) * 2);
  };
  return {side(film.width), side(film.height)};
}

}  // namespace

class Preview::Private {
 public:
  Private(Preview* owner, QString program, QString module)
      : owner_(owner),
        program_(std::move(program)),
        module_(std::move(module)),
        depth_(program_, module_, nullptr) {
    QObject::connect(&depth_, &ShowDepth::Changed, owner_, [this] {
      if (hasPlan_ && fades_.depths) Redraw();
    });
    for (QTimer* timer : {&soon_, &rest_, &due_}) {
      timer->setSingleShot(true);
      QObject::connect(timer, &QTimer::timeout, owner, [this] { Pump(); });
    }
    due_.setTimerType(Qt::PreciseTimer);
  }

  void SetPlan(const host::RenderPlan& plan, const FadesAround& fades);
  /// Has what there is drawn anew, as another version of the plan.
  void Redraw();
  void WantWholePhoto();
  void SetBox(QSize box);
  void Seek(int32_t frame);
  void Play(bool play);
  void SetLoop(bool loop);
  int32_t Frame() { return hasPlan_ ? clock_.FrameAt(Now()) : 0; }
  int32_t Frames() const { return hasPlan_ ? plan_.frames + fades_.Lead() : 0; }
  bool Playing() const { return playing_; }

 private:
  /// What has been asked for is what has changed since: one turn of the event loop for all of it.
  void PumpSoon() { soon_.start(0); }
  /// Asks for what is wanted most, unless an answer is still due.
  void Pump();
  DrawingProcess* Start();
  /// Ends the processes.
  void Drop();
  void Drop(DrawingProcess*& process);
  bool SendPlan(DrawingProcess& process, bool& unsent);
  bool AskFrame();
  void PumpWay();
  void AskPhoto();
  void TakePhoto(const StreamMessage& answer);
  void Take(const StreamMessage& answer);
  void TakeWay(const StreamMessage& answer);
  void TakeFrame(const StreamMessage& answer);
  void Fail(const QString& reason);
  void StartClock(int32_t frame, bool playing);
  void NoticePlaying(bool playing);

  Preview* owner_;
  QString program_, module_;
  // The owner's, once they are needed. One reads the photo for the canvas and finds out the way, so
  // that no frame waits for them.
  DrawingProcess *process_ = nullptr, *wayProcess_ = nullptr;
  host::RenderPlan plan_;
  FadesAround fades_;
  ShowDepth depth_;
  std::string planText_;  ///< as both processes get it; empty until one does
  bool hasPlan_ = false, planUnsent_ = false, wayPlanUnsent_ = false;
  uint64_t version_ = 0;                          ///< of the plan, counted
  uint64_t failed_ = 0;                           ///< the version that could not be drawn
  enum class Photo { kNothing, kQuick, kWhole };  ///< with the pixels of a screen, or all of them
  Photo photoWanted_ = Photo::kNothing;
  Photo photoAsked_ = Photo::kNothing;  ///< while its answer is due; it is wanted until then
  bool photoHasMore_ = false;
  QSize box_;
  host::Playback clock_{1, {}};
  std::optional<host::QualityControl> control_;
  bool loop_ = false, playing_ = false;

  bool asked_ = false;
  DrawRequest request_;        ///< the frame asked for
  uint64_t askedVersion_ = 0;  ///< what it is a frame of
  bool wayAsked_ = false;
  uint64_t askedWayVersion_ = 0;
  int32_t askedSamples_ = 0;
  double askedAt_ = 0.0;

  DrawRequest shown_;
  uint64_t shownVersion_ = 0;
  uint64_t wayVersion_ = 0;
  int32_t waySamples_ = 0;
  QTimer soon_, rest_, due_;
};

void Preview::Private::SetPlan(const host::RenderPlan& plan, const FadesAround& fades) {
  const bool otherFiles = !hasPlan_ || FilesOf(plan, fades) != FilesOf(plan_, fades_);
  const bool otherPhoto = !hasPlan_ || plan.photo != plan_.photo || plan.rotate != plan_.rotate;
  const bool otherClock = !hasPlan_ || plan.frames != plan_.frames ||
                          plan.format.rate != plan_.format.rate || fades.Lead() != fades_.Lead();
  const int32_t frame = std::max(0, Frame() - fades_.Lead() + fades.Lead());
  plan_ = plan;
  fades_ = fades;
  hasPlan_ = true;
  depth_.SetShow(fades.depths.value_or(ShowDepths{}));
  Redraw();
  if (otherClock) StartClock(frame, playing_);
  if (otherFiles) {
    // The process may open no files but its first ones.
    Drop();
    if (otherPhoto) photoWanted_ = Photo::kQuick, photoHasMore_ = false;
  }
  rest_.start(kRest);
}

void Preview::Private::Redraw() {
  planText_.clear();
  planUnsent_ = wayPlanUnsent_ = true;
  ++version_;
  PumpSoon();
}

void Preview::Private::StartClock(int32_t frame, bool playing) {
  clock_ = host::Playback(Frames(), plan_.format.rate, loop_);
  clock_.Seek(frame, Now());
  if (playing) clock_.Play(Now());
  control_.emplace(1.0 / plan_.format.rate.PerSecond());
}

void Preview::Private::WantWholePhoto() {
  // Each time that the canvas is painted close up it is wanted; once is enough.
  if (!photoHasMore_ || photoWanted_ == Photo::kWhole) return;
  photoWanted_ = Photo::kWhole;
  PumpSoon();
}

void Preview::Private::SetBox(QSize box) {
  if (box == box_) return;
  box_ = box;
  rest_.start(kRest);
  PumpSoon();
}

void Preview::Private::Seek(int32_t frame) {
  clock_.Seek(frame, Now());
  rest_.start(kRest);
  PumpSoon();
}

void Preview::Private::Play(bool play) {
  if (!hasPlan_) return;
  if (play) {
    clock_.Play(Now());
  } else {
    clock_.Pause(Now());
  }
  NoticePlaying(clock_.Playing());
  PumpSoon();
}

void Preview::Private::SetLoop(bool loop) {
  if (loop == loop_) return;
  loop_ = loop;
  if (hasPlan_) StartClock(Frame(), playing_);
}

void Preview::Private::NoticePlaying(bool playing) {
  if (playing == playing_) return;
  playing_ = playing;
  emit owner_->PlayingChanged(playing);
}

void Preview::Private::Pump() {
  if (!hasPlan_ || failed_ == version_) return;
  PumpWay();
  if (asked_) return;
  if (process_ == nullptr) {
    process_ = Start();
    planUnsent_ = true;
    shownVersion_ = 0;
  }
  if (planUnsent_ && !SendPlan(*process_, planUnsent_)) return;
  if (AskFrame() || !playing_) return;
  due_.start(std::chrono::milliseconds(
      std::max<int64_t>(0, std::llround((clock_.NextDue(Now()) - Now()) * 1000))));
}

DrawingProcess* Preview::Private::Start() {
  auto* process = new DrawingProcess(program_, module_, owner_);
  QObject::connect(process, &DrawingProcess::Answered, owner_,
                   [this, process](const StreamMessage& answer) {
                     process == wayProcess_ ? TakeWay(answer) : Take(answer);
                   });
  QObject::connect(process, &DrawingProcess::Ended, owner_, [this, process](const QString& reason) {
    if (process_ != process && wayProcess_ != process) return;
    Drop();
    Fail(reason);
  });
  return process;
}

void Preview::Private::Drop() {
  Drop(process_);
  Drop(wayProcess_);
  asked_ = wayAsked_ = false;
  photoAsked_ = Photo::kNothing;
}

void Preview::Private::Drop(DrawingProcess*& process) {
  if (process == nullptr) return;
  // Later: it may be the process that is speaking.
  process->disconnect(owner_);
  process->deleteLater();
  process = nullptr;
}

bool Preview::Private::SendPlan(DrawingProcess& process, bool& unsent) {
  try {
    // Whether it can be read is found out by the process, which says so.
    if (planText_.empty()) planText_ = BodyOf(RequestOf(plan_, fades_, depth_.IsDeep()));
    process.Send(MessageKind::kPlan, planText_);
  } catch (const host::Error& error) {
    Fail(QString::fromUtf8(error.what()));
    return false;
  }
  unsent = false;
  return true;
}

bool Preview::Private::AskFrame() {
  const double now = Now();
  DrawRequest wanted{clock_.FrameAt(now), plan_.format.size, host::QualityControl::kFull};
  NoticePlaying(clock_.Playing());  // it pauses by itself at the end
  if (playing_) wanted.quality = control_->Quality();
  if (playing_ || rest_.isActive()) wanted.size = SizeWithin(plan_.format, box_);
  const bool same = shownVersion_ == version_ && shown_.frame == wanted.frame;
  const bool asLarge = shown_.size == wanted.size || shown_.size == plan_.format.size;
  // While playing, better quality comes with the next frame.
  if (same && (playing_ || (asLarge && shown_.quality == host::QualityControl::kFull))) {
    return false;
  }
  request_ = wanted;
  asked_ = true;
  askedVersion_ = version_;
  askedAt_ = Now();
  process_->Send(MessageKind::kDraw, BodyOf(wanted));
  return true;
}

void Preview::Private::PumpWay() {
  const int32_t samples = rest_.isActive() ? kQuickWay : kFullWay;
  const bool known = wayVersion_ == version_ && waySamples_ >= std::min(samples, plan_.frames);
  const bool photo = photoWanted_ != Photo::kNothing;
  if (wayAsked_ || (known && !photo && wayProcess_ != nullptr)) return;
  if (wayProcess_ == nullptr) {
    wayProcess_ = Start();
    wayPlanUnsent_ = true;
  }
  if (wayPlanUnsent_ && !SendPlan(*wayProcess_, wayPlanUnsent_)) return;
  wayAsked_ = true;
  askedWayVersion_ = version_;
  if (photoWanted_ == Photo::kQuick || (known && photo)) return AskPhoto();
  askedSamples_ = samples;
  wayProcess_->Send(MessageKind::kWay, BytesOf(samples));
}

void Preview::Private::AskPhoto() {
  photoAsked_ = photoWanted_;
  const PhotoRequest request{photoAsked_ == Photo::kQuick ? 1 : 0};
  wayProcess_->Send(MessageKind::kPhoto, BytesOf(request));
}

void Preview::Private::TakePhoto(const StreamMessage& answer) {
  const PictureBody photo = PictureOf(answer.body);
  const host::FrameSize size = photo.head.size;
  photoHasMore_ = photo.head.frame != 0;
  emit owner_->PhotoRead(
      QImage(photo.pixels, size.width, size.height, size.width * 4, QImage::Format_RGB32).copy());
}

void Preview::Private::Take(const StreamMessage& answer) {
  asked_ = false;
  try {
    if (answer.kind == MessageKind::kFrame) {
      TakeFrame(answer);
    } else if (askedVersion_ == version_) {
      // What is wrong with a plan that has been replaced is no news.
      Fail(QString::fromStdString(answer.body));
    }
  } catch (const host::Error& error) {
    Fail(QString::fromUtf8(error.what()));
  }
  PumpSoon();
}

void Preview::Private::TakeWay(const StreamMessage& answer) {
  wayAsked_ = false;
  const Photo photo = std::exchange(photoAsked_, Photo::kNothing);
  if (photo != Photo::kNothing && photo == photoWanted_) photoWanted_ = Photo::kNothing;
  try {
    if (answer.kind == MessageKind::kPhoto) {
      TakePhoto(answer);
    } else if (answer.kind == MessageKind::kWay) {
      wayVersion_ = askedWayVersion_;
      waySamples_ = askedSamples_;
      emit owner_->WayFound(WayOf(answer.body));
    } else if (askedWayVersion_ == version_) {
      Fail(QString::fromStdString(answer.body));
    }
  } catch (const host::Error& error) {
    Fail(QString::fromUtf8(error.what()));
  }
  PumpSoon();
}

void Preview::Private::TakeFrame(const StreamMessage& answer) {
  const PictureBody frame = PictureOf(answer.body);
  const host::FrameSize size = frame.head.size;
  shown_ = request_;
  shownVersion_ = askedVersion_;
  const double now = Now();
  if (playing_) control_->Drawn(now - askedAt_, now);
  const bool exact = shownVersion_ == version_ && size == plan_.format.size &&
                     shown_.quality == host::QualityControl::kFull;
  emit owner_->FrameDrawn(
      QImage(frame.pixels, size.width, size.height, size.width * 4, QImage::Format_RGB32).copy(),
      request_.frame, exact);
}

void Preview::Private::Fail(const QString& reason) {
  // Frame and way fail for the same reason.
  if (std::exchange(failed_, version_) == version_) return;
  clock_.Pause(Now());
  NoticePlaying(false);
  emit owner_->Failed(reason);
}

Preview::Preview(QString program, QString module, QObject* parent)
    : QObject(parent), p_(std::make_unique<Private>(this, std::move(program), std::move(module))) {}

Preview::~Preview() = default;

void Preview::SetPlan(const host::RenderPlan& plan, const FadesAround& fades) {
  p_->SetPlan(plan, fades);
}
void Preview::WantWholePhoto() { p_->WantWholePhoto(); }
void Preview::SetBox(QSize box) { p_->SetBox(box); }
int32_t Preview::Frame() const { return p_->Frame(); }
int32_t Preview::Frames() const { return p_->Frames(); }
bool Preview::Playing() const { return p_->Playing(); }
void Preview::Seek(int32_t frame) { p_->Seek(frame); }
void Preview::Play() { p_->Play(true); }
void Preview::Pause() { p_->Play(false); }
void Preview::SetLoop(bool loop) { p_->SetLoop(loop); }

}  // namespace kelto::editor
