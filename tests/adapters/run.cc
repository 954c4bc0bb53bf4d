#include "tests/adapters/run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include "tests/support/file_bytes.h"
#include "tests/support/process.h"

namespace kelto::test {
namespace {

/// Longest run of a program, in which it has to make a few frames.
constexpr std::chrono::seconds kPatience{100};
constexpr const char* kLineStart = "kelto_pan_zoom: ";

/// In the child: a home and a plug-in registry of the test's own, and this build's plug-ins.
void SetEnvironment(const std::string& pluginFolder, const TempFolder& folder) {
  setenv("FREI0R_PATH", pluginFolder.c_str(), 1);
  setenv("HOME", (folder / "").c_str(), 1);
  setenv("GST_REGISTRY", (folder / "registry").c_str(), 1);
  setenv("XDG_RUNTIME_DIR", (folder / "").c_str(), 1);
  unsetenv("KELTO_MODULE");
  // The plug-ins of a sanitized build need the sanitizers in the program; its own leaks are no
  // business of this test's.
  if (*KELTO_SANITIZERS != '\0') {
    setenv("LD_PRELOAD", KELTO_SANITIZERS, 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    // The hosts' own accesses are guarded in ways that the sanitizer of threads does not see in
    // them.
    const char* given = std::getenv("TSAN_OPTIONS");
    const std::string options = given != nullptr ? std::string(given) + ":" : "";
    setenv("TSAN_OPTIONS", (options + "ignore_noninstrumented_modules=1").c_str(), 1);
  }
}

}  // namespace

std::vector<std::string> Outcome::Lines() const {
  std::vector<std::string> lines;
  std::istringstream text(err);
  for (std::string line; std::getline(text, line);) {
    const size_t start = line.find(kLineStart);
    if (start != std::string::npos) lines.push_back(line.substr(start));
  }
  return lines;
}

Outcome RunProgram(const Words& words, const std::string& pluginFolder) {
  const TempFolder folder;
  const std::string errors = folder / "err";
  Words copies = words;
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);
  const pid_t process = Fork();
  if (process == 0) {
    const int in = open("/dev/null", O_RDONLY), out = open("/dev/null", O_WRONLY);
    const int err = open(errors.c_str(), O_WRONLY | O_CREAT, 0600);
    if (in < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(126);
    SetEnvironment(pluginFolder, folder);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (WaitFor(process, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) Signal(process, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  Outcome outcome;
  if (WIFEXITED(status)) outcome.code = WEXITSTATUS(status);
  outcome.err = BytesOf(errors);
  return outcome;
}

Outcome RunMelt(const Words& words, const std::string& out) {
  constexpr int kAttempts = 4;
  Words all{"melt", "-silent"};
  all.insert(all.end(), words.begin(), words.end());
  Outcome outcome;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    outcome = RunProgram(all);
    std::error_code error;
    if (outcome.code == 0 && std::filesystem::file_size(out, error) > 0 && !error) break;
  }
  return outcome;
}

Frames ReadFrames(const std::string& path, int32_t width, int32_t height) {
  const std::string bytes = BytesOf(path);
  return {width, height, {bytes.begin(), bytes.end()}};
}

Frames RenderByCommand(const std::string& photo, Size size, const Words& options) {
  const TempFolder folder;
  Words words{KELTO_COMMAND, "render", photo, "-o", folder / "film.bgra", "--size", size.Text()};
  words.insert(words.end(), options.begin(), options.end());
  const Outcome outcome = RunProgram(words);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  return ReadFrames(folder / "film.bgra", size.width, size.height);
}

void ExpectSameFrames(const Frames& host, const Frames& command, const std::string& what) {
  ASSERT_FALSE(command.bytes.empty()) << what;
  ASSERT_EQ(host.bytes.size(), command.bytes.size()) << what;
  int largest = 0;
  size_t at = 0;
  for (size_t i = 0; i < host.bytes.size(); ++i) {
    const int difference = std::abs(int{host.bytes[i]} - int{command.bytes[i]});
    if (difference > largest) {
      largest = difference;
      at = i;
    }
  }
  const size_t pixel = at / 4, size = size_t(host.width) * size_t(host.height);
  EXPECT_LE(largest, 1) << what << ": frame " << pixel / size << ", row "
                        << pixel % size / size_t(host.width) << ", column "
                        << pixel % size_t(host.width) << ", byte " << at % 4;
}

void WriteTestPhoto(const std::string& path, int32_t width, int32_t height) {
  WritePhoto(path, width, height, [=](int32_t x, int32_t y) {
    const bool bright = (x / 60 + y / 45) % 2 == 0;
    return Rgb{static_cast<uint8_t>(x * 255 / width), static_cast<uint8_t>(y * 255 / height),
               static_cast<uint8_t>(bright ? 210 : 20)};
  });
}

void WriteTestProject(const std::string& path, const std::string& photo, int32_t frames) {
  std::ofstream(path) << R"({"image": ")" << photo << R"(",
  "film": {"width": 854, "height": 480, "rate": 50, "frames": )"
                      << frames << R"(},
  "parameters": {
    "size": [{"time": 0, "value": 0.8}, {"time": 0.4, "value": 2}, {"time": 1, "value": 1.3}],
    "position": [{"time": 0, "value": [0.1, 0]}, {"time": 0.4, "value": [-0.2, 0.1]},
                 {"time": 1, "value": [0, -0.1]}],
    "invelocity": [{"time": 0, "value": 0}, {"time": 0.4, "value": 1}, {"time": 1, "value": 0}],
    "outvelocity": [{"time": 0, "value": 1}, {"time": 0.4, "value": 0}, {"time": 1, "value": 0}],
    "path": {"value": "Path: Spline"},
    "filter": {"value": "Filter: Cubic"},
    "bgcolor": {"value": "#203040"}
  }
})";
}

void WriteInterlacedProject(const std::string& path, const std::string& photo,
                            const std::string& law, const std::string& fields) {
  std::ofstream(path) << R"({"image": ")" << photo << R"(", "motion": ")" << law << R"(",
  "film": {"width": 720, "height": 576, "frames": 4, "displayAspect": "16:9", "fields": ")"
                      << fields << R"("},
  "parameters": {"size": [{"time": 0, "value": 1.2}, {"time": 1, "value": 2}],
                 "position": [{"time": 0, "value": [-0.1, 0]}, {"time": 1, "value": [0.2, 0]}]}
})";
}

}  // namespace kelto::test
