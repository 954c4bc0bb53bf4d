#include "host/jobs/beats.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/processes/other_program.h"

namespace kelto::host {
namespace {

constexpr const char* kBeatFinder = "aubiotrack";

/// Numbers, one on each line; those that do not come after the one before are left out.
std::vector<double> RisingNumbers(const std::string& text) {
  std::vector<double> numbers;
  const char* next = text.c_str();
  for (char* end = nullptr;; next = end) {
    const double number = std::strtod(next, &end);
    if (end == next) return numbers;
    if (std::isfinite(number) && number >= 0 && (numbers.empty() || number > numbers.back())) {
      numbers.push_back(number);
    }
  }
}

/// The beat nearest to a cut, of those from `least` to `most` and no further from it than `reach`;
/// the cut itself where there is none.
int64_t Snapped(int64_t cut, const std::vector<int64_t>& beats, int64_t reach, int64_t least,
                int64_t most) {
  int64_t best = std::clamp(cut, least, most);
  bool found = false;
  for (const int64_t beat : beats) {
    if (beat < least || beat > most || std::abs(beat - cut) > reach) continue;
    if (found && std::abs(beat - cut) >= std::abs(best - cut)) continue;
    best = beat;
    found = true;
  }
  return best;
}

}  // namespace

double Beats::Tempo() const {
  if (seconds.size() < 2) return 0.0;
  std::vector<double> steps;
  for (size_t i = 1; i < seconds.size(); ++i) steps.push_back(seconds[i] - seconds[i - 1]);
  const auto middle = steps.begin() + static_cast<ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  return 60.0 / *middle;
}

Beats BeatsOf(const std::string& sound) {
  CheckFile(sound, "music");
  std::optional<std::string> printed;
  try {
    printed = OutputOfProgram({kBeatFinder, "-i", AbsoluteText(sound)});
  } catch (const Error& error) {
    throw Error(sound + ": its beats cannot be found: " + error.what());
  }
  if (!printed) {
    throw UsageError(std::string("--beats: beats are found by the program ") + kBeatFinder +
                     ", which is not installed; the package aubio-tools has it");
  }
  Beats beats{RisingNumbers(*printed)};
  if (beats.seconds.empty()) throw Error(sound + ": " + kBeatFinder + " finds no beats in it");
  return beats;
}

std::string TextOf(const Beats& beats) {
  return std::to_string(beats.seconds.size()) + " beats, " + FixedText(beats.Tempo(), 1) +
         " a minute";
}

std::vector<int32_t> TimesOnBeats(const std::vector<int32_t>& times,
                                  const std::vector<int32_t>& fades, int32_t begin,
                                  const Beats& beats, double framesPerSecond) {
  std::vector<int64_t> frames;
  for (const double beat : beats.seconds) frames.push_back(std::llround(beat * framesPerSecond));
  // What the pictures from one on need at the least, from its beginning to the end of the show.
  std::vector<int64_t> needs(times.size(), 1);
  int64_t end = begin;
  for (size_t i = times.size(); i-- > 0;) {
    const bool last = i + 1 == times.size();
    needs[i] = (i > 0 ? fades[i - 1] : 0) + 1 + (last ? 0 : needs[i + 1]);
  }
  for (size_t i = 0; i < times.size(); ++i) {
    end += times[i] - (i < fades.size() ? fades[i] : 0);
  }
  std::vector<int32_t> onBeats;
  int64_t was = begin, is = begin;  // where a picture begins
  for (size_t i = 0; i + 1 < times.size(); ++i) {
    const int64_t half = fades[i] / 2;
    was += times[i] - fades[i];
    const int64_t least = is + (i > 0 ? fades[i - 1] : 0) + 1, most = end - needs[i + 1];
    const int64_t reach = std::min(times[i], times[i + 1]) / 2;
    const int64_t next =
        most < least ? least : Snapped(was + half, frames, reach, least + half, most + half) - half;
    onBeats.push_back(static_cast<int32_t>(next - is + fades[i]));
    is = next;
  }
  onBeats.push_back(static_cast<int32_t>(end - is));
  return onBeats;
}

}  // namespace kelto::host
