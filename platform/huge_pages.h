// Large blocks of memory that are written once from end to end, as pictures are.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace kelto {

/// Asks for huge pages, which spare a large picture tens of thousands of page faults. A hint only;
/// nothing depends on it.
inline void AdviseHugePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  constexpr size_t kPage = 4096, kWorthwhile = size_t{8} << 20;
  if (bytes < kWorthwhile) return;
  const size_t skipped = (kPage - reinterpret_cast<uintptr_t>(memory) % kPage) % kPage;
  madvise(static_cast<char*>(memory) + skipped, (bytes - skipped) / kPage * kPage, MADV_HUGEPAGE);
#endif
}

}  // namespace kelto
