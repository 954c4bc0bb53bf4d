// The image library's error status at the end of an operation.
#pragma once

#include "platform/ipl.h"

namespace kelto {

/// Clears the image library's error status at the end of a load or reduction, however it ends, so
/// that one failure does not make the next operation fail.
struct StatusReset {
  StatusReset() = default;
  StatusReset(const StatusReset&) = delete;
  StatusReset& operator=(const StatusReset&) = delete;
  ~StatusReset() { iplSetErrStatus(IPL_StsOk); }
};

}  // namespace kelto
