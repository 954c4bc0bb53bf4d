// Nothing that was done is lost when the program is killed, whatever it was doing.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "editor/document/recovery.h"
#include "editor/document/settings.h"
#include "tests/editor/document/samples.h"

namespace kelto::editor {
namespace {

/// Changes the project without end, saves every third state, and sends a byte for each state that
/// is kept.
[[noreturn]] void Work(Document document, int acknowledge) {
  std::string saved = document.text;
  for (int i = 1;; ++i) {
    document = WithLength(document, i);
    KeepUnsaved(document, saved);
    const char byte = 1;
    if (write(acknowledge, &byte, 1) != 1) _exit(0);
    if (i % 3 != 0) continue;
    WriteDocument(document);
    saved = document.text;
    ForgetUnsaved(document.path);
  }
}

int32_t FramesFound(const std::string& path) {
  const auto unsaved = FindUnsaved(path);
  return PlanOf(unsaved ? unsaved->document : ReadDocument(path)).frames;
}

TEST(Crash, EveryStateThatWasKeptIsFoundAgain) {
  std::mt19937 random(9);
  for (int round = 0; round < 12; ++round) {
    const Sample sample;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(ends[0]);
      Work(sample.Opened(), ends[1]);
    }
    close(ends[1]);
    const int wanted = 1 + static_cast<int>(random() % 12);
    int kept = 0;
    char byte = 0;
    while (kept < wanted && read(ends[0], &byte, 1) == 1) ++kept;
    usleep(random() % 3000);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    while (read(ends[0], &byte, 1) == 1) ++kept;
    close(ends[0]);
    ASSERT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_GE(FramesFound(sample.Path()), kept * 25);
  }
}

}  // namespace
}  // namespace kelto::editor
