// What a decoder that has been taken over by a file can do. misbehaving_decoder.cc is one: it tries
// everything each time that it decodes, wherever in the command that is.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "host/sandbox/sandbox.h"
#include "tests/host/command/run.h"
#if defined(KELTO_SDL)
#include "tests/host/player/screen.h"
#endif
#include "tests/host/support/sounds.h"
#include "tests/host/support/videos.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

// The sanitizers' list of others' leaks, which is read at a program's end, lies outside the
// sandbox.
const int kNoLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

/// A port of this machine at which somebody listens.
class Listener {
 public:
  Listener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof at;
    auto* address = reinterpret_cast<sockaddr*>(&at);
    EXPECT_EQ(bind(socket_, address, size), 0);
    EXPECT_EQ(listen(socket_, 1000), 0);
    EXPECT_EQ(getsockname(socket_, address, &size), 0);
    port_ = ntohs(at.sin_port);
  }
  ~Listener() { close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  int Port() const { return port_; }

 private:
  int socket_;
  int port_ = 0;
};

bool KernelHasAll() {
  for (const host::SandboxCheck& check : host::TrySandbox()) {
    if (!check.fault.empty()) return false;
  }
  return true;
}

class Sandbox : public testing::Test {
 protected:
  Sandbox() {
    for (const char* name : {"one.jpg", "two.jpg"}) {
      WriteJpeg(photos_ / name, MakePicture(160, 120, [](int x, int y) {
                  return Rgb{uint8_t(x), uint8_t(y), 60};
                }));
    }
    std::ofstream(photos_ / "secret") << "secret";
    report_ = open((films_ / "report").c_str(), O_RDWR | O_CREAT | O_APPEND, 0600);
    setenv("LD_PRELOAD", KELTO_MISBEHAVING_DECODER, 1);
    setenv("KELTO_TEST_REPORT", std::to_string(report_).c_str(), 1);
    setenv("KELTO_TEST_FOLDER", (photos_ / ".").c_str(), 1);
    setenv("KELTO_TEST_FILMS", (films_ / ".").c_str(), 1);
    setenv("KELTO_TEST_PORT", std::to_string(listener_.Port()).c_str(), 1);
    // The sanitizers want to be loaded first.
    const char* asan = std::getenv("ASAN_OPTIONS");
    const std::string options = asan != nullptr ? std::string(asan) + ":" : "";
    setenv("ASAN_OPTIONS", (options + "verify_asan_link_order=0").c_str(), 1);
  }
  ~Sandbox() override {
    for (const char* name :
         {"LD_PRELOAD", "KELTO_TEST_REPORT", "KELTO_TEST_FOLDER", "KELTO_TEST_FILMS",
          "KELTO_TEST_PORT", "KELTO_TEST_PHOTO", "KELTO_TEST_OTHER_PHOTO"}) {
      unsetenv(name);
    }
    close(report_);
  }

  /// How the decoders' attempts in a command ended: the errors of each.
  using Attempts = std::map<std::string, std::set<int>>;
  Attempts AttemptsOf(const Words& words) {
    EXPECT_EQ(ftruncate(report_, 0), 0);
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return Reported();
  }

  Attempts Reported() const {
    std::ifstream report(films_ / "report");
    Attempts attempts;
    int error = 0;
    for (std::string what; report >> error && std::getline(report, what);) {
      attempts[what].insert(error);
    }
    return attempts;
  }

  /// Expects that a command decodes by `decoder`, and that no attempt of any decoder succeeds.
  void ExpectAllRefused(const Words& words, const std::string& decoder) {
    if (!KernelHasAll()) GTEST_SKIP() << "this kernel has not all that the sandbox needs";
    ExpectAllRefused(AttemptsOf(words), decoder);
  }

  void ExpectAllRefused(const Attempts& attempts, const std::string& decoder) const {
    EXPECT_TRUE(attempts.contains(" start a program in " + decoder)) << "decodes otherwise";
    EXPECT_GE(attempts.size(), 11u);
    for (const auto& [what, errors] : attempts) {
      for (const int error : errors) {
        EXPECT_TRUE(error == EACCES || error == EPERM) << "could" << what << ": error " << error;
      }
    }
    EXPECT_FALSE(std::ifstream(photos_ / "planted").is_open());
    EXPECT_FALSE(std::ifstream(films_ / "planted").is_open());
  }

  TempFolder photos_, films_;
  Listener listener_;
  int report_ = -1;
};

const Words kSmall = {"--size", "64x48", "--frames", "30"};

Words With(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

// So that the tests below would notice: without the sandbox, everything works.
TEST_F(Sandbox, IsWhatKeepsADecoderFromAllOfThis) {
  const Attempts attempts = AttemptsOf(
      With({"render", photos_ / "one.jpg", "-o", films_ / "film.yuyv", "--no-sandbox"}, kSmall));
  EXPECT_GE(attempts.size(), 22u);
  for (const auto& [what, errors] : attempts) EXPECT_EQ(errors, std::set<int>{0}) << what;
}

TEST_F(Sandbox, HoldsWhereOneProcessRenders) {
  ExpectAllRefused(
      With({"render", photos_ / "one.jpg", "-o", films_ / "film.mp4", "--jobs", "1"}, kSmall),
      "jpeg_start_decompress");
}

TEST_F(Sandbox, HoldsWhereSeveralProcessesRender) {
  ExpectAllRefused(
      With({"render", photos_ / "one.jpg", "-o", films_ / "film.mp4", "--jobs", "3"}, kSmall),
      "jpeg_start_decompress");
}

TEST_F(Sandbox, HoldsWhileAMoveIsLookedFor) {
  ExpectAllRefused({"new", photos_ / "one.jpg", "-o", films_ / "one.json", "--move", "auto"},
                   "jpeg_start_decompress");
}

TEST_F(Sandbox, HoldsInABatch) {
  ExpectAllRefused(With({"batch", photos_ / ".", "-o", films_ / "films"}, kSmall),
                   "jpeg_start_decompress");
}

TEST_F(Sandbox, HoldsInASlideshow) {
  ExpectAllRefused(
      {"slideshow", photos_ / ".", "-o", films_ / "show.mp4", "--size", "64x48", "--each", "1"},
      "jpeg_start_decompress");
}

TEST_F(Sandbox, HoldsInASlideshowOfProjects) {
  std::ofstream list(films_ / "list.txt");
  for (const std::string name : {"one", "two"}) {
    ASSERT_EQ(RunKelto({"new", photos_ / (name + ".jpg"), "-o", films_ / (name + ".json"),
                        "--frames", "25", "--size", "64x48"})
                  .code,
              0);
    list << name << ".json\n";
  }
  list.close();
  for (const char* move : {"in", "auto"}) {
    ExpectAllRefused({"slideshow", films_ / "list.txt", "-o", films_ / "show.mp4", "--each", "1",
                      "--move", move},
                     "jpeg_start_decompress");
  }
}

#if defined(KELTO_SDL)
// A window is opened by what the sandbox refuses; no decoder works before.
TEST_F(Sandbox, HoldsWhileAFilmIsPlayed) {
  if (!KernelHasAll()) GTEST_SKIP() << "this kernel has not all that the sandbox needs";
  unsetenv("LD_PRELOAD");  // of the screen's own programs
  Screen screen;
  for (const char* move : {"in", "auto"}) {
    ASSERT_EQ(ftruncate(report_, 0), 0);
    setenv("LD_PRELOAD", KELTO_MISBEHAVING_DECODER, 1);
    Command player({"play", photos_ / "one.jpg", "--size", "320x240", "--move", move});
    unsetenv("LD_PRELOAD");
    ASSERT_TRUE(screen.Find("one.jpg - .*frame "));
    screen.Press("q");
    EXPECT_EQ(player.Wait().code, 0);
    ExpectAllRefused(Reported(), "jpeg_start_decompress");
  }
}
#endif

TEST_F(Sandbox, HoldsForSheetsAndPlots) {
  ExpectAllRefused(With({"storyboard", photos_ / "one.jpg", "-o", films_ / "sheet.png"}, kSmall),
                   "jpeg_start_decompress");
  ExpectAllRefused(With({"inspect", photos_ / "one.jpg", "--plot", films_ / "plot.svg"}, kSmall),
                   "jpeg_read_header");
}

TEST_F(Sandbox, HoldsForVideoBehindAndForSound) {
  host::FilmFormat format;
  format.size = {64, 48};
  WriteVideo(photos_ / "clip.mkv", format, 20,
             [&](int i) { return GreyFrame(format.size, 5 * i); });
  WriteWav(photos_ / "sound.wav", 1.0, 44100, 2, Clicks({0.5}, 44100));
  std::ofstream(photos_ / "list.txt") << "one.jpg\n";
  const Words behind = {"--over", photos_ / "clip.mkv", "--audio", photos_ / "sound.wav"};
  ExpectAllRefused(With({"render", photos_ / "one.jpg", "-o", films_ / "film.mp4"},
                        With({"--size", "64x48"}, behind)),
                   "avcodec_send_packet");
  ExpectAllRefused(With({"batch", photos_ / "list.txt", "-o", films_ / "films"},
                        With({"--size", "64x48"}, behind)),
                   "avcodec_send_packet");
}

// A project names files of its own, which the command reads and no others.
TEST_F(Sandbox, LetsAProjectReadWhatItNames) {
  ASSERT_EQ(RunKelto({"new", photos_ / "one.jpg", "-o", films_ / "one.json", "--frames", "30",
                      "--size", "64x48"})
                .code,
            0);
  ExpectAllRefused({"render", films_ / "one.json", "-o", films_ / "film.mp4"},
                   "jpeg_start_decompress");
}

// The sandbox lets a command read the file that it was given, and no other of the same name.
TEST_F(Sandbox, SaysThatAPhotoWasReplacedBeforeItWasRead) {
  if (!KernelHasAll()) GTEST_SKIP() << "this kernel has not all that the sandbox needs";
  setenv("KELTO_TEST_PHOTO", (photos_ / "one.jpg").c_str(), 1);
  setenv("KELTO_TEST_OTHER_PHOTO", (photos_ / "two.jpg").c_str(), 1);
  const Outcome outcome =
      RunKelto(With({"render", photos_ / "one.jpg", "-o", films_ / "film.yuyv"}, kSmall));
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "kelto: " + (photos_ / "one.jpg") +
                             ": was replaced while the command was using it; give the command "
                             "again\n");
}

TEST_F(Sandbox, IsReportedByTheDoctor) {
  unsetenv("LD_PRELOAD");
  const Outcome outcome = RunKelto({"doctor"});
  EXPECT_THAT(outcome.out, HasSubstr("keeps decoders from:\n  other files: "));
  if (!KernelHasAll()) return;
  EXPECT_THAT(outcome.out, HasSubstr("  other files: yes\n  the network: yes\n"
                                     "  starting programs: yes\n"));
}

// --sandbox is what is done anyway where the kernel has it, and where it has not is an error.
TEST_F(Sandbox, CanBeDemanded) {
  unsetenv("LD_PRELOAD");
  const Outcome outcome = RunKelto(
      With({"render", photos_ / "one.jpg", "-o", films_ / "film.yuyv", "--sandbox"}, kSmall));
  if (KernelHasAll()) {
    EXPECT_EQ(outcome.code, 0) << outcome.err;
  } else {
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(IsOneLine(outcome.err));
    EXPECT_THAT(outcome.err, HasSubstr("--sandbox: this kernel has no "));
  }
}

}  // namespace
}  // namespace kelto::test
