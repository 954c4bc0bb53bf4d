// Paths as other machines on the network reach them.
#pragma once

#include <cstdint>

namespace kelto {

/// Writes the network form of `path` to `output` and returns true: the universal name of a file on
/// a mapped drive, or the name through one of this machine's shares. False, with `output`
/// untouched, for a path that is a network path already or that no share covers, and when the
/// system cannot list its shares or name itself. At most `capacity` - 1 characters are written,
/// then zeros up to `capacity`. `output` may be `path`.
///
/// Shares are tried in the order that the system lists them, hidden ones (a name ending with a
/// dollar sign) left out; the first whose local path starts the given one, letter case apart, is
/// taken.
bool ResolveNetworkPath(const char* path, char* output, uint32_t capacity);

}  // namespace kelto
