#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace kelto::test {

/// All that a file holds; nothing when there is none.
inline std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kelto::test
