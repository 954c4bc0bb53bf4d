// The host's effect plug-in interface, version 1, as an effect module sees it.
//
// A module is a shared library that exports the seven entry points at the end of this file. The
// host loads it at run time, asks it for a model (which describes the effect), has the model make
// instances (one for each use of the effect on a timeline), and lets each instance declare its
// parameters and render frames. The host library (`hfx`) implements every class below; a module
// derives from hfxModel_v1 and hfxInstance_v1 and overrides what it needs. Host and module share
// this one library, so the classes are the same objects, with the same type information, on both
// sides: `dynamic_cast` works across, and exceptions thrown by a module reach the host.
//
// The host's calls, in order:
//   hfxStartUp_v1, hfxSetAttribute and hfxGetModelAttributes_v1ext as needed, hfxNumModels_v1,
//   hfxNewModel_v1; on the model DescribeEffect, DeclareConnections, CreateInstance;
//   on an instance CreateParameters, then for each render BeginRender, RenderFrame for every frame
//   or field, EndRender; the update-parameters callback after every edit;
//   DeleteInstance, the model's destructor, hfxShutDown_v1.
//
// Threads: the host calls a module's entry points and operations one at a time.
// Ownership is said at each operation; a `const char*` result lives as long as its object.
// Arguments: null texts count as empty, and an operation that is handed something impossible (an
// index beyond the ends, a null address) does nothing and gives null, false, zero or -1.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/api.h"

class hfxInstance_v1;
class hfxParameter;

/// Colour space of an image. Other values may reach a module from foreign hosts.
enum hfxColorspace : int32_t {
  hfxColorspaceRGB = 0,    ///< four bytes a pixel, see hfxImgFormatBGRA
  hfxColorspaceYCbCr = 1,  ///< two bytes a pixel, see hfxImgFormatYCbYCr
};

/// Byte layout of an image.
enum hfxImgFormat : int32_t {
  hfxImgFormatBGRA = 2,    ///< bytes B, G, R, A, full range
  hfxImgFormatYCbYCr = 9,  ///< bytes Y Cb Y Cr for two pixels, 4:2:2, studio range (16..235)
};

/// How the frames of a clip are stored and handed out.
enum hfxFieldMode : int32_t {
  hfxFieldModeProgressive = 0,  ///< whole frames
  hfxFieldModeInterleaved = 1,  ///< whole frames holding two fields
  hfxFieldModeSeparate = 2,     ///< one field a render: images hold every second row of the frame
};

/// Scanning standard of a clip.
enum hfxVideoType : int32_t {
  hfxVideoTypeProgressive = 0,
  hfxVideoType525 = 1,  ///< interlaced, 525 lines
  hfxVideoType625 = 2,  ///< interlaced, 625 lines
};

/// What a host plays a render for.
enum hfxPlayMode : int32_t {
  hfxPlayModeRender = 0,   ///< final quality: nothing may be dropped or reduced
  hfxPlayModePreview = 1,  ///< real time: reduced working copies are welcome
};

/// Pixel rectangle with inclusive bounds: a whole image of W x H pixels is (0, 0, W - 1, H - 1).
struct hfxRect {
  int32_t x0, y0, x1, y1;
};

/// Process-wide services of the host.
class KELTO_PLATFORM_API hfxGlobal {
 public:
  /// Writes formatted text (printf rules) to the host's console; the text brings its own newline.
  static void ConsolePrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
};

/// The play mode of the render that is about to begin, a hfxPlayMode.
KELTO_PLATFORM_API int32_t hfxGetPlayMode();

/// Rows of pixels that the host lends for one render. The host owns image and pixels.
///
/// Rows may be padded and may run upwards in memory: step from row to row by GetRowDelta, never by
/// the width, and touch nothing between a row's last pixel and the next row.
class KELTO_PLATFORM_API hfxImage {
 public:
  /// Describes `height` rows of `width` pixels; row r starts at `row0 + r * rowDelta`. A negative
  /// `rowDelta` (bytes) describes a bottom-up image: `row0` is then the last row in memory. The
  /// pixels stay the caller's. Negative sizes count as 0; colour space and format are kept as
  /// given, so that a module can be tried with values that this host never uses.
  hfxImage(int32_t width, int32_t height, uint8_t* row0, ptrdiff_t rowDelta, int32_t colorspace,
           int32_t imgFormat);

  int32_t GetWidth() const { return width_; }
  /// Rows of this image: those of one field, half the frame's, in hfxFieldModeSeparate.
  int32_t GetHeight() const { return height_; }
  /// First byte of row `row`, 0 being the top of the picture. No bounds check.
  uint8_t* GetRowPtr(int32_t row) const { return row0_ + row * rowDelta_; }
  /// Bytes from one row to the row below it in the picture; may be padded, may be negative.
  ptrdiff_t GetRowDelta() const { return rowDelta_; }
  int32_t GetColorspace() const { return colorspace_; }  ///< a hfxColorspace
  int32_t GetImgFormat() const { return imgFormat_; }    ///< a hfxImgFormat
  /// Number kind of channel `index`: 0 for integers (the only kind of this host), 1 for others.
  int32_t GetChannelType(int32_t index) const;
  int32_t GetChannelSize() const;  ///< bits a channel: 8
  /// Channels stored for each pixel: 4 for RGB, 2 for 4:2:2, 0 for colour spaces unknown here.
  int32_t GetNumChannels() const;

 private:
  int32_t width_, height_;
  uint8_t* row0_;
  ptrdiff_t rowDelta_;
  int32_t colorspace_, imgFormat_;
};

/// One key of a parameter: a time (0..1 over the effect's length) and a raw value. Owned by the
/// parameter; its address stays the same until the host removes the key.
class KELTO_PLATFORM_API hfxParamKey {
 public:
  double GetTime() const;
  /// True for the key that the user is editing; a parameter has one active key at the most.
  bool IsActive() const;
  /// Address of the raw value, in the layout of the parameter's bound field, aligned to 8 bytes.
  const void* GetValue() const;
  /// Overwrites the first `size` bytes of the raw value; a `size` beyond the value's own is refused
  /// (false) and changes nothing.
  bool SetValue(const void* value, int32_t size);

 private:
  friend class hfxParameter;
  friend struct hfxHostAccess;
  hfxParamKey() = default;
  ~hfxParamKey() = default;
  double time_ = 0.0;
  bool active_ = false;
  int32_t size_ = 0;
  alignas(8) unsigned char value_[24] = {};
};

/// Asked for a parameter's value: writes `size` bytes to `result` (aligned to 8) for `time` (0..1)
/// and returns true, or returns false to leave the host's own interpolation in force. `reserved` is
/// 0. The host calls it whenever it needs the value, before any render and without keys too.
typedef bool (*hfxInterpolator)(hfxParameter* parameter, double time, void* result, int32_t size,
                                int32_t reserved);

/// Base of all parameters. Made by its class's `New`, owned by the instance that it is added to.
///
/// Each parameter is bound to a field of its instance. While it has no keys the field is the value:
/// what it held at `New` is the default, and the host writes into it what the user sets. With keys
/// the keys are the value, and the host writes the value at the frame's time into the field before
/// each render. A key's raw value has the field's layout:
///
///   class         bytes  layout                        between two keys
///   hfxPList          4  int32_t, index of the entry   holds the earlier key's
///   hfxPBoolean       1  one byte, 0 or 1              holds the earlier key's
///   hfxPNumber        8  double                        linear, or the interpolator's
///   hfxPPoint2D      16  two doubles, x then y         linear, or the interpolator's
///   hfxPColorRGB     24  three doubles, r, g, b        linear, or the interpolator's
///
/// Before the first key and after the last, the nearest key's value holds. A `New` that is handed
/// no field, or one of another size than its class's, makes a parameter with a value of its own
/// (zeros at first) and says so on the console; the field is then never touched.
class KELTO_PLATFORM_API hfxParameter {
 public:
  /// Also takes the parameter off its instance, should a module delete one before its time.
  virtual ~hfxParameter();
  hfxParameter(const hfxParameter&) = delete;
  hfxParameter& operator=(const hfxParameter&) = delete;

  const char* GetKeyName() const;      ///< the internal key, such as "size"
  const char* GetDisplayName() const;  ///< what a parameter panel shows; may be empty

  int32_t GetNumKeys() const;
  /// Key `index` in order of time, or null beyond the ends.
  hfxParamKey* GetKey(int32_t index) const;
  /// Index of the key at exactly `time`, or -1 when there is none.
  int32_t GetKeyIndex(double time) const;

  /// Has `interpolator` asked for the value from now on; null restores the host's own rules.
  void SetInterpolator(hfxInterpolator interpolator);
  /// A pointer of the module's own, never read by the host; null at first.
  void SetUserData(void* data);
  void* GetUserData() const;

 protected:
  hfxParameter(const char* displayName, const char* key, void* field, int32_t size);

 private:
  friend struct hfxHostAccess;
  struct Impl;
  Impl* impl_;
};

/// A folder in the parameter panel; holds no value and no keys.
class KELTO_PLATFORM_API hfxPGroup : public hfxParameter {
 public:
  /// `flag` is kept for the panel; this host gives it no meaning of its own.
  static hfxPGroup* New(const char* displayName, const char* key, int32_t flag);
  ~hfxPGroup() override;
  int32_t GetFlag() const { return flag_; }

 private:
  hfxPGroup(const char* displayName, const char* key, int32_t flag);
  int32_t flag_;
};

/// A choice from a list of texts; the value is the 0-based index (int32_t). Indexes are not held
/// within the list, so a module meets values that later versions of it have written.
class KELTO_PLATFORM_API hfxPList : public hfxParameter {
 public:
  /// `entries` is a null-terminated array that outlives the parameter; null is an empty list.
  /// `listType` is kept for the panel.
  static hfxPList* New(const char* displayName, const char* key, void* field, int32_t size,
                       const char* const* entries, int32_t listType);
  ~hfxPList() override;
  /// Value at `time`: that of the last key at or before it (the first key's before the first), or
  /// the bound field's without keys.
  int32_t GetValue(double time) const;
  /// Sets the key at exactly `time`; without keys sets the bound field. Elsewhere does nothing.
  void SetValue(double time, int32_t value);
  int32_t GetNumEntries() const;
  const char* GetEntry(int32_t index) const;  ///< null beyond the ends
  int32_t GetListType() const { return listType_; }

 private:
  hfxPList(const char* displayName, const char* key, void* field, int32_t size,
           const char* const* entries, int32_t listType);
  const char* const* entries_;
  int32_t listType_;
};

/// A switch; the value is one byte, 0 or 1 (others read as true). Value rules as for hfxPList.
class KELTO_PLATFORM_API hfxPBoolean : public hfxParameter {
 public:
  static hfxPBoolean* New(const char* displayName, const char* key, void* field, int32_t size);
  ~hfxPBoolean() override;
  bool GetValue(double time) const;
  void SetValue(double time, bool value);

 private:
  hfxPBoolean(const char* displayName, const char* key, void* field, int32_t size);
};

/// A number (double), interpolated between keys.
class KELTO_PLATFORM_API hfxPNumber : public hfxParameter {
 public:
  /// `lower` and `upper` bound what a user may enter (a panel's business: values set through the
  /// host are not held within them), `step` is the panel's increment. `numberType` and `flag` are
  /// kept for the panel.
  static hfxPNumber* New(const char* displayName, const char* key, void* field, int32_t size,
                         double lower, double upper, double step, int32_t numberType, int32_t flag);
  ~hfxPNumber() override;
  double GetLower() const { return lower_; }
  double GetUpper() const { return upper_; }
  double GetStep() const { return step_; }
  int32_t GetNumberType() const { return numberType_; }
  int32_t GetFlag() const { return flag_; }

 private:
  hfxPNumber(const char* displayName, const char* key, void* field, int32_t size, double lower,
             double upper, double step, int32_t numberType, int32_t flag);
  double lower_, upper_, step_;
  int32_t numberType_, flag_;
};

/// A point (two doubles, x then y), interpolated between keys.
class KELTO_PLATFORM_API hfxPPoint2D : public hfxParameter {
 public:
  static hfxPPoint2D* New(const char* displayName, const char* key, void* field, int32_t size);
  ~hfxPPoint2D() override;

 private:
  hfxPPoint2D(const char* displayName, const char* key, void* field, int32_t size);
};

/// A colour (three doubles red, green, blue in 0..1), interpolated between keys.
class KELTO_PLATFORM_API hfxPColorRGB : public hfxParameter {
 public:
  static hfxPColorRGB* New(const char* displayName, const char* key, void* field, int32_t size);
  ~hfxPColorRGB() override;
  /// Colour at `time`, linear between keys; at a key's exact time the key's own bits. Without keys
  /// the bound field's.
  void GetValue(double time, double rgb[3]) const;
  /// Sets the key at exactly `time`; without keys sets the bound field. Elsewhere does nothing.
  void SetValue(double time, const double rgb[3]);

 private:
  hfxPColorRGB(const char* displayName, const char* key, void* field, int32_t size);
};

/// One use of an effect on the host's timeline.
///
/// An operation that a module does not override behaves as said at it.
class KELTO_PLATFORM_API hfxInstance_v1 {
 public:
  hfxInstance_v1();
  hfxInstance_v1(const hfxInstance_v1&) = delete;
  hfxInstance_v1& operator=(const hfxInstance_v1&) = delete;

  // What the host calls, in the order of its slots. Integer results: zero is failure.

  /// Deletes the parameters, last made first. They are bound to fields of the derived class that
  /// are gone by then, so nothing reads or writes a field from here on.
  virtual ~hfxInstance_v1();
  /// Renders the current frame or field into output 0. `region` holds the pixels wanted. Not
  /// overridden: false.
  virtual bool RenderFrame(const hfxRect& region);
  /// Declares the parameters; called once. Not overridden: true, an effect without any.
  virtual bool CreateParameters();
  /// False when the output would equal the input. Not overridden: true.
  virtual bool HasEffect();
  /// True when input and output may be the same image. Not overridden: false.
  virtual bool InPlace();
  /// Opens a render; the play mode and the host's state are settled. Not overridden: 1.
  virtual int32_t BeginRender();
  /// Closes the render that BeginRender opened. Not overridden: 1.
  virtual int32_t EndRender();
  /// Lets the user pick the instance's image; false when cancelled. Not overridden: false.
  virtual bool ChooseImage();
  /// Size of input `index` in pixels; either pointer may be null. Not overridden: that of the image
  /// lent, or false, with nothing written, when there is none.
  virtual bool GetInputSize(int32_t index, int32_t* width, int32_t* height);
  virtual bool GetOutputSize(int32_t index, int32_t* width, int32_t* height);  ///< as for inputs
  /// Takes over another instance of the same effect. Not overridden: copies the instance data (and
  /// marks it modified), and for every parameter with a namesake of the same class in `from` the
  /// value without keys and all keys with their activity. Interpolators, user data, images and
  /// render state stay this instance's own. False for null; copying oneself changes nothing.
  virtual bool CopyInstance(const hfxInstance_v1* from);

  // What a module calls.

  /// The image at `index`, or null when the host gives none.
  hfxImage* GetInput(int32_t index) const;
  hfxImage* GetOutput(int32_t index) const;

  /// The record saved with the project and its length (`length` may be null), or null and length 0
  /// when there is none. The host keeps a zero byte behind the record, not counted in the length.
  /// The address holds until the next SetInstanceData.
  const void* GetInstanceData(int32_t* length) const;
  /// Replaces the record by a copy of `length` bytes at `record`, which may lie in the old record.
  /// A null `record` takes the record away; a negative `length` changes nothing.
  void SetInstanceData(const void* record, int32_t length);
  /// Reports whether the record differs from what the project holds.
  void SetInstanceDataModified(bool modified);

  /// Adds a parameter under `group` (null, or a group that this instance does not list: top level)
  /// and takes ownership. A second parameter of the same key is taken but neither listed nor found,
  /// so that the module's pointer stays good. Null, and a parameter that has an instance already,
  /// are ignored.
  void AddParameter(hfxParameter* parameter, hfxPGroup* group);
  /// The parameter with the internal key `key`, or null.
  hfxParameter* FindParameter(const char* key) const;

  int32_t GetCurrentFrame() const;  ///< 0-based
  int32_t GetTotalFrames() const;   ///< frames over the effect's length; 1 for a still
  int32_t GetField() const;  ///< 0: first field of the frame in time (or whole frame), 1: second
  int32_t GetVideoType() const;     ///< hfxVideoType
  int32_t GetFieldMode() const;     ///< hfxFieldMode
  bool IsTopField() const;          ///< the field rendered holds the frame's even rows (0, 2, ...)
  double GetDisplayAspect() const;  ///< width over height of the whole frame as shown
  double GetQuality() const;        ///< 1.0 full; 0.5 and less asks for speed
  bool Aborted() const;             ///< the user cancelled the render; may turn true during one

 private:
  friend struct hfxHostAccess;
  struct Impl;
  Impl* impl_;
};

/// Called after the user changed parameters of an instance; false reports failure.
typedef bool (*hfxUpdateParamsCallback)(hfxInstance_v1* instance);

/// Describes an effect and makes its instances. The host owns it and destroys it, after its
/// instances, through the virtual destructor.
class KELTO_PLATFORM_API hfxModel_v1 {
 public:
  hfxModel_v1();
  hfxModel_v1(const hfxModel_v1&) = delete;
  hfxModel_v1& operator=(const hfxModel_v1&) = delete;

  // What the host calls, in the order of its slots.

  virtual ~hfxModel_v1();
  /// Says what the effect is, through the Set operations below. Not overridden: false.
  virtual bool DescribeEffect();
  /// A new instance, handed to the host, or null when memory runs out. Not overridden: null.
  virtual hfxInstance_v1* CreateInstance();
  /// Says what the effect takes and gives, through the Add operations below. Not overridden: true,
  /// an effect without connections.
  virtual bool DeclareConnections();
  /// Ends an instance that CreateInstance made. Not overridden: deletes it; null is ignored.
  virtual void DeleteInstance(hfxInstance_v1* instance);
  virtual const char* GetInitString();               ///< not overridden: the empty text
  virtual bool QueryCapability(int32_t capability);  ///< not overridden: false
  virtual bool UseHardwareList();                    ///< not overridden: false
  virtual bool UseLibraryList();                     ///< not overridden: false

  // What a module calls from DescribeEffect. Texts are copied.
  void SetType(int32_t type);  ///< 0: an effect
  void SetName(const char* name);
  void SetPluginVersion(float version);
  void SetVendor(const char* vendor);
  void SetCategory(const char* category);  ///< the folder of the host's effect list

  // What a module calls from DeclareConnections. Texts are copied.

  /// A pixel format that the effect takes, best first: `depth` in bits a channel; `name` may be
  /// null.
  void AddFormat(int32_t colorspace, int32_t depth, const char* name, int32_t imgFormat);
  /// Input `index` as the host's panel names it; `dataType` 0 is video.
  void AddInput(int32_t index, const char* displayName, const char* key, int32_t dataType);
  void AddOutput(int32_t index, const char* displayName, const char* key, int32_t dataType);
  void SetUpdateParamsCallback(hfxUpdateParamsCallback callback);  ///< null: none

 private:
  friend struct hfxHostAccess;
  struct Impl;
  Impl* impl_;
};

// Entry points that a module exports under these undecorated names.
extern "C" {
/// First call after loading; zero is failure, and the module is unloaded without a shut-down.
typedef int32_t (*hfxStartUp_v1_t)();
/// Last call before unloading.
typedef void (*hfxShutDown_v1_t)();
typedef int32_t (*hfxNumModels_v1_t)();
/// Models are counted from 1; null for an unknown number or when memory runs out.
typedef hfxModel_v1* (*hfxNewModel_v1_t)(uint16_t number);
/// A drawing of the module's own for the host's viewer, or null when it has none.
typedef void* (*hfxNewOverlay_v1_t)();
/// Answers `attribute` into `result` and returns 1, or returns 0 for what it does not answer.
/// `version` is that of the interface: 1.
typedef int32_t (*hfxGetModelAttributes_v1ext_t)(uint16_t version, int32_t attribute, void* result);
/// `value` is pointer-sized: attribute 0 carries a hfxHostStateCallback, or 0 to take it back.
typedef int32_t (*hfxSetAttribute_t)(int32_t reserved, int32_t attribute, intptr_t value,
                                     int32_t* result);
/// The host's state while it renders; 1 asks instances to give up their memory at EndRender.
typedef int32_t (*hfxHostStateCallback)();
}
