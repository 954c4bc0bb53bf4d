// Settings on their way into an effect's instance.
#pragma once

#include <span>
#include <string>

#include "framing/view.h"
#include "host/effect/photo.h"
#include "host/plan/setting.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// Gives the instance its photograph, as a record restored from a project. The effect takes a new
/// record up when its next render begins.
void SetPhoto(hfx::Effect& effect, const Photo& photo);

/// Sets one parameter: its value, and its keys in place of those that it has. Throws Error when the
/// effect has no such parameter or entry, or when the value is not of the parameter's kind.
void Apply(hfx::Effect& effect, const Setting& setting);

/// The same of all settings but those that move the view, which the caller means to give with
/// ShowView.
void ApplyWithoutMove(hfx::Effect& effect, std::span<const Setting> settings);

/// Lets the effect look at `view` in the frames to come, whatever their times.
void ShowView(hfx::Effect& effect, const View& view);

/// Whether the effect could load its photograph, which it does not say. Draws it into `output`,
/// with the instance's keys all unset. `state` has the size of the film in mind. Throws Error when
/// the effect fails to render.
bool HasPicture(hfx::Effect& effect, const Photo& photo, hfx::RenderState state, int32_t playMode,
                hfxImage& input, hfx::ImageBuffer& output);

/// Why the effect has no picture of its photograph; an empty text when it may have one after all.
std::string WhyNoPicture(const Photo& photo);

}  // namespace kelto::host
