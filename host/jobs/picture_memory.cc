#include "host/jobs/picture_memory.h"

#include <algorithm>
#include <string>

#include "host/terminal/terminal.h"

#if defined(__linux__)
#include <unistd.h>
#endif

namespace kelto::host {
namespace {

constexpr uint64_t kLeast = uint64_t{4} << 30;
constexpr uint64_t kShare = 4;

std::string InMiB(uint64_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

}  // namespace

uint64_t PictureMemory() {
#if defined(__linux__)
  const long pages = sysconf(_SC_PHYS_PAGES), size = sysconf(_SC_PAGESIZE);
  if (pages > 0 && size > 0) {
    return std::max(kLeast, static_cast<uint64_t>(pages) * static_cast<uint64_t>(size) / kShare);
  }
#endif
  return kLeast;
}

int32_t WorkersFor(const Photo& photo, int32_t workers, uint64_t memory) {
  const uint64_t fit = std::max<uint64_t>(1, memory / std::max<uint64_t>(1, photo.memory));
  if (fit >= static_cast<uint64_t>(workers)) return workers;
  PrintMessage(photo.given + ": takes " + InMiB(photo.memory) + " in each process; " +
               std::to_string(fit) + " of " + std::to_string(workers) +
               " stay within the limit of " + InMiB(memory));
  return static_cast<int32_t>(fit);
}

}  // namespace kelto::host
