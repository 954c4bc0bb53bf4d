// A project text from anywhere, as fuzzers and tests feed it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelto::test {

/// Reads the bytes as a project: it must be refused in one line, or be a project that is the same
/// after it was saved and read again. Ends the process when neither is so. Returns 0.
int CheckProjectText(const uint8_t* bytes, size_t size);

}  // namespace kelto::test
