// The effect's parameters as data: keys, labels, lists and bounds, in the order of its panel. The
// module declares them from here; the command, projects and plug-ins take words and defaults from
// here.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "framing/view.h"

namespace kelto {

/// Keys, by which hosts and projects know the parameters.
namespace key {
inline constexpr const char* kDisplay = "display";
inline constexpr const char* kShowActionSafe = "showactionsafe";
inline constexpr const char* kSize = "size";
inline constexpr const char* kPosition = "position";
inline constexpr const char* kInVelocity = "invelocity";
inline constexpr const char* kOutVelocity = "outvelocity";
inline constexpr const char* kPath = "path";
inline constexpr const char* kFilter = "filter";
inline constexpr const char* kCompositeOver = "compositeover";
inline constexpr const char* kBackgroundColor = "bgcolor";
inline constexpr const char* kSquarePixels = "squarepixels";
inline constexpr const char* kLevels = "levels";
inline constexpr const char* kCache = "cache";
inline constexpr const char* kProgressive = "progressive";
}  // namespace key

/// Entries of lists that the code of hosts names.
namespace entry {
inline constexpr const char* kDisplaySource = "Display: Source";
inline constexpr const char* kDisplayTarget = "Display: Target";
inline constexpr const char* kPathLinear = "Path: Linear";
inline constexpr const char* kPathSpline = "Path: Spline";
inline constexpr const char* kFilterRealTime = "Filter: Real Time";
inline constexpr const char* kFilterHiQual = "Filter: Kelto Hi Qual";
inline constexpr const char* kOverColor = "Background: Color";
inline constexpr const char* kOverVideo = "Background: Video";
inline constexpr const char* kLevelsRGB = "Source Has RGB Levels";
}  // namespace entry

namespace catalogue {

enum class Kind { kGroup, kList, kSwitch, kNumber, kPoint, kColour };

struct Entry {
  const char* text;  ///< on the panel and in projects
  const char* word;  ///< in options and plug-ins; empty where they do not offer the list
};

/// Lists; a parameter's value is the index.
inline constexpr Entry kDisplay[] = {{entry::kDisplaySource, "source"},
                                     {entry::kDisplayTarget, "target"}};
inline constexpr Entry kInVelocity[] = {
    {"In: Linear", "linear"}, {"In: Ease In", "ease"}, {"In: Constant", "constant"}};
inline constexpr Entry kOutVelocity[] = {{"Out: Linear", "linear"},
                                         {"Out: Ease Out", "ease"},
                                         {"Out: Constant", "constant"},
                                         {"Out: Hold", "hold"}};
inline constexpr Entry kPath[] = {{entry::kPathLinear, "linear"}, {entry::kPathSpline, "spline"}};
inline constexpr Entry kFilter[] = {
    {entry::kFilterRealTime, "realtime"},   {"Filter: Triangle", "triangle"},
    {"Filter: Quadratic", "quadratic"},     {"Filter: Cubic", "cubic"},
    {"Filter: BSpline Catmull", "catmull"}, {"Filter: Gaussian", "gaussian"},
    {entry::kFilterHiQual, "hiqual"},       {"Filter: Kelto Ultra Qual", "ultra"}};
inline constexpr Entry kCompositeOver[] = {{entry::kOverColor, ""}, {entry::kOverVideo, ""}};
inline constexpr Entry kLevels[] = {{entry::kLevelsRGB, "rgb"}, {"Source Has 601 Levels", "601"}};
inline constexpr Entry kCache[] = {
    {"Cache: Video Resolution", ""},     {"Cache: Image Resolution", ""},
    {"Cache: Multi-Resolution", ""},     {"Free Current Cache", ""},
    {"Cache All: Video Resolution", ""}, {"Cache All: Image Resolution", ""},
    {"Cache All: Multi-Resolution", ""}, {"Free All Caches", ""}};

/// The texts of a list as the host's interface takes them: null behind the last.
template <size_t count>
constexpr std::array<const char*, count + 1> TextsOf(const Entry (&entries)[count]) {
  std::array<const char*, count + 1> texts{};
  for (size_t i = 0; i < count; ++i) texts[i] = entries[i].text;
  return texts;
}

/// The host keeps the pointer that it gets.
template <const auto& list>
inline constexpr auto kTexts = TextsOf(list);

struct Parameter {
  Kind kind;
  const char* key;
  const char* label;                   ///< on the panel; may be empty
  const char* description = "";        ///< one line, for help texts and editors
  std::span<const Entry> entries{};    ///< of a list
  const char* const* texts = nullptr;  ///< of its entries, null behind the last
  /// What the command and the plug-ins set a list to unless they are given a word; null: they leave
  /// it to the effect. The effect's own defaults are its own (state/settings.h).
  const char* preset = nullptr;
  double least = 0.0, most = 0.0;  ///< of a number
  bool open = false;               ///< whether a group begins unfolded
};

template <const auto& list>
constexpr Parameter List(const char* key, const char* description, const char* preset = nullptr) {
  return {Kind::kList, key, "", description, list, kTexts<list>.data(), preset};
}

constexpr Parameter Switch(const char* key, const char* label, const char* description) {
  return {Kind::kSwitch, key, label, description};
}

constexpr Parameter Group(const char* key, const char* label, bool open) {
  Parameter group{Kind::kGroup, key, label};
  group.open = open;
  return group;
}

/// The panel. A parameter belongs to the group in front of it, the first to none.
inline constexpr Parameter kPanel[] = {
    List<kDisplay>(
        key::kDisplay,
        "What the film shows: the view itself (target), or the photo as zoom 1 shows it, "
        "with the view outlined (source)",
        "target"),
    Group("sourcerectoptions", "Display Options", false),
    Switch(key::kShowActionSafe, "Show Action Safe",
           "Outlines the part of the frame that every television shows, in the source display"),
    Group("sizegroup", "Size", true),
    {Kind::kNumber,
     key::kSize,
     "Zoom Factor",
     "How close the view is; at 1 a landscape photo fills the frame's width, others its height",
     {},
     nullptr,
     nullptr,
     kMinZoom,
     kMaxZoom},
    Group("positiongroup", "Position", true),
    {Kind::kPoint, key::kPosition, "",
     "Centre of the view, right and down from the photo's centre, in widths and heights of what zoom "
     "1 shows"},
    Group("velocitygroup", "Velocity", false),
    List<kInVelocity>(key::kInVelocity, "How the motion arrives at each view", "ease"),
    List<kOutVelocity>(key::kOutVelocity, "How the motion leaves each view", "ease"),
    Group("pathgroup", "Path", false),
    List<kPath>(key::kPath, "Path between the views", "linear"),
    Group("filtering", "Filtering", true),
    List<kFilter>(key::kFilter, "Resampling filter", "hiqual"),
    Group("backgroundgroup", "Background", false),
    List<kCompositeOver>(key::kCompositeOver,
                         "What is seen beside the photo: a colour or the video behind"),
    {Kind::kColour, key::kBackgroundColor, "",
     "Colour beside the photo: three channels as the effect takes them, 16/255 being black and "
     "235/255 white, or '#rrggbb' as it is seen"},
    Group("advanced", "Advanced", false),
    Switch(key::kSquarePixels, "Source Has Square Pixels",
           "Whether the photo's pixels are square; if not, they have the shape of video's"),
    List<kLevels>(key::kLevels, "Levels of the photo: full-range RGB or studio range", "rgb"),
    Group("cachegroup", "Cache", true),
    List<kCache>(key::kCache,
                 "Which copies of the photo the effect keeps, or a command to free them"),
    Group("projgroup", "Render Mode", true),
    Switch(key::kProgressive, "Progressive", "Whether both fields of a frame show the same moment"),
};

constexpr size_t CountWithoutGroups() {
  size_t count = 0;
  for (const Parameter& parameter : kPanel) count += parameter.kind != Kind::kGroup ? 1 : 0;
  return count;
}

constexpr auto WithoutGroups() {
  std::array<Parameter, CountWithoutGroups()> parameters{};
  size_t count = 0;
  for (const Parameter& parameter : kPanel) {
    if (parameter.kind != Kind::kGroup) parameters[count++] = parameter;
  }
  return parameters;
}

/// The parameters that have values, in the panel's order.
inline constexpr auto kParameters = WithoutGroups();

/// The parameter of a key of kPanel; null for any other.
constexpr const Parameter* Find(std::string_view key) {
  for (const Parameter& parameter : kPanel) {
    if (parameter.key == key) return &parameter;
  }
  return nullptr;
}

}  // namespace catalogue
}  // namespace kelto
