// Loading a shared library: the one place that knows how each platform does it.
#pragma once

#include <filesystem>
#include <string>

namespace hfx {

/// Loads a library with its names kept to itself and all of its references resolved at once. Null
/// on failure, with the system's own words in `error`.
void* OpenLibrary(const std::filesystem::path& path, std::string* error);
/// Address of an exported name, or null.
void* FindSymbol(void* library, const char* name);
void CloseLibrary(void* library);

}  // namespace hfx
