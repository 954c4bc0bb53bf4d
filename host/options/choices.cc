#include "host/options/choices.h"

#include <algorithm>
#include <iterator>

#include "host/base/error.h"

namespace kelto::host {
namespace {

constexpr Choice kIn[] = {
    {"linear", "In: Linear"}, {"ease", "In: Ease In"}, {"constant", "In: Constant"}};
constexpr Choice kOut[] = {{"linear", "Out: Linear"},
                           {"ease", "Out: Ease Out"},
                           {"constant", "Out: Constant"},
                           {"hold", "Out: Hold"}};
constexpr Choice kPath[] = {{"linear", "Path: Linear"}, {"spline", "Path: Spline"}};
constexpr Choice kFilter[] = {
    {"realtime", "Filter: Real Time"},      {"triangle", "Filter: Triangle"},
    {"quadratic", "Filter: Quadratic"},     {"cubic", "Filter: Cubic"},
    {"catmull", "Filter: BSpline Catmull"}, {"gaussian", "Filter: Gaussian"},
    {"hiqual", "Filter: Kelto Hi Qual"},    {"ultra", "Filter: Kelto Ultra Qual"}};
constexpr Choice kLevels[] = {{"rgb", "Source Has RGB Levels"}, {"601", "Source Has 601 Levels"}};
constexpr Choice kDisplay[] = {{"target", "Display: Target"}, {"source", "Display: Source"}};

constexpr ChoiceList kLists[] = {
    {"--in", "invelocity", "How the move arrives at the last view", "ease", kIn},
    {"--out", "outvelocity", "How the move leaves the first view", "ease", kOut},
    {"--path", "path", "Path between the views", "linear", kPath},
    {"--filter", "filter", "Resampling filter", "hiqual", kFilter},
    {"--levels", "levels", "Levels of the photo: full-range RGB or studio range", "rgb", kLevels},
    {"--display", "display",
     "The film itself, or the photo as zoom 1 shows it, with the view outlined", "target",
     kDisplay},
};

}  // namespace

std::span<const ChoiceList> ChoiceLists() { return kLists; }

const ChoiceList& ListOf(std::string_view parameter) {
  return *std::find_if(std::begin(kLists), std::end(kLists),
                       [&](const ChoiceList& list) { return list.parameter == parameter; });
}

std::string EntryOf(const ChoiceList& list, std::string_view word) {
  for (const Choice& choice : list.choices) {
    if (choice.word == word) return choice.entry;
  }
  throw UsageError("choose one of " + WordsOf(list));
}

std::string WordFor(const ChoiceList& list, std::string_view entry) {
  for (const Choice& choice : list.choices) {
    if (choice.entry == entry) return choice.word;
  }
  return "";
}

std::string WordsOf(const ChoiceList& list) {
  std::string words;
  for (const Choice& choice : list.choices) {
    words += words.empty() ? "" : ", ";
    words += choice.word;
  }
  return words;
}

}  // namespace kelto::host
