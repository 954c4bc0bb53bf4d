#include "host/files/output_file.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <random>
#include <system_error>

#include "host/base/error.h"
#include "host/files/narrow_text.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <poll.h>
#include <unistd.h>

#include "host/terminal/interrupt.h"
#endif

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

std::FILE* StandardOutput() {
#if defined(_WIN32)
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  return stdout;
}

/// The file that a write under `path` should replace: behind all symbolic links. Nothing when they
/// lead in a circle.
std::optional<fs::path> BehindLinks(fs::path path) {
  std::error_code error;
  // As many as the system itself follows.
  for (int i = 0; i < 40; ++i) {
    if (!fs::is_symlink(path, error)) return path;
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return std::nullopt;
}

fs::path TemporaryBeside(const fs::path& path) {
  static constexpr char kLetters[] = "0123456789abcdefghijklmnopqrstuv";
  std::random_device random;
  std::string mark;
  for (int i = 0; i < 8; ++i) mark += kLetters[random() % 32];
  // Cut, since the mark must not make a name too long that was short enough.
  const std::string stem = NarrowText(path.filename()).substr(0, 200);
  return path.parent_path() / ("." + stem + "." + mark + ".part");
}

}  // namespace

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a.empty() || b.empty() || a == kStandardOutput || b == kStandardOutput) return false;
  std::error_code error;
  if (fs::equivalent(a, b, error)) return true;
  const fs::path first = fs::absolute(a, error), second = fs::absolute(b, error);
  return first.lexically_normal() == second.lexically_normal();
}

UsageError NameUsedTwice(const std::string& name) {
  return UsageError(name + ": is another file of this command; give this one another name");
}

void CheckNameIsFree(const std::string& output, const std::vector<std::string>& others) {
  for (const std::string& other : others) {
    if (IsSameFile(output, other)) throw NameUsedTwice(output);
  }
}

OutputFile::OutputFile(const std::string& name) : name_(name), pipe_(name == kStandardOutput) {
  if (pipe_) {
    name_ = "standard output";
    file_ = StandardOutput();
    return;
  }
  std::error_code error;
  const auto behind = BehindLinks(name);
  if (!behind) throw Error(name_ + ": is a symbolic link that leads in a circle");
  finalPath_ = *behind;
  const fs::file_status status = fs::status(name, error);
  if (fs::is_directory(status) || !finalPath_.has_filename()) {
    throw Error(name_ + ": is a folder; give it a file name");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Error(name_ + ": is not an ordinary file; write to the standard output (-) instead");
  }
  const fs::path folder = finalPath_.has_parent_path() ? finalPath_.parent_path() : ".";
  if (!fs::exists(folder, error)) {
    throw Error(name_ + ": there is no folder " + NarrowText(folder) + "; make it first");
  }
  workPath_ = TemporaryBeside(finalPath_);
  // "x": the name is nobody else's.
  file_ = std::fopen(NarrowText(workPath_).c_str(), "wbx");
  if (file_ == nullptr) {
    const int cause = errno;
    workPath_.clear();
    Fail("cannot be written", cause);
  }
  // The encoder's container reads back what was written; large blocks need no second buffer.
  std::setvbuf(file_, nullptr, _IONBF, 0);
}

OutputFile::~OutputFile() {
  if (pipe_) return;
  if (file_ != nullptr) std::fclose(file_);
  std::error_code ignored;
  if (!workPath_.empty()) fs::remove(workPath_, ignored);
}

void OutputFile::Write(const void* bytes, size_t size) {
  if (pipe_) {
    WriteToPipe(bytes, size);
  } else if (std::fwrite(bytes, 1, size, file_) != size) {
    Fail("cannot be written", errno);
  }
  position_ += static_cast<int64_t>(size);
  size_ = std::max(size_, position_);
}

void OutputFile::WriteToPipe(const void* bytes, size_t size) {
#if defined(_WIN32)
  if (std::fwrite(bytes, 1, size, file_) != size) Fail("cannot be written", errno);
#else
  // The C library would go on after an interrupt, and wait for ever for a reader that has stalled.
  const auto* next = static_cast<const char*>(bytes);
  for (size_t left = size; left > 0;) {
    const ssize_t written = write(fileno(file_), next, left);
    if (written < 0 && errno == EAGAIN) {
      // Set not to wait by a program that has the pipe, too.
      pollfd room{fileno(file_), POLLOUT, 0};
      poll(&room, 1, -1);
      if (InterruptSignal() != 0) Fail("cannot be written", EINTR);
      continue;
    }
    if (written < 0) Fail("cannot be written", errno);
    next += written;
    left -= static_cast<size_t>(written);
    if (left > 0 && InterruptSignal() != 0) Fail("cannot be written", EINTR);
  }
#endif
}

void OutputFile::Seek(int64_t position) {
#if defined(_WIN32)
  const int result = _fseeki64(file_, position, SEEK_SET);
#else
  const int result = fseeko(file_, position, SEEK_SET);
#endif
  if (result != 0) Fail("cannot be written", errno);
  position_ = position;
}

void OutputFile::Finish() {
  if (pipe_) {
    if (std::fflush(file_) != 0) Fail("cannot be written", errno);
    return;
  }
  std::FILE* file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) Fail("cannot be written", errno);
  std::error_code error;
  fs::rename(workPath_, finalPath_, error);
  if (error) Fail("cannot be given its name", error.value());
  workPath_.clear();
}

void OutputFile::Fail(const char* doing, int error) const {
  throw Error(name_ + ": " + doing + ": " + std::generic_category().message(error));
}

}  // namespace kelto::host
