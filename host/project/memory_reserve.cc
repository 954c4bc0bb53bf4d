#include "host/project/memory_reserve.h"

#include <atomic>
#include <mutex>
#include <new>

namespace kelto::host {
namespace {

constexpr size_t kLeast = size_t{1} << 20;
/// Bytes of values and messages to a byte of text, at least.
constexpr size_t kPerByte = 16;

/// What waits to be given away, for all reserves that live.
std::atomic<void*> kept = nullptr;
std::atomic<std::new_handler> before = nullptr;

std::mutex guard;
int living = 0;  // under the guard

/// Called by operator new, which then tries again.
void GiveAway() {
  if (void* memory = kept.exchange(nullptr); memory != nullptr) {
    ::operator delete(memory);
  } else if (const std::new_handler other = before; other != nullptr) {
    other();
  } else {
    throw std::bad_alloc();
  }
}

}  // namespace

MemoryReserve::MemoryReserve(size_t bytes) {
  void* const memory = ::operator new(kLeast + kPerByte * bytes);
  const std::lock_guard lock(guard);
  // The handler is the process's: the first puts it in place, the last takes it away.
  if (living++ == 0) before = std::set_new_handler(GiveAway);
  ::operator delete(kept.exchange(memory));
}

MemoryReserve::~MemoryReserve() {
  const std::lock_guard lock(guard);
  if (--living != 0) return;
  std::set_new_handler(before);
  ::operator delete(kept.exchange(nullptr));
}

}  // namespace kelto::host
