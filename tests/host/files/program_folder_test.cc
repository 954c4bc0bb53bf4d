#include "host/files/program_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

TEST(ProgramFile, IsTheRunningProgramInItsFolder) {
  EXPECT_EQ(ProgramFile().stem(), "test_host_files");
  EXPECT_TRUE(fs::is_regular_file(ProgramFile()));
  EXPECT_EQ(ProgramFolder(), ProgramFile().parent_path());
}

}  // namespace
}  // namespace kelto::host
