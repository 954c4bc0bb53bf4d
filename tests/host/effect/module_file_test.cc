#include "host/effect/module_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "host/base/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;

/// Sets the environment's variable; an empty text takes it away.
void NameModuleInEnvironment(const std::string& path) {
#if defined(_WIN32)
  _putenv_s(kModuleVariable, path.c_str());
#else
  if (path.empty()) {
    unsetenv(kModuleVariable);
  } else {
    setenv(kModuleVariable, path.c_str(), 1);
  }
#endif
}

class ModuleFile : public testing::Test {
 protected:
  void TearDown() override { NameModuleInEnvironment(""); }

  std::string File(const char* name) {
    std::string path = folder_ / name;
    std::ofstream(path) << "x";
    return path;
  }
  static std::string ErrorOf(const std::string& given) {
    try {
      FindModule(given);
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }

  test::TempFolder folder_;
};

TEST_F(ModuleFile, TheOneGivenGoesFirst) {
  NameModuleInEnvironment(File("other.hfx"));
  EXPECT_EQ(FindModule(File("given.hfx")), folder_ / "given.hfx");
}

TEST_F(ModuleFile, ThenTheEnvironments) {
  NameModuleInEnvironment(File("other.hfx"));
  EXPECT_EQ(FindModule(""), folder_ / "other.hfx");
}

TEST_F(ModuleFile, OneThatIsNamedMustBeThere) {
  EXPECT_THAT(ErrorOf(folder_ / "no.hfx"), HasSubstr(folder_ / "no.hfx"));
  EXPECT_THAT(ErrorOf(folder_ / ""), HasSubstr("--module"));
  NameModuleInEnvironment(folder_ / "no.hfx");
  EXPECT_THAT(ErrorOf(""), HasSubstr(kModuleVariable));
}

TEST_F(ModuleFile, IsLookedForBesideTheExecutableAsBuiltAndAsInstalled) {
  const auto files = SearchedFiles("/opt/kelto/bin");
#if defined(_WIN32)
  // Not above the program's folder, which may be that of photographs.
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0], "/opt/kelto/bin/KeltoPanAndZoom.hfx");
  EXPECT_EQ(files[1], "/opt/kelto/bin/lib/KeltoPanAndZoom.hfx");
#else
  ASSERT_GE(files.size(), 3u);
  EXPECT_EQ(files[0], "/opt/kelto/lib/KeltoPanAndZoom.hfx");
  EXPECT_EQ(files[1], "/opt/kelto/lib/kelto/KeltoPanAndZoom.hfx");
  EXPECT_EQ(files[2], "/opt/kelto/bin/KeltoPanAndZoom.hfx");
#endif
}

}  // namespace
}  // namespace kelto::host
