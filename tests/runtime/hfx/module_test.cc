// Loading module files, good and bad.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/runtime/hfx/console_capture.h"

namespace kelto {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string Sample(const std::string& name) { return std::string(HFX_SAMPLES) + "/" + name; }

/// The message of a load that must fail, checked to be one line that names the file.
std::string LoadError(const std::string& path) {
  std::string error;
  EXPECT_EQ(hfx::Module::Load(path, &error), nullptr);
  EXPECT_THAT(error, StartsWith("cannot load module '" + path + "': "));
  EXPECT_THAT(error, Not(HasSubstr("\n")));
  return error;
}

TEST(Module, LoadsStartsUpAndOffersItsEntryPoints) {
  ConsoleCapture console;
  std::string error = "untouched";
  const auto module = hfx::Module::Load(Sample("hfx_sample.hfx"), &error);
  ASSERT_NE(module, nullptr) << error;
  EXPECT_EQ(error, "untouched");
  EXPECT_EQ(module->numModels(), 6);
  EXPECT_EQ(module->newOverlay(), nullptr);
  EXPECT_EQ(module->newModel(0), nullptr);
  int32_t result = 5;
  EXPECT_EQ(module->setAttribute(0, 99, 0, &result), 0);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(module->getModelAttributes(1, 12, &result), 0);
}

TEST(Module, IsShutDownWhenItGoes) {
  ConsoleCapture console;
  auto module = hfx::Module::Load(Sample("hfx_sample.hfx"), nullptr);
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(console.text(), "");
  module.reset();
  EXPECT_EQ(console.text(), "sample: shut down\n");
}

TEST(Module, LoadsFromABareNameInTheCurrentFolder) {
  ConsoleCapture console;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(HFX_SAMPLES);
  std::string error;
  const auto module = hfx::Module::Load("hfx_sample.hfx", &error);
  std::filesystem::current_path(before);
  EXPECT_NE(module, nullptr) << error;
}

TEST(Module, ThatIsMissingIsSaidToBe) {
  EXPECT_THAT(LoadError(Sample("nowhere.hfx")), EndsWith("no such file"));
  EXPECT_THAT(LoadError(""), EndsWith("no such file"));
}

TEST(Module, ThatIsAFolderIsSaidToBeNoFile) {
  EXPECT_THAT(LoadError(HFX_SAMPLES), EndsWith("not a file"));
}

TEST(Module, ThatIsNoLibraryIsRefusedInTheSystemsWords) {
  const std::string path = testing::TempDir() + "text.hfx";
  std::ofstream(path) << "just some text, no library at all\n";
  EXPECT_GT(LoadError(path).size(), path.size() + 30);
  std::filesystem::remove(path);
}

TEST(Module, WithoutAllEntryPointsIsRefusedWithTheirNames) {
  ConsoleCapture console;
  EXPECT_THAT(LoadError(Sample("hfx_sample_without_entries.hfx")),
              EndsWith("missing entry points hfxNewOverlay_v1, hfxSetAttribute"));
  EXPECT_EQ(console.text(), "") << "never started up, so not shut down";
}

#if !defined(_WIN32)
TEST(Module, WithReferencesThatNobodyDefinesIsRefusedAtOnce) {
  EXPECT_THAT(LoadError(Sample("hfx_sample_unresolved.hfx")), HasSubstr("DefinedNowhere"));
}
#endif

TEST(Module, ThatRefusesToStartUpIsNotShutDown) {
  ConsoleCapture console;
  EXPECT_THAT(LoadError(Sample("hfx_sample_refusing.hfx")),
              EndsWith("hfxStartUp_v1 reports failure"));
  EXPECT_EQ(console.text(), "");
}

TEST(Module, ThatThrowsFromStartUpIsReportedOnOneLine) {
  EXPECT_THAT(LoadError(Sample("hfx_sample_throwing.hfx")),
              EndsWith("hfxStartUp_v1 threw: no licence found"));
}

TEST(Module, FailsQuietlyWhenNobodyWantsTheError) {
  EXPECT_EQ(hfx::Module::Load(Sample("nowhere.hfx"), nullptr), nullptr);
}

}  // namespace
}  // namespace kelto
