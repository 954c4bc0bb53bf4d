#include "host/files/output_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/base/error.h"
#include "host/files/path_text.h"

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

[[noreturn]] void FailStandardOutput(int error) {
  throw Error("standard output: cannot be written: " + std::generic_category().message(error));
}

std::FILE* StandardOutput() {
#if defined(_WIN32)
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  return stdout;
}

void WriteToStandardOutput(const void* bytes, size_t size) {
#if defined(_WIN32)
  if (std::fwrite(bytes, 1, size, StandardOutput()) != size) FailStandardOutput(errno);
#else
  // The C library would go on after an interrupt, and wait for ever for a reader that has stalled.
  const int output = fileno(StandardOutput());
  const auto* next = static_cast<const char*>(bytes);
  for (size_t left = size; left > 0;) {
    const ssize_t written = write(output, next, left);
    if (written < 0 && errno == EAGAIN) {
      // Set not to wait by a program that has the pipe, too.
      pollfd room{output, POLLOUT, 0};
      poll(&room, 1, -1);
      if (IsInterrupted()) FailStandardOutput(EINTR);
      continue;
    }
    if (written < 0) FailStandardOutput(errno);
    next += written;
    left -= static_cast<size_t>(written);
    if (left > 0 && IsInterrupted()) FailStandardOutput(EINTR);
  }
#endif
}

}  // namespace

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a.empty() || b.empty() || a == kStandardOutput || b == kStandardOutput) return false;
  std::error_code error;
  if (fs::equivalent(PathOf(a), PathOf(b), error)) return true;
  const fs::path first = fs::absolute(PathOf(a), error), second = fs::absolute(PathOf(b), error);
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

void CheckIsNew(const std::string& name) {
  if (name.empty() || name == kStandardOutput) return;
  const fs::file_status status = StatusOf(PathOf(name));
  if (!fs::exists(status) || fs::is_directory(status)) return;
  throw UsageError(name + ": already exists; --force overwrites it");
}

OutputFile::OutputFile(const std::string& name, FolderLink link) {
  if (name != kStandardOutput) work_ = std::make_unique<WorkFile>(name, link);
}

void OutputFile::Write(const void* bytes, size_t size) {
  if (work_) {
    work_->Write(bytes, size);
  } else {
    WriteToStandardOutput(bytes, size);
  }
  position_ += static_cast<int64_t>(size);
  size_ = std::max(size_, position_);
}

void OutputFile::Seek(int64_t position) {
  work_->Seek(position);
  position_ = position;
}

std::filesystem::path OutputFile::WorkPath() const {
  return work_ ? work_->Path() : std::filesystem::path{};
}

void OutputFile::Finish(FolderSync sync) {
  if (work_) {
    work_->Finish(sync);
  } else if (std::fflush(StandardOutput()) != 0) {
    FailStandardOutput(errno);
  }
}

}  // namespace kelto::host
