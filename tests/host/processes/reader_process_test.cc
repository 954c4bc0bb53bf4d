#include "host/processes/reader_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <fstream>

#include "host/base/error.h"
#include "host/processes/read_ahead.h"
#include "host/sandbox/sandbox.h"
#include "host/terminal/terminal.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ReaderProcess : public testing::Test {
 protected:
  ReaderProcess() { std::ofstream(file_) << "content"; }

  template <typename Step>
  static std::string ErrorOf(Step step) {
    try {
      step();
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }

  test::TempFolder folder_;
  const std::string file_ = folder_ / "file";
};

TEST_F(ReaderProcess, ReadsItsFileAndGivesWhatCameOfIt) {
  const pid_t owner = getpid();
  EXPECT_EQ(ReadApart(file_, {},
                      [&] {
                        std::string text;
                        std::ifstream(file_) >> text;
                        return text + (getpid() == owner ? " here" : " apart");
                      }),
            "content apart");
}

TEST_F(ReaderProcess, WritesNowhereAndReadsNoOtherFile) {
  std::ofstream(folder_ / "other") << "x";
  const std::string could = ReadApart(file_, {}, [&] {
    std::string list;
    if (std::ofstream(folder_ / "new").is_open()) list += "makes files,";
    if (std::ofstream(file_).is_open()) list += "writes its file,";
    if (std::ifstream(folder_ / "other").is_open()) list += "reads others,";
    return list;
  });
  bool lacks = false;
  for (const SandboxCheck& check : TrySandbox()) lacks = lacks || !check.fault.empty();
  if (lacks) GTEST_SKIP() << "this kernel has not all that the sandbox needs";
  EXPECT_EQ(could, "");
}

TEST_F(ReaderProcess, ThrowsHereWhatWasThrownThere) {
  EXPECT_EQ(ErrorOf([&] { ReadApart(file_, {}, []() -> std::string { throw Error("no"); }); }),
            "no");
  EXPECT_THROW(ReadApart(file_, {}, []() -> std::string { throw UsageError("never"); }),
               UsageError);
}

TEST_F(ReaderProcess, PrintsHereWhatWasPrintedThere) {
  std::string printed;
  SetMessageSink([&](const std::string& text) { printed += text; });
  ReadApart(file_, {}, [] {
    PrintMessage("hello");
    return std::string();
  });
  SetMessageSink({});
  EXPECT_EQ(printed, "hello");
}

TEST_F(ReaderProcess, ThatIsKilledIsReportedWithItsFile) {
  EXPECT_THAT(ErrorOf([&] {
                ReadApart(file_, {}, [] {
                  raise(SIGKILL);
                  return std::string();
                });
              }),
              StartsWith(file_ + ": the process that reads it was ended by signal 9 "));
}

TEST_F(ReaderProcess, GivesNumbersToTheLastBit) {
  const std::vector<double> numbers{0.1, -1e300, 3.0};
  EXPECT_EQ(NumbersApart(file_, 3, [&] { return numbers; }), numbers);
}

// It may be in the hands of the file that it reads.
TEST_F(ReaderProcess, IsNotBelievedWhatCannotBe) {
  for (const std::vector<double>& numbers :
       {std::vector<double>{1.0}, {1.0, 2.0, 3.0}, {1.0, std::nan("")}, {INFINITY, 1.0}}) {
    EXPECT_THAT(ErrorOf([&] { NumbersApart(file_, 2, [&] { return numbers; }); }),
                HasSubstr(file_ + ": the process that reads it gave what cannot be"));
  }
  EXPECT_EQ(IntegerFrom(7.0, 0, 7, file_), 7);
  for (const double number : {-1.0, 8.0, 1.5, 1e300}) {
    EXPECT_THROW(IntegerFrom(number, 0, 7, file_), Error) << number;
  }
}

TEST_F(ReaderProcess, AnswersAheadAreGivenInsteadOfReading) {
  const auto twice = [&] {
    ReadApart(file_, {}, [] { return std::string("first"); });
    ReadApart(file_, {}, []() -> std::string { throw Error("cannot"); });
  };
  // Answers are kept in a process of their own.
  const std::string answers = ReadApart(file_, {}, [&] { return AnswersDuring([&] { twice(); }); });
  const auto unread = []() -> std::string { throw Error("was read"); };
  WithAnswers(answers, [&] {
    EXPECT_EQ(ReadApart(file_, {}, unread), "first");
    EXPECT_EQ(ErrorOf([&] { ReadApart(file_, {}, unread); }), "cannot");
    EXPECT_EQ(ErrorOf([&] { ReadApart(file_, {}, unread); }), "was read") << "none is left";
  });
  WithAnswers(answers, [&] {
    std::ofstream(folder_ / "other") << "content";
    EXPECT_EQ(ErrorOf([&] { ReadApart(folder_ / "other", {}, unread); }), "was read");
    EXPECT_EQ(ErrorOf([&] { ReadApart(file_, {}, unread); }), "was read") << "out of order";
  });
  WithAnswers(answers.substr(0, 12), [&] {
    EXPECT_EQ(ErrorOf([&] { ReadApart(file_, {}, unread); }), "was read") << "cut short";
  });
}

}  // namespace
}  // namespace kelto::host
