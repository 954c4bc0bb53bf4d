// Memory set aside for what cannot do without.
#pragma once

#include <cstddef>

namespace kelto::host {

/// While it lives, the first allocation that fails gets this memory instead. JSON values take
/// memory as they are given back, and end the process when there is none. Any number may live at a
/// time, in any threads, and share what the last one to begin has set aside.
class MemoryReserve {
 public:
  /// For a document of `bytes`. Throws std::bad_alloc.
  explicit MemoryReserve(size_t bytes);
  ~MemoryReserve();
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;
};

}  // namespace kelto::host
