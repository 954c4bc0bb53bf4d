// What libraries print on the error stream by themselves. Names and texts of files are in it, which
// a terminal must not obey, and programs that read events expect none of it: it is held in memory,
// and comes out as the command's own messages.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace kelto::host {

/// The stream that messages go to: the error stream that the command was started with.
std::FILE* ErrorStream();

/// From now on what libraries of this process print is held until PrintLibraryText. Should a fatal
/// signal end the process before, it is printed then, what is not ASCII as question marks. Does
/// nothing on Windows, nor in builds with sanitizers, whose reports come the same way.
void HoldLibraryText();

/// Prints what libraries of this process have printed since the last call as messages, a line each
/// with `name`, a file's or empty, in front; lines that were printed before are left out.
void PrintLibraryText(const std::string& name);

/// Memory that is to hold what the libraries of a process print which begins as a copy of this one.
/// Nothing is held unless HoldLibraryText has been called.
class LibraryText {
 public:
  LibraryText();
  ~LibraryText();
  LibraryText(const LibraryText&) = delete;
  LibraryText& operator=(const LibraryText&) = delete;

  /// In the new process: makes this its error stream, and leaves it no other.
  void Attach();
  /// Lines that came since this was called last, in this process or in the new one. At most 64 KiB
  /// of them in all; what comes after that is left out, which the last line says.
  std::vector<std::string> Take();

 private:
  struct Memory;
  friend void HoldLibraryText();
  friend void PrintLibraryText(const std::string& name);
  std::unique_ptr<Memory> memory_;
};

}  // namespace kelto::host
