#include "tests/resample/counted_memory.h"

#include <cstdlib>
#include <new>

namespace {

size_t g_allocated = 0;

}  // namespace

void* operator new(size_t size) {
  g_allocated += size;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace kelto::test {

size_t BytesAllocated() { return g_allocated; }

}  // namespace kelto::test
