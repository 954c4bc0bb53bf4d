#include "host/files/input_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "host/base/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

std::string Complaint(const std::string& path) {
  try {
    CheckFile(path, "a picture");
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

class InputFile : public testing::Test {
 protected:
  InputFile() { std::ofstream(file_) << "x"; }

  const test::TempFolder folder_;
  const std::string file_ = folder_ / "file";
  const std::string none_ = folder_ / "none";
  const std::string itself_ = folder_ / "";
};

TEST_F(InputFile, IsAFileAndNoFolder) {
  EXPECT_TRUE(IsFile(file_));
  EXPECT_FALSE(IsFile(none_));
  EXPECT_FALSE(IsFile(itself_));
  EXPECT_FALSE(IsFile(std::string()));
}

TEST_F(InputFile, IsComplainedOfWhereItCannotBeRead) {
  EXPECT_EQ(Complaint(file_), "");
  EXPECT_EQ(Complaint(none_), none_ + ": there is no such file");
  EXPECT_EQ(Complaint(itself_), itself_ + ": is a folder, not a picture");
}

#if !defined(_WIN32)
TEST_F(InputFile, IsNoDeviceThatCouldBeReadWithoutEnd) {
  EXPECT_EQ(Complaint("/dev/zero"), "/dev/zero: is not an ordinary file");
}
#endif

}  // namespace
}  // namespace kelto::host
