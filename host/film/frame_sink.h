// Where finished frames go.
#pragma once

#include "host/base/film_format.h"

namespace kelto::host {

/// A film being written. Destroying a sink before Finish leaves nothing under the film's name.
/// Operations throw Error.
class FrameSink {
 public:
  virtual ~FrameSink() = default;
  /// Appends a frame, in the layout and size that the sink was opened for.
  virtual void Write(const FrameView& frame) = 0;
  /// Ends the film and gives it its name. Called once, last.
  virtual void Finish() = 0;

 protected:
  FrameSink() = default;
  FrameSink(const FrameSink&) = delete;
  FrameSink& operator=(const FrameSink&) = delete;
};

}  // namespace kelto::host
