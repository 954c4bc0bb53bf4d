// The plug-ins' parameters: one table from which hosts, checks and defaults are served.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "platform/api.h"

namespace kelto::frei0r {

/// Over the incoming video, or a picture of its own.
enum class Role { kFilter, kSource };

/// The name that hosts know a plug-in by; also its file's.
KELTO_PLATFORM_API const char* NameOf(Role role);

/// Places in the table. One host passes values by place, and its users write them down: the words
/// that are most often given come first, numbers (where an empty place means 0) last, and new ones
/// go to the end.
enum ParameterIndex : int {
  kImage,
  kFrom,
  kTo,
  kFrames,
  kFilter,
  kBackground,
  kLeave,
  kArrive,
  kPath,
  kLevels,
  kDisplay,
  kFps,
  kZoom,
  kX,
  kY,
  kProgress,
  kQuality,
  kMotion,
  kFilename,
  kArgument,
  kFilterResource,
  kParameterCount
};

/// A text, or a number held within `lower`..`upper`. One host lets numbers go from 0 to 1 only;
/// what needs others there, and is not to be keyframed, is a text.
struct Parameter {
  const char* name;
  bool isText;
  std::string explanation;
  const char* list;  ///< the effect's list that a text chooses from, or null
  const char* text;  ///< default; an empty text stands for it too
  double number, lower, upper;
};

/// The table, kParameterCount long.
KELTO_PLATFORM_API std::span<const Parameter> Parameters(Role role);

/// Places that name the photograph, the most trustworthy first. MLT's project files make paths in
/// the project's folder relative, whatever the parameter's name, and only complete those of some
/// names again: "filename" and "filter.resource" of filters, "argument" of sources.
inline constexpr ParameterIndex kPhotoNames[] = {kFilename, kFilterResource, kArgument, kImage};

/// One value for each place; texts and numbers lie where the table has them.
struct Values {
  std::array<std::string, kParameterCount> texts;
  std::array<double, kParameterCount> numbers{};
};

/// Every parameter's default.
KELTO_PLATFORM_API Values DefaultValues(Role role);

}  // namespace kelto::frei0r
