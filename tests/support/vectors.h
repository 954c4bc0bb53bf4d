// Reference results that the tests hold the code against; tests/data/vectors.json says what each
// section holds and how closely it must be met.
#pragma once

#include <cstdint>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace kelto::test {

inline const nlohmann::json& Vectors() {
  static const nlohmann::json all = [] {
    std::ifstream file(std::string(KELTO_TEST_DATA) + "/vectors.json");
    if (!file) throw std::runtime_error("tests/data/vectors.json cannot be read");
    return nlohmann::json::parse(file);
  }();
  return all;
}

/// Bytes of a hex text.
inline std::vector<uint8_t> Bytes(const std::string& hex) {
  std::vector<uint8_t> bytes(hex.size() / 2);
  for (size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<uint8_t>(std::stoi(hex.substr(2 * i, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace kelto::test
