// What the pages in video editors offer of the filter's parameters, and how. Names, ranges,
// defaults and words are those of the plug-in's table; here stands what a person sees.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "adapters/frei0r/parameters.h"

namespace kelto::pages {

enum class Language { kEnglish, kGerman };

struct Text {
  const char* english;
  const char* german;
  const char* In(Language language) const {
    return language == Language::kGerman ? german : english;
  }
};

enum class Widget {
  kFile,    ///< a path, with a dialog
  kSlider,  ///< a number with keyframes
  kChoice,  ///< one of a few words
  kLine     ///< a text
};

/// A word of a kChoice; empty where the plug-in decides.
struct Word {
  std::string word;
  Text name;
};

struct Control {
  frei0r::ParameterIndex index;
  Widget widget;
  Text name;
  Text hint;
  const Text* group;          ///< heading; controls of a group stand together
  std::vector<Word> words{};  ///< of a kChoice

  // Of a kSlider, in what the page shows: percent of the parameter's own unit. The table lets x and
  // y go further than any picture does; the page shows the part that does something.
  double least = 0.0, most = 0.0;

  const frei0r::Parameter& parameter() const {
    return frei0r::Parameters(frei0r::Role::kFilter)[static_cast<size_t>(index)];
  }
};

/// Sliders show their parameters times this.
inline constexpr double kPercent = 100.0;

/// What the pages show, from top to bottom.
std::span<const Control> Controls();

/// The filter's name and, in a sentence, what it does.
inline constexpr Text kTitle{"Kelto Pan & Zoom", "Kelto Schwenk & Zoom"};
inline constexpr Text kSummary{"Pans and zooms over a photograph, drawn over the video",
                               "Schwenkt und zoomt über ein Foto, das über dem Video liegt"};

}  // namespace kelto::pages
