#include "host/files/program_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/photo.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

TEST(ProgramFile, IsTheRunningProgramInItsFolder) {
  EXPECT_EQ(ProgramFile().stem(), "test_host_files");
  EXPECT_TRUE(fs::is_regular_file(ProgramFile()));
  EXPECT_EQ(ProgramFolder(), ProgramFile().parent_path());
}

TEST(SchemaUrl, NamesTheSchemaBesideTheProgramAsBuiltAndAsInstalled) {
  const test::TempFolder folder;
  const fs::path tree = folder / "a b%";
#if defined(_WIN32)
  const fs::path& program = tree;  // above which nothing is the program's
#else
  const fs::path program = tree / "bin";
#endif
  EXPECT_EQ(SchemaUrl(program), "");
  fs::create_directories(tree / "share" / "kelto");
  std::ofstream(tree / "share" / "kelto" / "project.schema.json") << "{}";
  EXPECT_THAT(SchemaUrl(program),
              AllOf(StartsWith("file:///"), EndsWith("/a%20b%25/share/kelto/project.schema.json")));
}

}  // namespace
}  // namespace kelto::host
