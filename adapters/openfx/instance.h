// One instance of the effect in a host.
#pragma once

#include <array>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/frei0r/parameters.h"
#include "framing/view.h"
#include "platform/openfx.h"

namespace kelto::openfx {

class Instance {
 public:
  /// Looks up parameters and clips. Throws Status where the host lacks one that was described.
  explicit Instance(ofx::Effect effect);

  ofx::Status Render(ofx::Properties inArgs);
  /// Whether the input is shown as it is: without a photograph there is nothing to draw.
  ofx::Status IsIdentity(ofx::Properties inArgs, ofx::Properties outArgs) const;
  ofx::Status RegionOfDefinition(ofx::Properties outArgs) const;
  static ofx::Status ClipPreferences(ofx::Properties outArgs);
  /// The view at a time and the frame that zoom 1 shows, in the host's canonical coordinates. False
  /// where there is no photograph, or the effect outlines the view itself. Throws std::bad_alloc.
  bool ViewAt(ofx::Time time, View& view, ofx::RectD& frame) const;

 private:
  /// The parameters' values at a time, and never at another one.
  frei0r::Values ValuesAt(ofx::Time time) const;
  bool HasSource() const;
  /// Where the project's frames lie; false where the host does not say.
  bool ProjectFrame(ofx::RectD& frame) const;
  void ShowOnce(const std::string& fault);

  ofx::Effect effect_;
  ofx::Properties properties_ = nullptr;
  ofx::Clip source_ = nullptr, output_ = nullptr;
  ofx::Properties sourceProperties_ = nullptr;
  std::vector<ofx::ParameterHandle> parameters_;  ///< in the order of the controls
  std::mutex mutex_;
  std::string shown_;  ///< the fault that was shown last
};

}  // namespace kelto::openfx
