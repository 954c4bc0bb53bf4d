#include "host/project/memory_reserve.h"

#include <atomic>
#include <new>

namespace kelto::host {
namespace {

constexpr size_t kLeast = size_t{1} << 20;
/// Bytes of values and messages to a byte of text, at least.
constexpr size_t kPerByte = 16;

std::atomic<void*> kept = nullptr;
std::new_handler before = nullptr;

/// Called by operator new, which then tries again.
void GiveAway() {
  if (void* memory = kept.exchange(nullptr); memory != nullptr) {
    ::operator delete(memory);
  } else if (before != nullptr) {
    before();
  } else {
    throw std::bad_alloc();
  }
}

}  // namespace

MemoryReserve::MemoryReserve(size_t bytes) {
  kept = ::operator new(kLeast + kPerByte * bytes);
  before = std::set_new_handler(GiveAway);
}

MemoryReserve::~MemoryReserve() {
  std::set_new_handler(before);
  ::operator delete(kept.exchange(nullptr));
}

}  // namespace kelto::host
