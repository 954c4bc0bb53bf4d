#include "runtime/stills/scratch.h"

#include "runtime/stills/limits.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {

void CheckScratch(uint64_t bytes) {
  if (bytes <= kMaxScratchBytes) return;
  throw StillError(codecBadDataErr, "decoding needs " + std::to_string(bytes >> 20) +
                                        " MiB of working memory; the limit is " +
                                        std::to_string(kMaxScratchBytes >> 20) + " MiB");
}

std::unique_ptr<uint8_t[]> AllocateScratch(uint64_t bytes) {
  CheckScratch(bytes);
  return std::make_unique_for_overwrite<uint8_t[]>(bytes);
}

}  // namespace kelto::stills
