#include "adapters/openfx/host_memory.h"

#include <cstdint>
#include <memory>
#include <new>

#include "adapters/openfx/suites.h"

namespace kelto::openfx {
namespace {

constexpr size_t kAlignment = 64;

}  // namespace

HostMemory::HostMemory(ofx::Effect effect, size_t bytes) {
  size_t space = bytes + kAlignment;
  if (space < bytes) throw std::bad_alloc();
  const ofx::MemorySuite* suite = TheSuites().memory;
  hosts_ = suite != nullptr && suite->allocate != nullptr && suite->free != nullptr;
  if (!hosts_) {
    memory_ = ::operator new(space);
  } else if (suite->allocate(effect, space, &memory_) != ofx::kOk || memory_ == nullptr) {
    throw std::bad_alloc();
  }
  data_ = memory_;
  std::align(kAlignment, bytes, data_, space);
}

HostMemory::~HostMemory() {
  if (hosts_) {
    TheSuites().memory->free(memory_);
  } else {
    ::operator delete(memory_);
  }
}

}  // namespace kelto::openfx
