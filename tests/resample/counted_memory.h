// Counts what the test program takes from the heap.
#pragma once

#include <cstddef>

namespace kelto::test {

/// Bytes asked of operator new since the program started, freed ones included.
size_t BytesAllocated();

}  // namespace kelto::test
