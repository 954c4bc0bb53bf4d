#include "host/terminal/interrupt.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace kelto::host {
namespace {

volatile std::sig_atomic_t noted = 0;

void Note(int signal) { noted = signal; }

#if !defined(_WIN32)
void Catch(int signal) {
  struct sigaction before {};
  sigaction(signal, nullptr, &before);
  // A shell that ran the command in the background wants it deaf; it stays so.
  if (before.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = Note;
  // Not SA_RESTART: a write to a reader that has stalled must give up too.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
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

void DieOf(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  std::exit(1);
}

}  // namespace kelto::host
