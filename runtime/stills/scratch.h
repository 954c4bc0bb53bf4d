// Memory that a decoder needs beside the caller's buffer.
#pragma once

#include <cstdint>
#include <memory>

namespace kelto::stills {

/// Throws StillError above kMaxScratchBytes, before anything is allocated.
void CheckScratch(uint64_t bytes);
/// Checked and not cleared.
std::unique_ptr<uint8_t[]> AllocateScratch(uint64_t bytes);

}  // namespace kelto::stills
