#include "host/program/program_folder.h"

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

TEST(ProgramFolder, HoldsTheRunningProgram) {
  const std::string name = "test_host_session";
  EXPECT_TRUE(IsFile(ProgramFolder() / name) || IsFile(ProgramFolder() / (name + ".exe")));
  EXPECT_FALSE(IsFile(ProgramFolder()));
}

TEST(SchemaUrl, NamesTheSchemaBesideTheProgramAsBuiltAndAsInstalled) {
  const test::TempFolder folder;
  const fs::path tree = folder / "a b%";
  EXPECT_EQ(SchemaUrl(tree / "bin"), "");
  fs::create_directories(tree / "share" / "kelto");
  std::ofstream(tree / "share" / "kelto" / "project.schema.json") << "{}";
  EXPECT_THAT(SchemaUrl(tree / "bin"),
              AllOf(StartsWith("file:///"), EndsWith("/a%20b%25/share/kelto/project.schema.json")));
}

}  // namespace
}  // namespace kelto::host
