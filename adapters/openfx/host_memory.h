// Frames beside the host's own, in memory that the host knows of.
#pragma once

#include <cstddef>

#include "platform/openfx.h"

namespace kelto::openfx {

/// Memory for a frame, not cleared: from the host where it hands out memory, since it counts that
/// and lets go of its caches first; else the process's.
class HostMemory {
 public:
  /// Throws std::bad_alloc.
  HostMemory(ofx::Effect effect, size_t bytes);
  ~HostMemory();
  HostMemory(const HostMemory&) = delete;
  HostMemory& operator=(const HostMemory&) = delete;

  /// Aligned to 64 bytes.
  void* data() const { return data_; }

 private:
  void* memory_ = nullptr;
  void* data_ = nullptr;
  bool hosts_ = false;
};

}  // namespace kelto::openfx
