#include "adapters/frei0r/parameters.h"

#include "catalogue/parameters.h"
#include "host/options/choices.h"
#include "host/options/view.h"

namespace kelto::frei0r {
namespace {

Parameter Text(const char* name, const char* preset, const char* explanation) {
  return {name, true, explanation, nullptr, preset, 0.0, 0.0, 0.0};
}

Parameter Choice(const char* name, const char* list) {
  const host::ChoiceList& choices = host::ListOf(list);
  return {name,
          true,
          std::string(choices.help) + ": " + host::WordsOf(choices),
          list,
          choices.preset,
          0.0,
          0.0,
          0.0};
}

Parameter Number(const char* name, double preset, double lower, double upper,
                 const char* explanation) {
  return {name, false, explanation, nullptr, "", preset, lower, upper};
}

using Table = std::array<Parameter, kParameterCount>;

// "in" and "out" would be natural names for the velocities, but every MLT service has properties of
// these names already, which hold frame numbers.
Table MakeTable(Role role) {
  const bool filter = role == Role::kFilter;
  return {
      Text("image", "",
           "Path of the photograph, or of a project file that the command wrote, .json"),
      Text("from", "", "First view of a motion, ZOOM or ZOOM@X,Y; overrules zoom, x and y"),
      Text("to", "", "Last view of a motion"),
      Text("frames", "",
           "Length of the motion in frames, which then runs by itself; else progress says where, "
           "or a "
           "project runs as long as it says"),
      Choice("filter", key::kFilter),
      filter ? Text("background", "video",
                    "What the photograph does not cover: video, #rrggbb or none")
             : Text("background", "#000000", "What the photograph does not cover: #rrggbb or none"),
      Choice("leave", key::kOutVelocity),
      Choice("arrive", key::kInVelocity),
      Choice("path", key::kPath),
      Choice("levels", key::kLevels),
      Choice("display", key::kDisplay),
      Text("fps", "",
           "The host's frames a second, by which its times are read: 29.97 ...; else 25, or as a "
           "project has it"),
      Number("zoom", 1.0, kMinZoom, kMaxZoom,
             "How close the view is, 0.1 to 20; at 1 the photograph fits the frame; 0 means 1"),
      Number("x", 0.0, -host::kMaxCentre, host::kMaxCentre,
             "Centre of the view in picture widths to the right of the picture's centre"),
      Number("y", 0.0, -host::kMaxCentre, host::kMaxCentre,
             "Centre of the view in picture heights below the picture's centre"),
      Number("progress", 0.0, 0.0, 1.0, "Place along the motion, 0 to 1"),
      Number("quality", 1.0, 0.0, 1.0, "0.5 and less draws fast instead of by filter"),
      Text(
          "motion", "",
          "How one view becomes the next: steady, fly or linear; else steady from from and to, and "
          "as a project has it"),
      Text("filename", "",
           "The same as image; filters of MLT's saved projects find their photograph by it"),
      Text("argument", "",
           "The same as image; sources of MLT's saved projects find their photograph by it"),
      Text("filter.resource", "", "The same as filename"),
  };
}

}  // namespace

const char* NameOf(Role role) {
  return role == Role::kSource ? "kelto_pan_zoom_src" : "kelto_pan_zoom";
}

std::span<const Parameter> Parameters(Role role) {
  static const Table filter = MakeTable(Role::kFilter);
  static const Table source = MakeTable(Role::kSource);
  return role == Role::kSource ? source : filter;
}

Values DefaultValues(Role role) {
  Values values;
  for (size_t i = 0; i < kParameterCount; ++i) {
    values.texts[i] = Parameters(role)[i].text;
    values.numbers[i] = Parameters(role)[i].number;
  }
  return values;
}

}  // namespace kelto::frei0r
