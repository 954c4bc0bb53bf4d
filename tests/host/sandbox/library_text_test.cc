// What libraries print by themselves, as misbehaving_decoder.cc does where the environment asks it
// to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Lines that would set a terminal's title, and pass for messages of the command.
constexpr const char* kText = "\033]0;owned\007corrupt marker\nkelto: all is well\n";
constexpr const char* kFirst = R"(: \x1b]0;owned\x07corrupt marker)";
constexpr const char* kSecond = ": kelto: all is well";

class LibraryText : public testing::Test {
 protected:
  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "in this build it goes where the sanitizers' reports go";
#endif
  }
  LibraryText() {
    WriteJpeg(photo_, MakePicture(160, 120, [](int x, int y) {
                return Rgb{uint8_t(x), uint8_t(y), 60};
              }));
    setenv("LD_PRELOAD", KELTO_MISBEHAVING_DECODER, 1);
    setenv("KELTO_TEST_PRINTS", kText, 1);
  }
  ~LibraryText() override {
    for (const char* name :
         {"LD_PRELOAD", "KELTO_TEST_PRINTS", "KELTO_TEST_PRINTS_IN", "KELTO_TEST_ABORTS"}) {
      unsetenv(name);
    }
  }

  Outcome RenderWith(const Words& more = {}) const {
    Words words{"render", photo_, "-o", film_, "--move", "in", "--size", "64x48", "--frames", "30"};
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words);
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.jpg", film_ = folder_ / "film.mp4";
};

TEST_F(LibraryText, OfADecoderBecomesMessagesWithThePhotosName) {
  setenv("KELTO_TEST_PRINTS_IN", "jpeg_start_decompress", 1);
  for (const char* jobs : {"1", "3"}) {
    const Outcome outcome = RenderWith({"--jobs", jobs});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "kelto: " + photo_ + kFirst + "\nkelto: " + photo_ + kSecond + "\n");
  }
}

TEST_F(LibraryText, OfAnEncoderBecomesMessagesWithTheFilmsNameOnce) {
  setenv("KELTO_TEST_PRINTS_IN", "avcodec_send_frame", 1);
  const Outcome outcome = RenderWith();
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "kelto: " + film_ + kFirst + "\nkelto: " + film_ + kSecond + "\n");
}

TEST_F(LibraryText, InABatchHasThePhotosName) {
  setenv("KELTO_TEST_PRINTS_IN", "jpeg_start_decompress", 1);
  const Outcome outcome = RunKelto({"batch", folder_ / ".", "-o", folder_ / "films", "--move", "in",
                                    "--size", "64x48", "--frames", "3"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.err, HasSubstr(std::string("photo.jpg") + kFirst + "\n"));
  EXPECT_THAT(outcome.err, Not(HasSubstr("\033")));
}

TEST_F(LibraryText, BecomesEventsWhereThoseAreAskedFor) {
  for (const char* in : {"jpeg_start_decompress", "avcodec_send_frame"}) {
    setenv("KELTO_TEST_PRINTS_IN", in, 1);
    const Outcome outcome = RenderWith({"--json"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("corrupt marker"));
    std::istringstream lines(outcome.err);
    for (std::string line; std::getline(lines, line);) {
      EXPECT_THAT(line, StartsWith("{\"event\":"));
      EXPECT_THAT(line, testing::EndsWith("}"));
      EXPECT_THAT(line, Not(HasSubstr("\033")));
    }
  }
}

TEST_F(LibraryText, IsLeftOutWhereMessagesAre) {
  setenv("KELTO_TEST_PRINTS_IN", "avcodec_send_frame", 1);
  EXPECT_EQ(RenderWith({"--quiet"}).err, "");
}

TEST_F(LibraryText, WithoutEndIsCut) {
  std::string much;
  for (int i = 0; i < 9000; ++i) much += "warning " + std::to_string(i) + "\n";
  setenv("KELTO_TEST_PRINTS", much.c_str(), 1);
  setenv("KELTO_TEST_PRINTS_IN", "jpeg_start_decompress", 1);
  const Outcome outcome = RenderWith();
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.err, HasSubstr("warning 1\n"));
  EXPECT_THAT(outcome.err, Not(HasSubstr("warning 8999\n")));
  EXPECT_THAT(outcome.err, testing::EndsWith(": more was printed, and is left out\n"));
}

// The last words of a process that a library ends say why.
TEST_F(LibraryText, OfADecoderThatEndsItsProcessComesBeforeTheFailure) {
  setenv("KELTO_TEST_PRINTS_IN", "jpeg_start_decompress", 1);
  setenv("KELTO_TEST_ABORTS", "1", 1);
  const Outcome outcome = RenderWith();
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, StartsWith("kelto: " + photo_ + kFirst + "\n"));
  EXPECT_THAT(outcome.err, HasSubstr("was ended by signal 6 ("));
}

TEST_F(LibraryText, OfAnEncoderThatEndsTheCommandIsSeen) {
  setenv("KELTO_TEST_PRINTS_IN", "avcodec_send_frame", 1);
  setenv("KELTO_TEST_ABORTS", "1", 1);
  const Outcome outcome = RenderWith();
  EXPECT_EQ(outcome.signal, SIGABRT);
  EXPECT_EQ(outcome.err, "?]0;owned?corrupt marker\nkelto: all is well\n");
}

}  // namespace
}  // namespace kelto::test
