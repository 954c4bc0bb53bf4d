// The host's side of the effect interface: what an application that runs effects calls.
//
// platform/hfx.h is the contract with modules; this header sets what those calls answer. One
// process-wide state (console, play mode) and one state per instance. No locks: one thread at a
// time.
//
// The usual way, from a file to a frame:
//
//   std::string error;
//   auto module = hfx::Module::Load("effects/Some.hfx", &error);
//   auto effect = hfx::Effect::Create(*module, 1, &error);
//   hfx::SetKey(*effect->instance().FindParameter("size"), 0.0, &zoom, sizeof zoom);
//   effect->ParametersChanged();                              // after every edit
//   hfx::ImageBuffer input(1920, 1080, hfxColorspaceRGB), output(1920, 1080, hfxColorspaceRGB);
//   effect->BeginRender(hfxPlayModeRender, &error);
//   for (state.currentFrame = 0; state.currentFrame < state.totalFrames; ++state.currentFrame)
//     effect->Render(state, input.image(), output.image(), &error);
//   effect->EndRender(&error);
//
// Everything made from a module goes before the module: effects first, then the Module.
// Where an `error` is asked for it may be null; it is one line without a newline and is only
// written on failure. Arguments that make no sense are refused as each function says, never acted
// on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/hfx.h"

namespace hfx {

/// Answers of an instance's timing and quality questions, set before each render. Handed to the
/// module as they are, sensible or not.
struct RenderState {
  int32_t currentFrame = 0;  ///< 0-based
  int32_t totalFrames = 1;
  int32_t field = 0;  ///< 0: first field of the frame in time, or the whole frame; 1: second
  int32_t videoType = hfxVideoTypeProgressive;
  int32_t fieldMode = hfxFieldModeProgressive;
  bool topField = false;  ///< the field holds the frame's even rows
  double displayAspect = 4.0 / 3.0;
  double quality = 1.0;
  bool aborted = false;  ///< see SetAbortQuery for an answer that changes during a render
};

/// What a model said of itself in DescribeEffect and DeclareConnections, in call order.
struct ModelDescription {
  struct Format {
    int32_t colorspace, depth;
    std::string name;
    bool named;  ///< false when the module gave no name (null)
    int32_t imgFormat;
  };
  struct Connection {
    int32_t index;
    std::string displayName, key;
    int32_t dataType;
  };
  int32_t type = -1;  ///< -1: never said
  std::string name, vendor, category;
  float version = 0.0f;
  std::vector<Format> formats;
  std::vector<Connection> inputs, outputs;
  hfxUpdateParamsCallback updateParams = nullptr;
};

/// The class of a parameter. hfxParameter's table says what each holds.
enum class ParamKind { Group, List, Boolean, Number, Point2D, ColorRGB };

// --- Process-wide

/// What hfxGetPlayMode answers, a hfxPlayMode; hfxPlayModeRender at first.
KELTO_PLATFORM_API void SetPlayMode(int32_t mode);
/// Where console text goes, one call per ConsolePrintf; an empty function restores stderr. The sink
/// must not throw: it runs below the module's code.
KELTO_PLATFORM_API void SetConsole(std::function<void(const std::string&)> sink);

// --- Images

/// Pixels of the host's own with the image that describes them, black at first (in 4:2:2 the studio
/// range's black, in RGB with alpha 255).
class KELTO_PLATFORM_API ImageBuffer {
 public:
  /// How rows lie in memory.
  struct Rows {
    int32_t bytes = 0;      ///< from row to row; less than a row of pixels (0 too) means no padding
    bool bottomUp = false;  ///< the picture's last row comes first
  };
  /// `colorspace` is hfxColorspaceRGB or hfxColorspaceYCbCr, for which the format follows; others
  /// throw std::invalid_argument, as do negative sizes. Throws std::bad_alloc when memory runs out.
  ImageBuffer(int32_t width, int32_t height, int32_t colorspace);
  ImageBuffer(int32_t width, int32_t height, int32_t colorspace, const Rows& rows);
  ImageBuffer(const ImageBuffer&) = delete;
  ImageBuffer& operator=(const ImageBuffer&) = delete;

  hfxImage* image() { return &image_; }
  /// All bytes in memory order, padding (zeros at first) included.
  std::vector<uint8_t>& bytes() { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
  hfxImage image_;
};

/// The rows of one field of `frame`, as an image to lend in hfxFieldModeSeparate: rows 0, 2, ...
/// for the top field, 1, 3, ... for the other. Shares the frame's pixels.
KELTO_PLATFORM_API hfxImage FieldView(const hfxImage& frame, bool topField);

// --- Instances

/// The answers in force; write through the reference to change them.
KELTO_PLATFORM_API RenderState& StateOf(hfxInstance_v1& instance);
/// Asked each time the module asks whether the render is aborted (besides RenderState::aborted); an
/// empty function asks nobody. Must not throw.
KELTO_PLATFORM_API void SetAbortQuery(hfxInstance_v1& instance, std::function<bool()> query);
/// Lends an image for the next renders; null takes it away. The caller keeps it alive. A negative
/// `index` is ignored.
KELTO_PLATFORM_API void SetInput(hfxInstance_v1& instance, int32_t index, hfxImage* image);
KELTO_PLATFORM_API void SetOutput(hfxInstance_v1& instance, int32_t index, hfxImage* image);
/// Takes the record away, as in an instance that never set one, and with it its modified mark.
/// (To restore a record from a project, call SetInstanceData and SetInstanceDataModified(false).)
KELTO_PLATFORM_API void ClearInstanceData(hfxInstance_v1& instance);
/// True when the project has to be saved for the record's sake.
KELTO_PLATFORM_API bool InstanceDataModified(const hfxInstance_v1& instance);
/// All parameters in order of creation, groups included.
KELTO_PLATFORM_API std::vector<hfxParameter*> ParametersOf(const hfxInstance_v1& instance);

// --- Models

KELTO_PLATFORM_API const ModelDescription& DescriptionOf(const hfxModel_v1& model);

// --- Parameters and keys
//
// Values pass in raw form with their size, which must be ValueSizeOf's. None of these calls the
// model's update-parameters callback: an editor does that once, after a whole edit.

KELTO_PLATFORM_API ParamKind KindOf(const hfxParameter& parameter);
/// The group that holds the parameter, null at the top level.
KELTO_PLATFORM_API hfxPGroup* GroupOf(const hfxParameter& parameter);
/// Bytes of the raw value: 4 for lists, 1 for switches, 8, 16 and 24 for numbers, points and
/// colours, 0 for groups.
KELTO_PLATFORM_API int32_t ValueSizeOf(const hfxParameter& parameter);

/// What the bound field held when the parameter was made. False for a wrong size or a group.
KELTO_PLATFORM_API bool DefaultValueOf(const hfxParameter& parameter, void* result, int32_t size);
/// What the bound field holds now: the parameter's value while it has no keys, else what was
/// written for the last frame. False for a wrong size or a group.
KELTO_PLATFORM_API bool BoundValueOf(const hfxParameter& parameter, void* result, int32_t size);
/// Writes the bound field, keys or not. False for a wrong size or a group.
KELTO_PLATFORM_API bool SetBoundValue(hfxParameter& parameter, const void* value, int32_t size);

/// Adds a key (or overwrites the one at that exact time, whose activity stays), keeps keys in order
/// of time and returns its index; -1 for a time that is not a finite number, a null value, a wrong
/// `size` or a group. The new key is not active. Times are 0..1 over the effect's length; those
/// outside are kept, as keys of a trimmed effect.
KELTO_PLATFORM_API int32_t SetKey(hfxParameter& parameter, double time, const void* value,
                                  int32_t size);
/// Moves key `index` to another time with value and activity, past other keys if need be, and
/// returns its new index; -1 when there is no such key, the time is not a finite number or another
/// key exists.
KELTO_PLATFORM_API int32_t MoveKey(hfxParameter& parameter, int32_t index, double time);
/// False when there is no key `index`.
KELTO_PLATFORM_API bool RemoveKey(hfxParameter& parameter, int32_t index);
/// Removes all keys; the bound field keeps what it holds, which is then the value.
KELTO_PLATFORM_API void RemoveAllKeys(hfxParameter& parameter);
/// Makes key `index` the one being edited; -1 (or an index without a key) leaves none active.
KELTO_PLATFORM_API void SetActiveKey(hfxParameter& parameter, int32_t index);
/// Index of the key being edited, -1 when there is none.
KELTO_PLATFORM_API int32_t ActiveKeyOf(const hfxParameter& parameter);

/// The parameter's value at `time`, by its interpolator where one is set and answers (asked first,
/// with keys or without), else linear between keys (lists and switches hold); without keys the
/// bound field's. False, with `result` untouched, for a wrong size, a group or a time that is not a
/// number. An exception of the interpolator's passes through.
KELTO_PLATFORM_API bool ValueAt(hfxParameter& parameter, double time, void* result, int32_t size);
/// Writes every keyed parameter's value at `time` into its bound field, as before each frame. A
/// parameter without keys keeps its field, interpolator or not.
KELTO_PLATFORM_API void WriteBoundFields(hfxInstance_v1& instance, double time);
/// The time of a render on the scale of key times: (currentFrame, plus 0.5 in the second field of
/// an interlaced video type) / (totalFrames - 1), held in 0..1; 0 for an effect of one frame or
/// less.
KELTO_PLATFORM_API double FrameTime(const RenderState& state);

// --- Modules and effects

/// A loaded module; shuts it down and unloads it when destroyed, which must be after its models and
/// instances are gone. A file loaded twice is one library in the process, started up twice.
class KELTO_PLATFORM_API Module {
 public:
  /// Loads a module file, checks its entry points and starts it up. On failure returns null and
  /// says in `error`, in one line, what was tried and what was found. On Windows the libraries that
  /// the module needs are looked for in its own folder, the program's and the system's.
  static std::unique_ptr<Module> Load(const std::filesystem::path& path, std::string* error);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// Hands the module the callback that instances ask at BeginRender; null takes it back. Do so
  /// before the callback's own code goes away.
  void SetHostState(hfxHostStateCallback callback);

  // The entry points, none of them null.
  hfxStartUp_v1_t startUp = nullptr;
  hfxShutDown_v1_t shutDown = nullptr;
  hfxNumModels_v1_t numModels = nullptr;
  hfxNewModel_v1_t newModel = nullptr;
  hfxNewOverlay_v1_t newOverlay = nullptr;
  hfxGetModelAttributes_v1ext_t getModelAttributes = nullptr;
  hfxSetAttribute_t setAttribute = nullptr;

 private:
  Module() = default;
  void* library_ = nullptr;
  bool started_ = false;
};

/// One model of a module with one instance, ready to render: the usual way to run an effect.
///
/// Exceptions from the module are caught here and reported as failures; calls made on instance()
/// and model() directly let them through.
class KELTO_PLATFORM_API Effect {
 public:
  /// Makes model `number` (from 1), has it describe itself and makes a first instance with its
  /// parameters. The module must outlive the effect. On failure returns null and says in `error`
  /// which operation failed.
  static std::unique_ptr<Effect> Create(Module& module, uint16_t number, std::string* error);
  ~Effect();
  Effect(const Effect&) = delete;
  Effect& operator=(const Effect&) = delete;

  hfxModel_v1& model() { return *model_; }
  hfxInstance_v1& instance() { return *instance_; }

  /// Another effect of the same model whose instance copies this one's (CopyInstance) and has had
  /// its callback called: a clip duplicated or split.
  std::unique_ptr<Effect> Duplicate(std::string* error);
  /// Calls the model's update-parameters callback, as after every edit; true without a callback.
  /// What an exception says goes to the console.
  bool ParametersChanged();

  /// Sets the play mode, a hfxPlayMode, and calls the instance's BeginRender.
  bool BeginRender(int32_t playMode, std::string* error);
  /// Renders the frame (or field) that `state` names into `output` over `input`: sets the state,
  /// lends both as number 0, writes bound fields at FrameTime, and calls RenderFrame with the whole
  /// output as region. A missing image is passed on as missing. An exception from the module is
  /// caught and reported as failure, with the frame's number. Call between BeginRender and
  /// EndRender. The images are lent for this call only; what was lent before is lent again after
  /// it.
  bool Render(const RenderState& state, hfxImage* input, hfxImage* output, std::string* error);
  /// Calls the instance's EndRender; also due after a render that failed or was aborted.
  bool EndRender(std::string* error);

 private:
  Effect() = default;
  Module* module_ = nullptr;
  uint16_t number_ = 0;
  hfxModel_v1* model_ = nullptr;
  hfxInstance_v1* instance_ = nullptr;
};

}  // namespace hfx
