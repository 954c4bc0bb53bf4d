// A host of the open effects interface that puts up with nothing: what the interface does not
// promise is refused and noted (TheFaults). It makes one effect, renders what tests ask for, and
// checks that parameters are read at the frame's time alone, images are given back, and no byte
// outside an image is written.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/openfx/property_set.h"

namespace kelto::test {

/// Pixels of a clip, with guards around them.
struct HostImage {
  ofx::RectI bounds{}, frame{};
  std::string depth = ofx::value::kByte, components = ofx::value::kRgba,
              alpha = ofx::value::kPremultiplied, field = ofx::value::kFieldNone;
  bool halfHeight = false;  ///< has the rows of its field alone
  int padding = 0;          ///< bytes between rows
  bool topDown = false;     ///< the rows' bytes are negative
  double pixelAspect = 1.0;
  std::vector<uint8_t> memory{};

  size_t PixelBytes() const;
  int RowBytes() const;  ///< signed
  uint8_t* At(int x, int y);
  /// Makes the memory, filled with a pattern.
  void Make();
  /// Whether what lies between and around the rows is as it was made.
  bool GuardsHold() const;
  /// A sample of a pixel, 1 being full scale.
  double Sample(int x, int y, int channel);
};

struct HostParameter {
  std::unique_ptr<PropertySet> properties;
  std::string type;
  std::function<double(double)> number{};  ///< of a double, by time
  int choice = 0;
  std::string text{};
};

struct Render {
  double time = 0.0;
  std::optional<ofx::RectI> window{};  ///< all of the output without
  bool withScaleAndField = true;       ///< thumbnails come without
  std::string field = ofx::value::kFieldNone;
  double scaleX = 1.0, scaleY = 1.0;
  HostImage* output = nullptr;
  HostImage* source = nullptr;  ///< null: not connected
};

struct HostLacks {
  std::string suite{};     ///< a suite that it does not have
  bool functions = false;  ///< suites that it may lack are there, their entries are null
};

class StrictHost {
 public:
  explicit StrictHost(const ofx::Plugin& plugin, HostLacks lacks = {});
  ~StrictHost();
  StrictHost(const StrictHost&) = delete;

  /// The status of load, or of the first action that failed after it.
  ofx::Status Start(const std::string& context);
  ofx::Status Create();
  ofx::Status Destroy();
  ofx::Status Call(const char* action, PropertySet* in = nullptr, PropertySet* out = nullptr);
  ofx::Status Run(const Render& render);
  /// The name of the clip that a frame is identical to; empty without.
  std::string Identity(double time, bool connected);
  /// The region of definition that the plug-in answers; nothing for the default.
  std::optional<ofx::RectD> Region(bool connected);

  HostParameter& parameter(const std::string& name) { return parameters_.at(name); }
  std::map<std::string, HostParameter>& parameters() { return parameters_; }
  PropertySet& effect() { return effect_; }
  bool hasClip(const std::string& name) const { return clips_.contains(name); }
  std::vector<std::string> messages() const;
  bool hasOverlay() const { return lacks_.suite != ofx::kDrawSuite; }
  /// Has the overlay drawn at a time; its corners, or none where it draws nothing.
  std::vector<ofx::PointD> Overlay(double time, bool withContext = true);

  /// Has the n-th allocation from the host's memory fail, from 1 on; 0: none. Counts anew.
  void FailAllocation(int nth);
  int allocations() const { return allocations_; }                            ///< since then
  int64_t allocated() const { return static_cast<int64_t>(memory_.size()); }  ///< and not freed

 private:
  struct Functions;
  struct ClipRecord {
    std::unique_ptr<PropertySet> properties;
  };

  const ofx::Plugin& plugin_;
  HostLacks lacks_;
  ofx::Host host_{};
  PropertySet hostProperties_{"host"}, effect_{"effect"}, parameterSet_{"parameter set"};
  std::map<std::string, ClipRecord> clips_;
  std::map<std::string, HostParameter> parameters_;
  std::vector<std::string> messages_;
  mutable std::mutex mutex_;
  int images_ = 0;  ///< that have not been given back
  std::set<void*> memory_;
  int allocations_ = 0, failing_ = 0;
  std::vector<ofx::PointD> overlay_;
  bool instance_ = false, loaded_ = false;
};

/// The built plug-in, loaded from its bundle, or the one that KELTO_OPENFX_TESTED names.
const ofx::Plugin& BuiltPlugin();

}  // namespace kelto::test
