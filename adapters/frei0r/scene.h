// What an instance's parameters ask the effect for.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/frei0r/parameters.h"
#include "host/base/film_format.h"
#include "host/options/colour.h"
#include "host/plan/render_plan.h"
#include "platform/api.h"

namespace kelto::frei0r {

/// Settings of the effect that hold from frame to frame while no parameter changes.
struct Scene {
  std::string photo;                    ///< empty: none was given
  std::string levels;                   ///< entry of the effect's list
  std::vector<host::Setting> settings;  ///< of the effect, as in a plan
  std::vector<host::TourView> views;    ///< a project's list of them, as in a plan
  host::MotionLaw motion = host::MotionLaw::kLinear;
  std::optional<host::Colour> background;  ///< as seen; none: the incoming video
  bool outlined = false;                   ///< the photograph at zoom 1, with the view outlined
  int32_t frames = 0;                      ///< length of a motion that runs by itself, or 0
  host::FilmFormat format;  ///< rate of the stream, for the host's times; fields; pixels' shape
  int32_t playMode = 0;     ///< a hfxPlayMode
  std::string projectPath;  ///< what names the photograph, if that is a project
  std::shared_ptr<const host::RenderPlan> project;  ///< as read; null when it could not be
};

/// A place along a motion that is `frames` long.
struct Moment {
  int32_t frame = 0, frames = 1;
};

/// Reads the parameters. A text that makes no sense leaves its default in force and is reported on
/// the console. Where a project file is named instead of a photograph, parameters that are not as
/// they were at first overrule it; of `last`, an earlier scene, a project that was read already is
/// taken.
Scene SceneOf(const Values& values, Role role, const Scene& last);

/// The moment at `progress`, 0..1: the fraction with the smallest denominator that meets it. A host
/// that runs `progress` over N frames thus gets the very times of a motion of N frames.
KELTO_PLATFORM_API Moment MomentAt(double progress);

}  // namespace kelto::frei0r
