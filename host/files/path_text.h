// Paths as texts, and the system calls that take them.
//
// Inside the command a path is a text: whatever bytes the system uses, which on Windows, whose own
// calls take 16-bit units, is UTF-8. This is the one place where the two forms meet: a
// std::filesystem::path made of a text by any other means would be read in the code page of the
// system, and find another file; and functions of std::filesystem that look at files know no long
// names there.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace kelto::host {

/// The path of a text. Throws Error when the text is not UTF-8 on Windows.
std::filesystem::path PathOf(const std::string& text);

/// The text of a path.
std::string TextOf(const std::filesystem::path& path);

/// The form of a path that the system's calls take: on Windows one that is too long for most of
/// them begins with "\\?\", which lifts the limit. For calls alone, since such a path is not to be
/// joined or compared with others. The functions below see to it themselves.
std::filesystem::path ForCalls(const std::filesystem::path& path);

/// The last part of the path that `text` is, as a text: "b.jpg" of "a/b.jpg".
std::string NameOf(const std::string& text);

/// The path in full, without "." and "name/.." in it; unchanged when the system cannot say.
std::string AbsoluteText(const std::string& text);

/// Opens a file like std::fopen, and sets errno like it.
std::FILE* OpenFile(const std::filesystem::path& path, const char* mode);

/// Makes a file, which must not exist, and opens it to be written and read. Null, with errno, on
/// failure.
std::FILE* MakeFile(const std::filesystem::path& path);

/// What is at a path, or behind the links that it is.
std::filesystem::file_status StatusOf(const std::filesystem::path& path);

/// What is in a folder, as paths that begin with `folder`, in no order.
std::vector<std::filesystem::path> EntriesOf(const std::filesystem::path& folder,
                                             std::error_code& error);

/// Removes a file if it is there.
void RemoveFile(const std::filesystem::path& path);

/// What the system says of an error, in the letters of the command's other messages.
std::string ReasonOf(const std::error_code& error);

}  // namespace kelto::host
