// A folder of the test's own as the current one.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace kelto::test {

/// Makes an empty folder the current one; goes back and removes it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder()
      : before_(std::filesystem::current_path()),
        folder_(std::filesystem::path(testing::TempDir()) /
                ("kelto-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(folder_);
    std::filesystem::current_path(folder_);
  }
  ~TemporaryFolder() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// Makes an empty file, with its folders.
  static void Touch(const std::filesystem::path& file) {
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
    std::ofstream(file).put('\n');
  }

 private:
  std::filesystem::path before_, folder_;
};

}  // namespace kelto::test
