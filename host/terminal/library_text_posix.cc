#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <set>
#include <sstream>

#include "host/terminal/library_text.h"
#include "host/terminal/terminal.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KELTO_REPORTS_TO_STDERR 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KELTO_REPORTS_TO_STDERR 1
#endif
#endif

namespace kelto::host {

/// A file in memory, and how much of it has been taken, which two processes may do by turns.
struct LibraryText::Memory {
  int file = -1;
  std::atomic<int64_t>* taken = nullptr;
};

namespace {

constexpr int64_t kMostBytes = 64 << 10;

std::FILE* messages = nullptr;  ///< null while they go to stderr
LibraryText* current = nullptr;
/// What a fatal signal's handler prints; -1 where the owner of this process does.
std::atomic<int> heldFile = -1;
std::atomic<int64_t>* heldTaken = nullptr;

/// In a handler, and so of nothing but what handlers may call.
void PrintAndDie(int signal) {
  const int file = heldFile, to = messages != nullptr ? fileno(messages) : STDERR_FILENO;
  if (file >= 0) {
    char block[512];
    int64_t at = *heldTaken;
    for (ssize_t count = 0; (count = pread(file, block, sizeof block, at)) > 0; at += count) {
      for (char& letter : block) {
        if (letter != '\n' && (letter < ' ' || letter > '~')) letter = '?';
      }
      if (write(to, block, static_cast<size_t>(count)) < 0) break;
    }
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);  // blocked until this returns
}

void CatchFatalSignals() {
  static char stack[64 << 10];  // one that has no room left is a cause of such signals
  const stack_t other{stack, 0, sizeof stack};
  sigaltstack(&other, nullptr);
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
    struct sigaction action {};
    action.sa_handler = PrintAndDie;
    action.sa_flags = SA_ONSTACK;
    sigaction(signal, &action, nullptr);
  }
}

bool CanHold() {
#if defined(KELTO_REPORTS_TO_STDERR)
  return false;
#else
  return true;
#endif
}

}  // namespace

std::FILE* ErrorStream() { return messages != nullptr ? messages : stderr; }

LibraryText::LibraryText() {
  if (messages == nullptr) return;
  const int file = memfd_create("messages", MFD_CLOEXEC);
  void* shared = mmap(nullptr, sizeof(std::atomic<int64_t>), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  memory_ = std::make_unique<Memory>();
  memory_->file = file;
  if (shared != MAP_FAILED) memory_->taken = new (shared) std::atomic<int64_t>(0);
}

LibraryText::~LibraryText() {
  if (!memory_) return;
  if (memory_->file >= 0) close(memory_->file);
  if (memory_->taken != nullptr) munmap(memory_->taken, sizeof *memory_->taken);
}

void LibraryText::Attach() {
  if (!memory_ || memory_->file < 0 || memory_->taken == nullptr) return;
  // What a file that takes over a decoder prints reaches the terminal by way of this text only.
  if (const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
    dup2(nowhere, fileno(messages));
    close(nowhere);
  }
  heldFile = -1;
  dup2(memory_->file, STDERR_FILENO);
  current = this;
}

std::vector<std::string> LibraryText::Take() {
  struct stat status {};
  if (!memory_ || memory_->taken == nullptr || fstat(memory_->file, &status) != 0) return {};
  const int64_t end = status.st_size;
  // The other process may be in the hands of a file.
  const int64_t begin = std::clamp<int64_t>(*memory_->taken, 0, end);
  if (end == begin) return {};
  std::string text(static_cast<size_t>(std::min(end, kMostBytes) - std::min(begin, kMostBytes)),
                   '\0');
  const ssize_t count = text.empty() ? 0 : pread(memory_->file, text.data(), text.size(), begin);
  text.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
  *memory_->taken = end;
  // Its memory is free again.
  fallocate(memory_->file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, begin, end - begin);
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  if (end > kMostBytes && begin <= kMostBytes)
    lines.emplace_back("more was printed, and is left out");
  return lines;
}

void HoldLibraryText() {
  if (!CanHold()) return;
  const int before = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (before < 0) return;
  messages = fdopen(before, "w");
  if (messages == nullptr) return;
  setvbuf(messages, nullptr, _IONBF, 0);
  static LibraryText& own = *new LibraryText;
  if (own.memory_->file < 0 || own.memory_->taken == nullptr ||
      dup2(own.memory_->file, STDERR_FILENO) < 0) {
    messages = nullptr;
    return;
  }
  current = &own;
  heldTaken = own.memory_->taken;
  heldFile = own.memory_->file;
  CatchFatalSignals();
}

void PrintLibraryText(const std::string& name) {
  if (current == nullptr) return;
  static auto& printed = *new std::set<std::string>;
  for (const std::string& line : current->Take()) {
    if (printed.insert(line).second) PrintMessage(name.empty() ? line : name + ": " + line);
  }
}

}  // namespace kelto::host
