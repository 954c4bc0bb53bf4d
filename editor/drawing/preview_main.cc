// kelto-preview MODULE: draws for the editor, which starts it and talks to it through its standard
// input and output.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>

#include "editor/drawing/serve.h"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("kelto-preview: the editor starts this program; run kelto-edit\n", stderr);
    return 2;
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGINT, SIG_IGN);  // the editor's business; it ends with the editor
  // What a library prints must not get among the messages.
  const int out = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  if (out < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) return 1;
#if defined(F_SETPIPE_SZ)
  fcntl(out, F_SETPIPE_SZ, 1 << 20);  // fewer turns for each frame; no matter where it is refused
#endif
  try {
    kelto::editor::ServeDrawing(arguments[1], STDIN_FILENO, out);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kelto-preview: %s\n", error.what());
    return 1;
  }
  return 0;
}
