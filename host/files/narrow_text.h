// Paths as texts, which the command line, the effect's interface and the C library take.
#pragma once

#include <filesystem>
#include <string>

namespace kelto::host {

/// Lets paths be read from texts in the code page of the system, which is that of the command line
/// and of every file function that takes a text. To be called once, before anything reads a path.
/// Does nothing where texts are bytes that nobody reads.
void ReadPathsAsTheSystemDoes();

/// The text by which the system, and a path made of it, find `path` again. On Windows
/// path::string() is none: it gives UTF-8 whatever the code page is.
std::string NarrowText(const std::filesystem::path& path);

}  // namespace kelto::host
