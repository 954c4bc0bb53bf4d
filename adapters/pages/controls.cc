#include "adapters/pages/controls.h"

#include <algorithm>

namespace kelto::pages {
namespace {

using frei0r::Parameter;

constexpr Text kPhotoGroup{"Photo", "Foto"};
constexpr Text kViewGroup{"View", "Ausschnitt"};
constexpr Text kMotionGroup{"Motion between two views", "Bewegung zwischen zwei Ausschnitten"};
constexpr Text kPictureGroup{"Picture", "Bild"};

/// How far a page's sliders of x and y go, in percent of the picture.
constexpr double kFarthest = 200.0;

Control Slider(frei0r::ParameterIndex index, const Text& group, Text name, Text hint) {
  Control control{index, Widget::kSlider, name, hint, &group};
  const Parameter& parameter = control.parameter();
  control.least = std::max(parameter.lower * kPercent, -kFarthest);
  control.most = parameter.upper * kPercent;
  if (parameter.lower < 0.0) control.most = std::min(control.most, kFarthest);
  return control;
}

std::vector<Control> MakeControls() {
  using namespace frei0r;
  return {
      {kFilename,
       Widget::kFile,
       {"Photo or project", "Foto oder Projekt"},
       {"Photograph, or a project that the command or its editor wrote (.json)",
        "Foto, oder ein Projekt, das der Befehl oder sein Editor gespeichert hat (.json)"},
       &kPhotoGroup},
      Slider(kZoom, kViewGroup, {"Zoom", "Zoom"},
             {"At 100 % the photograph fits the frame", "Bei 100 % füllt das Foto das Bild"}),
      Slider(kX, kViewGroup, {"Centre, to the right", "Mitte, nach rechts"},
             {"In percent of the picture's width", "In Prozent der Bildbreite"}),
      Slider(kY, kViewGroup, {"Centre, down", "Mitte, nach unten"},
             {"In percent of the picture's height", "In Prozent der Bildhöhe"}),
      {kFrom,
       Widget::kLine,
       {"First view", "Erster Ausschnitt"},
       {"ZOOM or ZOOM@X,Y, as 2@0.1,-0.2; overrules zoom and centre",
        "ZOOM oder ZOOM@X,Y, etwa 2@0.1,-0.2; geht Zoom und Mitte vor"},
       &kMotionGroup},
      {kTo,
       Widget::kLine,
       {"Last view", "Letzter Ausschnitt"},
       {"ZOOM or ZOOM@X,Y", "ZOOM oder ZOOM@X,Y"},
       &kMotionGroup},
      Slider(
          kProgress, kMotionGroup, {"Progress", "Fortschritt"},
          {"Keyframe it from 0 % to 100 % to go from the first view to the last, or through a project",
           "Mit Schlüsselbildern von 0 % bis 100 % geht es vom ersten Ausschnitt zum letzten oder durch ein "
           "Projekt"}),
      {kMotion,
       Widget::kChoice,
       {"Motion", "Bewegung"},
       {"How one view becomes the next", "Wie ein Ausschnitt in den nächsten übergeht"},
       &kMotionGroup,
       {{"", {"Automatic", "Automatisch"}},
        {"steady", {"Steady", "Gleichmäßig"}},
        {"fly", {"Fly", "Flug"}},
        {"linear", {"Linear", "Linear"}}}},
      {kLeave,
       Widget::kChoice,
       {"Start", "Anfang"},
       {"How the motion begins", "Wie die Bewegung beginnt"},
       &kMotionGroup,
       {{"linear", {"Linear", "Linear"}},
        {"ease", {"Soft", "Weich"}},
        {"constant", {"Constant", "Konstant"}},
        {"hold", {"Hold", "Halten"}}}},
      {kArrive,
       Widget::kChoice,
       {"End", "Ende"},
       {"How the motion ends", "Wie die Bewegung endet"},
       &kMotionGroup,
       {{"linear", {"Linear", "Linear"}},
        {"ease", {"Soft", "Weich"}},
        {"constant", {"Constant", "Konstant"}}}},
      {kPath,
       Widget::kChoice,
       {"Path", "Weg"},
       {"Shape of a project's way between its views",
        "Form des Weges zwischen den Ausschnitten eines Projekts"},
       &kMotionGroup,
       {{"linear", {"Straight", "Gerade"}}, {"spline", {"Curved", "Kurve"}}}},
      {kFilter,
       Widget::kChoice,
       {"Filter", "Filter"},
       {"Resampling filter", "Filter der Skalierung"},
       &kPictureGroup,
       {{"realtime", {"Real time", "Echtzeit"}},
        {"triangle", {"Triangle", "Dreieck"}},
        {"quadratic", {"Quadratic", "Quadratisch"}},
        {"cubic", {"Cubic", "Kubisch"}},
        {"catmull", {"Catmull", "Catmull"}},
        {"gaussian", {"Gaussian", "Gauß"}},
        {"hiqual", {"High quality", "Hohe Qualität"}},
        {"ultra", {"Ultra quality", "Höchste Qualität"}}}},
      {kBackground,
       Widget::kChoice,
       {"Beside the photo", "Neben dem Foto"},
       {"What the photograph does not cover", "Was das Foto nicht bedeckt"},
       &kPictureGroup,
       {{"video", {"Video", "Video"}},
        {"#000000", {"Black", "Schwarz"}},
        {"#ffffff", {"White", "Weiß"}},
        {"none", {"Nothing (transparent)", "Nichts (durchsichtig)"}}}},
      {kLevels,
       Widget::kChoice,
       {"Levels of the photo", "Pegel des Fotos"},
       {"Full-range RGB or studio range", "Voller RGB-Bereich oder Studiopegel"},
       &kPictureGroup,
       {{"rgb", {"RGB", "RGB"}}, {"601", {"Studio", "Studio"}}}},
      {kDisplay,
       Widget::kChoice,
       {"Show", "Anzeige"},
       {"The view, or all of the photograph with the view outlined",
        "Der Ausschnitt, oder das ganze Foto mit umrandetem Ausschnitt"},
       &kPictureGroup,
       {{"source", {"Photo", "Foto"}}, {"target", {"View", "Ausschnitt"}}}},
  };
}

}  // namespace

std::span<const Control> Controls() {
  static const std::vector<Control> controls = MakeControls();
  return controls;
}

}  // namespace kelto::pages
