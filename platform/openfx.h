// The open effects interface (version 1.4, with what 1.5 hosts may offer), as far as the plug-in
// and its tests use it: the binary form of its records and the names of its properties, written
// down from the published interface.
//
// Everything is C. Handles are opaque; every function returns a Status.
#pragma once

#include <cstddef>

namespace kelto::ofx {

using Status = int;
inline constexpr Status kOk = 0;
inline constexpr Status kFailed = 1;
inline constexpr Status kFatal = 2;
inline constexpr Status kUnknown = 3;
inline constexpr Status kMissingHostFeature = 4;
inline constexpr Status kUnsupported = 5;
inline constexpr Status kExists = 6;
inline constexpr Status kOutOfMemory = 8;
inline constexpr Status kBadHandle = 9;
inline constexpr Status kBadIndex = 10;
inline constexpr Status kBadValue = 11;
inline constexpr Status kReplyDefault = 14;

using Time = double;
using Properties = struct PropertySetRecord*;
using Effect = struct EffectRecord*;
using Clip = struct ClipRecord*;
using ImageMemory = struct ImageMemoryRecord*;
using ParameterSet = struct ParameterSetRecord*;
using ParameterHandle = struct ParameterRecord*;
using DrawContext = struct DrawContextRecord*;

/// y upwards; x2 and y2 lie outside.
struct RectI {
  int x1, y1, x2, y2;
};
struct RectD {
  double x1, y1, x2, y2;
};
struct RangeD {
  double min, max;
};
struct PointD {
  double x, y;
};
/// 0 .. 1 each.
struct Colour {
  float red, green, blue, alpha;
};

struct Host {
  Properties host;
  const void* (*fetchSuite)(Properties host, const char* suite, int version);
};

using MainEntry = Status (*)(const char* action, const void* handle, Properties inArgs,
                             Properties outArgs);

struct Plugin {
  const char* api;
  int apiVersion;
  const char* identifier;
  unsigned int versionMajor, versionMinor;
  void (*setHost)(Host*);
  MainEntry mainEntry;
};

struct PropertySuite {
  Status (*setPointer)(Properties, const char* name, int index, void* value);
  Status (*setString)(Properties, const char* name, int index, const char* value);
  Status (*setDouble)(Properties, const char* name, int index, double value);
  Status (*setInt)(Properties, const char* name, int index, int value);
  Status (*setPointerN)(Properties, const char* name, int count, void* const* values);
  Status (*setStringN)(Properties, const char* name, int count, const char* const* values);
  Status (*setDoubleN)(Properties, const char* name, int count, const double* values);
  Status (*setIntN)(Properties, const char* name, int count, const int* values);
  Status (*getPointer)(Properties, const char* name, int index, void** value);
  Status (*getString)(Properties, const char* name, int index, char** value);
  Status (*getDouble)(Properties, const char* name, int index, double* value);
  Status (*getInt)(Properties, const char* name, int index, int* value);
  Status (*getPointerN)(Properties, const char* name, int count, void** values);
  Status (*getStringN)(Properties, const char* name, int count, char** values);
  Status (*getDoubleN)(Properties, const char* name, int count, double* values);
  Status (*getIntN)(Properties, const char* name, int count, int* values);
  Status (*reset)(Properties, const char* name);
  Status (*getDimension)(Properties, const char* name, int* count);
};

struct EffectSuite {
  Status (*getPropertySet)(Effect, Properties*);
  Status (*getParamSet)(Effect, ParameterSet*);
  Status (*clipDefine)(Effect, const char* name, Properties*);
  Status (*clipGetHandle)(Effect, const char* name, Clip*, Properties*);
  Status (*clipGetPropertySet)(Clip, Properties*);
  Status (*clipGetImage)(Clip, Time, const RectD* region, Properties* image);
  Status (*clipReleaseImage)(Properties image);
  Status (*clipGetRegionOfDefinition)(Clip, Time, RectD* bounds);
  int (*abort)(Effect);
  Status (*imageMemoryAlloc)(Effect, size_t bytes, ImageMemory*);
  Status (*imageMemoryFree)(ImageMemory);
  Status (*imageMemoryLock)(ImageMemory, void** memory);
  Status (*imageMemoryUnlock)(ImageMemory);
};

struct ParameterSuite {
  Status (*define)(ParameterSet, const char* type, const char* name, Properties*);
  Status (*getHandle)(ParameterSet, const char* name, ParameterHandle*, Properties*);
  Status (*setGetPropertySet)(ParameterSet, Properties*);
  Status (*getPropertySet)(ParameterHandle, Properties*);
  Status (*getValue)(ParameterHandle, ...);
  Status (*getValueAtTime)(ParameterHandle, Time, ...);
  Status (*getDerivative)(ParameterHandle, Time, ...);
  Status (*getIntegral)(ParameterHandle, Time, Time, ...);
  Status (*setValue)(ParameterHandle, ...);
  Status (*setValueAtTime)(ParameterHandle, Time, ...);
  Status (*getNumKeys)(ParameterHandle, unsigned int* count);
  Status (*getKeyTime)(ParameterHandle, unsigned int nth, Time*);
  Status (*getKeyIndex)(ParameterHandle, Time, int direction, int* index);
  Status (*deleteKey)(ParameterHandle, Time);
  Status (*deleteAllKeys)(ParameterHandle);
  Status (*copy)(ParameterHandle to, ParameterHandle from, Time offset, const RangeD* range);
  Status (*editBegin)(ParameterSet, const char* name);
  Status (*editEnd)(ParameterSet);
};

/// Version 2; version 1 ends after the first.
struct MessageSuite {
  Status (*message)(void* effect, const char* type, const char* id, const char* format, ...);
  Status (*setPersistentMessage)(void* effect, const char* type, const char* id, const char* format,
                                 ...);
  Status (*clearPersistentMessage)(void* effect);
};

struct MemorySuite {
  /// `owner` may be null.
  Status (*allocate)(void* owner, size_t bytes, void** memory);
  Status (*free)(void* memory);
};

/// Of 1.5: lines over a viewer, in canonical coordinates.
struct DrawSuite {
  Status (*getColour)(DrawContext, int standard, Colour*);
  Status (*setColour)(DrawContext, const Colour*);
  Status (*setLineWidth)(DrawContext, float pixels);
  Status (*setLineStipple)(DrawContext, int pattern);
  Status (*draw)(DrawContext, int primitive, const PointD* points, int count);
  Status (*drawText)(DrawContext, const char* text, const PointD* at, int alignment);
};
/// A standard colour of what is being edited, and a primitive: a closed line through its points.
inline constexpr int kActiveColour = 1, kLineLoop = 2;

inline constexpr const char* kEffectApi = "OfxImageEffectPluginAPI";
inline constexpr const char* kPropertySuite = "OfxPropertySuite";
inline constexpr const char* kEffectSuite = "OfxImageEffectSuite";
inline constexpr const char* kParameterSuite = "OfxParameterSuite";
inline constexpr const char* kMessageSuite = "OfxMessageSuite";
inline constexpr const char* kMemorySuite = "OfxMemorySuite";
inline constexpr const char* kDrawSuite = "OfxDrawSuite";

namespace action {
inline constexpr const char* kLoad = "OfxActionLoad";
inline constexpr const char* kUnload = "OfxActionUnload";
inline constexpr const char* kDescribe = "OfxActionDescribe";
inline constexpr const char* kDescribeInContext = "OfxImageEffectActionDescribeInContext";
inline constexpr const char* kCreateInstance = "OfxActionCreateInstance";
inline constexpr const char* kDestroyInstance = "OfxActionDestroyInstance";
inline constexpr const char* kPurgeCaches = "OfxActionPurgeCaches";
inline constexpr const char* kRegionOfDefinition = "OfxImageEffectActionGetRegionOfDefinition";
inline constexpr const char* kClipPreferences = "OfxImageEffectActionGetClipPreferences";
inline constexpr const char* kIsIdentity = "OfxImageEffectActionIsIdentity";
inline constexpr const char* kRender = "OfxImageEffectActionRender";
inline constexpr const char* kDraw = "OfxInteractActionDraw";
}  // namespace action

namespace context {
inline constexpr const char* kFilter = "OfxImageEffectContextFilter";
inline constexpr const char* kGeneral = "OfxImageEffectContextGeneral";
inline constexpr const char* kGenerator = "OfxImageEffectContextGenerator";
}  // namespace context

/// Names of properties.
namespace prop {
inline constexpr const char* kName = "OfxPropName";
inline constexpr const char* kLabel = "OfxPropLabel";
inline constexpr const char* kShortLabel = "OfxPropShortLabel";
inline constexpr const char* kLongLabel = "OfxPropLongLabel";
inline constexpr const char* kIcon = "OfxPropIcon";
inline constexpr const char* kTime = "OfxPropTime";
inline constexpr const char* kEffectInstance = "OfxPropEffectInstance";
inline constexpr const char* kInstanceData = "OfxPropInstanceData";
inline constexpr const char* kPluginDescription = "OfxPropPluginDescription";
inline constexpr const char* kGrouping = "OfxImageEffectPluginPropGrouping";
inline constexpr const char* kSupportedContexts = "OfxImageEffectPropSupportedContexts";
inline constexpr const char* kSupportedPixelDepths = "OfxImageEffectPropSupportedPixelDepths";
inline constexpr const char* kSupportedComponents = "OfxImageEffectPropSupportedComponents";
inline constexpr const char* kSingleInstance = "OfxImageEffectPluginPropSingleInstance";
inline constexpr const char* kHostFrameThreading = "OfxImageEffectPluginPropHostFrameThreading";
inline constexpr const char* kRenderThreadSafety = "OfxImageEffectPluginRenderThreadSafety";
inline constexpr const char* kSupportsMultiResolution = "OfxImageEffectPropSupportsMultiResolution";
inline constexpr const char* kSupportsTiles = "OfxImageEffectPropSupportsTiles";
inline constexpr const char* kTemporalClipAccess = "OfxImageEffectPropTemporalClipAccess";
inline constexpr const char* kMultipleClipPars = "OfxImageEffectPropSupportsMultipleClipPARs";
inline constexpr const char* kContext = "OfxImageEffectPropContext";
inline constexpr const char* kRenderWindow = "OfxImageEffectPropRenderWindow";
inline constexpr const char* kRenderScale = "OfxImageEffectPropRenderScale";
inline constexpr const char* kFieldToRender = "OfxImageEffectPropFieldToRender";
inline constexpr const char* kRegionOfDefinition = "OfxImageEffectPropRegionOfDefinition";
inline constexpr const char* kProjectSize = "OfxImageEffectPropProjectSize";
inline constexpr const char* kProjectOffset = "OfxImageEffectPropProjectOffset";
inline constexpr const char* kPixelDepth = "OfxImageEffectPropPixelDepth";
inline constexpr const char* kComponents = "OfxImageEffectPropComponents";
inline constexpr const char* kPreMultiplication = "OfxImageEffectPropPreMultiplication";
inline constexpr const char* kFrameVarying = "OfxImageEffectFrameVarying";
inline constexpr const char* kOptional = "OfxImageClipPropOptional";
inline constexpr const char* kConnected = "OfxImageClipPropConnected";
inline constexpr const char* kImageData = "OfxImagePropData";
inline constexpr const char* kImageBounds = "OfxImagePropBounds";
inline constexpr const char* kImageRegionOfDefinition = "OfxImagePropRegionOfDefinition";
inline constexpr const char* kImageRowBytes = "OfxImagePropRowBytes";
inline constexpr const char* kImageField = "OfxImagePropField";
inline constexpr const char* kImagePixelAspect = "OfxImagePropPixelAspectRatio";
inline constexpr const char* kOverlay = "OfxImageEffectPluginPropOverlayInteractV2";
inline constexpr const char* kDrawContext = "OfxInteractPropDrawContext";
inline constexpr const char* kHint = "OfxParamPropHint";
inline constexpr const char* kDefault = "OfxParamPropDefault";
inline constexpr const char* kMin = "OfxParamPropMin";
inline constexpr const char* kMax = "OfxParamPropMax";
inline constexpr const char* kDisplayMin = "OfxParamPropDisplayMin";
inline constexpr const char* kDisplayMax = "OfxParamPropDisplayMax";
inline constexpr const char* kDigits = "OfxParamPropDigits";
inline constexpr const char* kIncrement = "OfxParamPropIncrement";
inline constexpr const char* kAnimates = "OfxParamPropAnimates";
inline constexpr const char* kStringMode = "OfxParamPropStringMode";
inline constexpr const char* kChoiceOption = "OfxParamPropChoiceOption";
inline constexpr const char* kParent = "OfxParamPropParent";
}  // namespace prop

/// Values of properties.
namespace value {
inline constexpr const char* kByte = "OfxBitDepthByte";
inline constexpr const char* kShort = "OfxBitDepthShort";
inline constexpr const char* kFloat = "OfxBitDepthFloat";
inline constexpr const char* kRgba = "OfxImageComponentRGBA";
inline constexpr const char* kRgb = "OfxImageComponentRGB";
inline constexpr const char* kOpaque = "OfxImageOpaque";
inline constexpr const char* kPremultiplied = "OfxImageAlphaPremultiplied";
inline constexpr const char* kUnpremultiplied = "OfxImageAlphaUnPremultiplied";
inline constexpr const char* kFieldNone = "OfxFieldNone";
inline constexpr const char* kFieldBoth = "OfxFieldBoth";
inline constexpr const char* kFieldLower = "OfxFieldLower";
inline constexpr const char* kFieldUpper = "OfxFieldUpper";
inline constexpr const char* kFullySafe = "OfxImageEffectRenderFullySafe";
inline constexpr const char* kFilePath = "OfxParamStringIsFilePath";
inline constexpr const char* kSingleLine = "OfxParamStringIsSingleLine";
inline constexpr const char* kDouble = "OfxParamTypeDouble";
inline constexpr const char* kChoice = "OfxParamTypeChoice";
inline constexpr const char* kString = "OfxParamTypeString";
inline constexpr const char* kGroup = "OfxParamTypeGroup";
inline constexpr const char* kErrorMessage = "OfxMessageError";
}  // namespace value

inline constexpr const char* kSourceClip = "Source";
inline constexpr const char* kOutputClip = "Output";

}  // namespace kelto::ofx
