#include "adapters/openfx/overlay.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <string_view>

#include "adapters/openfx/actions.h"
#include "adapters/openfx/instance.h"
#include "adapters/openfx/suites.h"

namespace kelto::openfx {
namespace {

/// The view's corners; y upwards.
std::array<ofx::PointD, 4> Outline(const View& view, const ofx::RectD& frame) {
  const double width = frame.x2 - frame.x1, height = frame.y2 - frame.y1;
  // Below zoom 1 the centre is in widths and heights of the view itself.
  const double unit = 1.0 / std::min(view.zoom, 1.0);
  const double x = (frame.x1 + frame.x2) / 2.0 + view.centreX * unit * width;
  const double y = (frame.y1 + frame.y2) / 2.0 - view.centreY * unit * height;
  const double across = width / view.zoom / 2.0, up = height / view.zoom / 2.0;
  return {{{x - across, y - up}, {x + across, y - up}, {x + across, y + up}, {x - across, y + up}}};
}

ofx::Status Draw(ofx::Properties inArgs) {
  const ofx::DrawSuite* suite = TheSuites().draw;
  const Reader arguments(inArgs);
  const auto context = static_cast<ofx::DrawContext>(arguments.Pointer(ofx::prop::kDrawContext));
  const auto effect = static_cast<ofx::Effect>(arguments.Pointer(ofx::prop::kEffectInstance));
  if (suite == nullptr || suite->draw == nullptr || context == nullptr || effect == nullptr) {
    return ofx::kReplyDefault;
  }
  const Instance* instance = InstanceOf(effect);
  View view;
  ofx::RectD frame{};
  if (instance == nullptr ||
      !instance->ViewAt(arguments.Double(ofx::prop::kTime, 0.0), view, frame)) {
    return ofx::kReplyDefault;
  }
  ofx::Colour colour{};
  if (suite->getColour != nullptr && suite->setColour != nullptr &&
      suite->getColour(context, ofx::kActiveColour, &colour) == ofx::kOk) {
    suite->setColour(context, &colour);
  }
  const std::array<ofx::PointD, 4> corners = Outline(view, frame);
  return suite->draw(context, ofx::kLineLoop, corners.data(), static_cast<int>(corners.size()));
}

}  // namespace

ofx::Status OverlayMain(const char* action, const void*, ofx::Properties inArgs, ofx::Properties) {
  if (action == nullptr || TheSuites().effects == nullptr) return ofx::kFailed;
  if (std::string_view(action) != ofx::action::kDraw) return ofx::kReplyDefault;
  try {
    return Draw(inArgs);
  } catch (const std::bad_alloc&) {
    return ofx::kOutOfMemory;
  } catch (const std::exception&) {
    return ofx::kFailed;
  }
}

}  // namespace kelto::openfx
