// A host of the open effects interface that puts up with nothing: what the interface does not
// promise is refused and noted (TheFaults). It makes one effect, renders what tests ask for, and
// checks that parameters are read at the frame's time alone, images are given back, and no byte
// outside an image is written.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "tests/openfx/property_set.h"

namespace kelto::test {

/// Pixels of a clip, with guards around them.
struct HostImage {
  ofx::RectI bounds{}, frame{};
  std::string depth = ofx::value::kByte, components = ofx::value::kRgba,
              alpha = ofx::value::kPremultiplied;
  int padding = 0;       ///< bytes between rows
  bool topDown = false;  ///< the rows' bytes are negative
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
  double scaleX = 1.0, scaleY = 1.0;
  HostImage* output = nullptr;
  HostImage* source = nullptr;  ///< null: not connected
};

struct HostLacks {
  std::string suite{};            ///< a suite that it does not have
  bool messageFunctions = false;  ///< the suite is there, its entries are null
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
  bool instance_ = false, loaded_ = false;
};

/// The built plug-in, loaded from its bundle.
const ofx::Plugin& BuiltPlugin();

}  // namespace kelto::test
