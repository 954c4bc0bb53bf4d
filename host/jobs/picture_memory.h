// How much memory the pictures of a command may take at a time.
#pragma once

#include <cstdint>

#include "host/effect/photo.h"

namespace kelto::host {

/// Bytes that the pictures of all processes of a command may take together, with all that loading
/// them takes: 4 GiB, or a quarter of the machine's memory where that is more.
uint64_t PictureMemory();

/// How many of `workers` processes, of which each loads `photo`, may do so within `memory`. Prints
/// a message where not all of them may. At least 1: a picture alone stays within 4 GiB.
int32_t WorkersFor(const Photo& photo, int32_t workers, uint64_t memory = PictureMemory());

}  // namespace kelto::host
