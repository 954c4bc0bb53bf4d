// What a picture's file needs of the system, which every system calls by other names.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "runtime/stills/still_error.h"

namespace kelto::stills {

/// A regular file that is open for reading, and its size in bytes.
struct Descriptor {
  int number = -1;
  uint64_t size = 0;
};

/// Throws StillError, fnfErr, for what is not there, not readable or not a regular file.
Descriptor OpenRegularFile(const std::string& path);
void CloseDescriptor(int number);
/// A stream of its own over a duplicate of `number`; null, with errno set, when there is none to be
/// had. Both share one position in the file.
std::FILE* NewStream(int number);
/// From the file's start, in bytes. False with errno set.
bool SeekStream(std::FILE* stream, uint64_t position);
uint64_t StreamPosition(std::FILE* stream);

/// The same words for a failure to open, `error` being errno's, on every system.
StillError OpenFailure(int error);

}  // namespace kelto::stills
