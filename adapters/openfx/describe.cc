#include "adapters/openfx/describe.h"

#include <algorithm>
#include <string>

#include "adapters/openfx/overlay.h"
#include "adapters/openfx/suites.h"
#include "adapters/pages/controls.h"

namespace kelto::openfx {
namespace {

using pages::Control;
using pages::Widget;

constexpr auto kEnglish = pages::Language::kEnglish;

void SetLabels(const Writer& writer, const char* label) {
  writer.String(ofx::prop::kLabel, label)
      .String(ofx::prop::kShortLabel, label)
      .String(ofx::prop::kLongLabel, label);
}

ofx::Status DefineClip(ofx::Effect effect, const char* name, bool optional) {
  ofx::Properties properties = nullptr;
  const ofx::Status status = TheSuites().effects->clipDefine(effect, name, &properties);
  if (status != ofx::kOk) return status;
  const Writer writer(properties);
  writer.String(ofx::prop::kSupportedComponents, ofx::value::kRgba, 0)
      .String(ofx::prop::kSupportedComponents, ofx::value::kRgb, 1)
      .Int(ofx::prop::kSupportsTiles, 0)
      .Int(ofx::prop::kTemporalClipAccess, 0);
  if (optional) writer.Int(ofx::prop::kOptional, 1);
  return ofx::kOk;
}

const char* TypeOf(Widget widget) {
  switch (widget) {
    case Widget::kSlider:
      return ofx::value::kDouble;
    case Widget::kChoice:
      return ofx::value::kChoice;
    case Widget::kFile:
    case Widget::kLine:
      return ofx::value::kString;
  }
  return "";
}

void SetNumber(const Writer& writer, const Control& control) {
  const frei0r::Parameter& parameter = control.parameter();
  writer.Double(ofx::prop::kDefault, parameter.number)
      .Double(ofx::prop::kMin, parameter.lower)
      .Double(ofx::prop::kMax, parameter.upper)
      .Double(ofx::prop::kDisplayMin, control.least / pages::kPercent)
      .Double(ofx::prop::kDisplayMax, control.most / pages::kPercent)
      .Double(ofx::prop::kIncrement, 0.01)
      .Int(ofx::prop::kDigits, 3);
}

/// Options are numbered from 0 in projects that people keep: they are never reordered.
void SetChoice(const Writer& writer, const Control& control) {
  int index = 0;
  for (const pages::Word& word : control.words) {
    if (word.word == control.parameter().text) writer.Int(ofx::prop::kDefault, index);
    writer.String(ofx::prop::kChoiceOption, word.name.In(kEnglish), index++);
  }
  writer.Int(ofx::prop::kAnimates, 0);
}

void SetText(const Writer& writer, const Control& control) {
  writer
      .String(ofx::prop::kStringMode,
              control.widget == Widget::kFile ? ofx::value::kFilePath : ofx::value::kSingleLine)
      .String(ofx::prop::kDefault, control.parameter().text)
      .Int(ofx::prop::kAnimates, 0);
}

ofx::Status DefineGroup(ofx::ParameterSet set, const pages::Text& group) {
  ofx::Properties properties = nullptr;
  const ofx::Status status =
      TheSuites().parameters->define(set, ofx::value::kGroup, group.english, &properties);
  if (status == ofx::kOk) SetLabels(Writer(properties), group.english);
  return status;
}

ofx::Status DefineParameter(ofx::ParameterSet set, const Control& control) {
  ofx::Properties properties = nullptr;
  const char* name = control.parameter().name;
  const ofx::Status status =
      TheSuites().parameters->define(set, TypeOf(control.widget), name, &properties);
  if (status != ofx::kOk) return status;
  const Writer writer(properties);
  SetLabels(writer, control.name.In(kEnglish));
  writer.String(ofx::prop::kHint, control.hint.In(kEnglish))
      .String(ofx::prop::kParent, control.group->english);
  switch (control.widget) {
    case Widget::kSlider:
      SetNumber(writer, control);
      break;
    case Widget::kChoice:
      SetChoice(writer, control);
      break;
    case Widget::kFile:
    case Widget::kLine:
      SetText(writer, control);
      break;
  }
  return ofx::kOk;
}

}  // namespace

ofx::Status Describe(ofx::Effect effect) {
  ofx::Properties properties = nullptr;
  const ofx::Status status = TheSuites().effects->getPropertySet(effect, &properties);
  if (status != ofx::kOk) return status;
  const Writer writer(properties);
  SetLabels(writer, pages::kTitle.In(kEnglish));
  writer.String(ofx::prop::kGrouping, "Kelto")
      .String(ofx::prop::kPluginDescription, pages::kSummary.In(kEnglish))
      // In the bundle's folder of resources.
      .String(ofx::prop::kIcon, KELTO_OPENFX_IDENTIFIER ".svg", 0)
      .String(ofx::prop::kIcon, KELTO_OPENFX_IDENTIFIER ".png", 1);
  if (TheSuites().draw != nullptr) {
    writer.Pointer(ofx::prop::kOverlay, reinterpret_cast<void*>(OverlayMain));
  }
  int context = 0;
  for (const char* name :
       {ofx::context::kFilter, ofx::context::kGeneral, ofx::context::kGenerator}) {
    writer.String(ofx::prop::kSupportedContexts, name, context++);
  }
  int depth = 0;
  for (const char* name : {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat}) {
    writer.String(ofx::prop::kSupportedPixelDepths, name, depth++);
  }
  writer.Int(ofx::prop::kSingleInstance, 0)
      .Int(ofx::prop::kHostFrameThreading, 0)
      .Int(ofx::prop::kSupportsMultiResolution, 1)
      .Int(ofx::prop::kSupportsTiles, 0)
      .Int(ofx::prop::kTemporalClipAccess, 0)
      .Int(ofx::prop::kMultipleClipPars, 0)
      .String(ofx::prop::kRenderThreadSafety, ofx::value::kFullySafe);
  return ofx::kOk;
}

ofx::Status DescribeInContext(ofx::Effect effect, ofx::Properties inArgs) {
  const std::string context = Reader(inArgs).String(ofx::prop::kContext, "");
  const bool generator = context == ofx::context::kGenerator;
  if (!generator && context != ofx::context::kFilter && context != ofx::context::kGeneral) {
    return ofx::kUnsupported;
  }
  ofx::Status status = DefineClip(effect, ofx::kOutputClip, false);
  if (status == ofx::kOk && !generator) {
    status = DefineClip(effect, ofx::kSourceClip, context == ofx::context::kGeneral);
  }
  ofx::ParameterSet set = nullptr;
  if (status == ofx::kOk) status = TheSuites().effects->getParamSet(effect, &set);
  const pages::Text* group = nullptr;
  for (const Control& control : pages::Controls()) {
    if (status == ofx::kOk && control.group != group) status = DefineGroup(set, *control.group);
    group = control.group;
    if (status == ofx::kOk) status = DefineParameter(set, control);
  }
  return status;
}

}  // namespace kelto::openfx
