#include "editor/drawing/film_drawing.h"

#include <algorithm>
#include <utility>

#include "host/base/error.h"
#include "host/deep/shown_film.h"
#include "host/effect/deep_photo.h"
#include "host/effect/small_photo.h"
#include "host/facts/frame_facts.h"
#include "host/plan/deep_plan.h"
#include "host/plan/default_plan.h"
#include "host/track/photo_views.h"

namespace kelto::editor {
namespace {

/// The means of squares of `by` times `by` pixels; what remains at the right and below is left out.
std::vector<uint8_t> Reduced(const std::vector<uint8_t>& pixels, host::FrameSize size, int32_t by,
                             host::FrameSize& reduced) {
  reduced = {size.width / by, size.height / by};
  std::vector<uint8_t> result(static_cast<size_t>(reduced.width) * reduced.height * 4);
  const size_t rowBytes = static_cast<size_t>(size.width) * 4;
  const auto area = static_cast<uint32_t>(by * by);
  for (int32_t y = 0; y < reduced.height; ++y) {
    for (int32_t x = 0; x < reduced.width; ++x) {
      uint32_t sums[4] = {};
      for (int32_t row = y * by; row < (y + 1) * by; ++row) {
        const uint8_t* pixel = pixels.data() + row * rowBytes + static_cast<size_t>(x) * by * 4;
        for (int32_t i = 0; i < by * 4; ++i) sums[i % 4] += pixel[i];
      }
      uint8_t* to = result.data() + (static_cast<size_t>(y) * reduced.width + x) * 4;
      for (int channel = 0; channel < 4; ++channel) {
        to[channel] = static_cast<uint8_t>((sums[channel] + area / 2) / area);
      }
    }
  }
  return result;
}

/// Opens the plan's photo as far as its header.
host::Photo Opened(const host::RenderPlan& plan) {
  host::Photo photo = host::OpenPhoto(host::PhotoName(plan));
  host::FindDepth(photo);
  return photo;
}

}  // namespace

FilmDrawing::FilmDrawing(std::string module, const host::RenderPlan& plan)
    : module_(std::move(module)), plan_(plan), photo_(Opened(plan)) {}

void FilmDrawing::SetPlan(const host::RenderPlan& plan, const FadesAround& fades,
                          std::optional<bool> deep) {
  plan_ = plan;
  deep_ = deep;
  fades_ = fades;
  title_.reset();
  fade_.reset();
  // Two captions would cover each other.
  plan_.caption.from = fades.in;
  plan_.caption.until = plan.frames - fades.out;
}

host::RenderPlan FilmDrawing::Filled(const host::RenderPlan& plan) const {
  host::RenderPlan filled = plan;
  const host::PhotoViews views(plan, {photo_.width, photo_.height});
  try {
    const View view = views.ViewOf(views.Fill());
    host::SetMove(filled, view, view);
  } catch (const host::Error&) {
    // Too long for the closest view: it is shown as it is.
  }
  return filled;
}

host::FrameView FilmDrawing::Drawn(Session& session, const host::RenderPlan& plan,
                                   const host::Photo& photo, int32_t frame, double quality) {
  try {
    if (!session || !session->Adopt(plan)) {
      session.reset();  // first: two would hold two copies of the photo
      session = host::OpenSession(module_, plan, photo, layout_);
    }
    return session->Render(std::clamp(frame, 0, plan.frames - 1), quality);
  } catch (...) {
    session.reset();
    throw;
  }
}

std::optional<host::FrameView> FilmDrawing::Beside(const host::RenderPlan& plan, int32_t frame,
                                                   host::FrameSize size, double quality) {
  try {
    if (!besideOpened_ || besidePhoto_ != host::PhotoName(plan)) {
      besideSession_.reset();
      besideOpened_ = Opened(plan);
      besideOpened_->transparent = host::IsTransparent(*besideOpened_);
      besidePhoto_ = host::PhotoName(plan);
    }
    host::RenderPlan drawn = plan;
    drawn.format.size = size;
    drawn.caption = {};
    return Drawn(besideSession_, drawn, *besideOpened_, frame, quality);
  } catch (const host::Error&) {
    besideOpened_.reset();
    return std::nullopt;
  }
}

std::optional<host::FrameView> FilmDrawing::TitleCard(int32_t frame, host::FrameSize size) {
  try {
    if (!title_) {
      host::FilmFormat format = plan_.format;
      format.size = size;
      title_.emplace(fades_.title, fades_.titleFrames, host::Colour{}, format, layout_);
    }
    return title_->At(frame);
  } catch (const host::Error&) {
    return std::nullopt;  // where letters cannot be drawn
  }
}

bool FilmDrawing::IsDeep() const {
  if (!deep_) return host::IsDrawnDeep(plan_, photo_);
  return *deep_ && photo_.deepMemory > 0 && host::WhyNotDeep(plan_).empty();
}

void FilmDrawing::Prepare(host::FrameSize size) {
  const auto layout = IsDeep() ? host::PixelLayout::kRgba16 : host::PixelLayout::kBGRA;
  if (size == drawnSize_ && layout == layout_) return;
  if (layout != layout_) {
    session_.reset();
    besideSession_.reset();
  }
  title_.reset();
  fade_.reset();
  dithered_.reset();
  drawnSize_ = size;
  layout_ = layout;
  if (layout == host::PixelLayout::kRgba16) dithered_.emplace(size, host::PixelLayout::kBGRA);
}

host::FrameView FilmDrawing::Draw(int32_t frame, host::FrameSize size, double quality) {
  if (!knowsTransparency_) {
    // It settles what draws the photo. Finding it out takes decoding all of it, which neither the
    // canvas nor the way has to wait for.
    photo_.transparent = host::IsTransparent(photo_);
    knowsTransparency_ = true;
  }
  Prepare(size);
  const host::FrameView blended = Blended(frame, size, quality);
  return dithered_ ? dithered_->Of(blended) : blended;
}

host::FrameView FilmDrawing::Blended(int32_t frame, host::FrameSize size, double quality) {
  host::RenderPlan drawn = plan_;
  drawn.format.size = size;
  const int32_t lead = fades_.Lead();
  if (frame < lead) {
    if (const auto card = TitleCard(std::max(0, frame), size)) return *card;
  }
  const int32_t number = std::clamp(frame - lead, 0, drawn.frames - 1);
  const host::FrameView own = Drawn(session_, drawn, photo_, number, quality);
  const int32_t behind = number - (drawn.frames - fades_.out);  // since the fade out began
  std::optional<host::FrameView> other;
  if (number < fades_.in) {
    other = fades_.before
                ? Beside(*fades_.before, fades_.before->frames - fades_.in + number, size, quality)
                : TitleCard(lead + number, size);
  } else if (behind >= 0 && fades_.after) {
    other = Beside(*fades_.after, behind, size, quality);
  }
  if (!other) return own;
  if (!fade_) {
    fade_.emplace(drawn.format, layout_,
                  fades_.dip ? host::FadeKind::kDip : host::FadeKind::kCross);
  }
  return number < fades_.in ? fade_->Blend(*other, own, number, fades_.in)
                            : fade_->Blend(own, *other, behind, fades_.out);
}

FilmWay FilmDrawing::Way(int32_t most) {
  host::FrameInspector inspector(module_, plan_, photo_);
  const int64_t last = plan_.frames - 1;
  const int64_t steps = std::min<int64_t>(last, std::max(1, most - 1));
  FilmWay way;
  way.reserve(static_cast<size_t>(steps) + 1);
  for (int64_t step = 0; step <= steps; ++step) {
    const auto number = static_cast<int32_t>(steps == 0 ? 0 : step * last / steps);
    const host::FrameFacts facts = inspector.Of(number);
    const DrawnArea area = inspector.ViewArea(facts);
    way.push_back({facts.seconds,
                   {area.left, area.top, area.right - area.left, area.bottom - area.top},
                   facts.speed.perceived});
  }
  return way;
}

std::vector<uint8_t> FilmDrawing::QuickPhotoPixels(int64_t enoughPixels, int64_t mostPixels,
                                                   host::FrameSize& size) const {
  int32_t quick = 1;
  while (int64_t{photo_.width / (2 * quick)} * (photo_.height / (2 * quick)) >= enoughPixels) {
    quick *= 2;
  }
  PixelSize decoded;
  std::vector<uint8_t> pixels = host::DecodePhoto(photo_, quick, decoded);
  size = {decoded.width, decoded.height};
  int32_t by = 1;
  while (int64_t{size.width / by} * (size.height / by) > mostPixels) ++by;
  // A strip keeps its pixels rather than vanish.
  by = std::min({by, size.width, size.height});
  if (by == 1) return pixels;
  const host::FrameSize whole = size;
  return Reduced(pixels, whole, by, size);
}

std::vector<uint8_t> FilmDrawing::PhotoPixels(int64_t mostPixels, host::FrameSize& size) const {
  return QuickPhotoPixels(int64_t{photo_.width} * photo_.height, mostPixels, size);
}

}  // namespace kelto::editor
