#include "host/terminal/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <utility>

#if !defined(_WIN32)
#include <unistd.h>
#endif

#include "host/base/error.h"

namespace kelto::host {
namespace {

volatile std::sig_atomic_t noted = 0;

void Note(int signal) { noted = signal; }

std::atomic<int> atOnce = 0;  // how many InterruptsEndAtOnce live
std::atomic<const char*> unfinished[16];
static_assert(std::atomic<const char*>::is_always_lock_free &&
                  std::atomic<int>::is_always_lock_free,
              "or no handler could use them");

#if !defined(_WIN32)
/// When each signal first came, in milliseconds; 0 while it has not.
std::atomic<int64_t> firstAt[NSIG];
static_assert(std::atomic<int64_t>::is_always_lock_free, "or no handler could use it");

int64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return 1 + int64_t{1000} * now.tv_sec + now.tv_nsec / 1'000'000;
}

/// In a handler, and so of nothing but what handlers may call.
void EndNow(int signal) {
  for (const auto& file : unfinished) {
    if (const char* path = file.load(); path != nullptr) unlink(path);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);  // in a handler blocked until it returns
}

/// Whoever stops a whole group of processes reaches some of them twice, as timeout(1) does, or as a
/// worker's owner passes on what the worker got, too. Only a signal repeated later is impatience.
void NoteOrEnd(int signal) {
  constexpr int64_t kOneWish = 2000;  // milliseconds
  int64_t first = 0;
  Note(signal);
  if (atOnce > 0) return EndNow(signal);
  if (firstAt[signal].compare_exchange_strong(first, Now()) || Now() - first < kOneWish) return;
  std::signal(signal, SIG_DFL);
  std::raise(signal);  // blocked until this returns
}

void Catch(int signal) {
  struct sigaction before {};
  sigaction(signal, nullptr, &before);
  // A shell that ran the command in the background wants it deaf; it stays so.
  if (before.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  // Without SA_RESTART: a write to a reader that has stalled must give up too.
  action.sa_handler = NoteOrEnd;
  sigaction(signal, &action, nullptr);
}
#endif

}  // namespace

void CatchInterrupts() {
#if defined(_WIN32)
  std::signal(SIGINT, Note);
  std::signal(SIGTERM, Note);
#else
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) Catch(signal);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

int InterruptSignal() { return noted; }

void CheckInterrupt() {
  if (IsInterrupted()) throw Error("interrupted");
}

InterruptsEndAtOnce::InterruptsEndAtOnce() {
  ++atOnce;
#if !defined(_WIN32)
  if (noted != 0) EndNow(noted);
#endif
}

InterruptsEndAtOnce::~InterruptsEndAtOnce() { --atOnce; }

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
  for (auto& place : unfinished) {
    const char* free = nullptr;
    if (!place.compare_exchange_strong(free, path_.c_str())) continue;
    place_ = &place;
    return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (place_ != nullptr) *place_ = nullptr;
}

void DieOf(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  std::exit(1);
}

}  // namespace kelto::host
