// Damages projects, the same way each time for the same seed.
#pragma once

#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

namespace kelto::test {

/// Changes bytes, pieces and values of a project's text.
class Mutator {
  using json = nlohmann::json;

 public:
  explicit Mutator(uint32_t seed) : random_(seed) {}

  std::string Mutate(std::string text) {
    const int32_t changes = 1 + Below(3);
    for (int32_t i = 0; i < changes; ++i)
      text = Below(3) == 0 ? ChangeBytes(text) : ChangeTree(text);
    return text;
  }

 private:
  int32_t Below(int32_t end) { return std::uniform_int_distribution<int32_t>(0, end - 1)(random_); }
  size_t Place(const std::string& text) { return Below(static_cast<int32_t>(text.size()) + 1); }

  std::string ChangeBytes(std::string text) {
    static const char* const kPieces[] = {"{",
                                          "}",
                                          "[",
                                          "]",
                                          "\"",
                                          ",",
                                          ":",
                                          "null",
                                          "-",
                                          "1e308",
                                          "1e-400",
                                          "\\u0000",
                                          "\xf0\x9f\x8e\x9e",
                                          "\xc3",
                                          "0.",
                                          "//"};
    const size_t at = Place(text);
    switch (Below(5)) {
      case 0:
        if (at < text.size()) text[at] = static_cast<char>(Below(256));
        break;
      case 1:
        text.erase(at, Below(20));
        break;
      case 2:
        text.insert(at, kPieces[Below(std::size(kPieces))]);
        break;
      case 3:
        text.insert(at, text.substr(Place(text), Below(200)));
        break;
      default:
        text.resize(at);
    }
    return text;
  }

  std::string ChangeTree(const std::string& text) {
    json document = json::parse(text, nullptr, false);
    if (document.is_discarded() || document.empty()) return text;
    std::vector<json*> values;
    Collect(document, values);
    json& place = *values[Below(static_cast<int32_t>(values.size()))];
    switch (Below(6)) {
      case 0:
        place = *values[Below(static_cast<int32_t>(values.size()))];
        break;
      case 1:
        if (place.is_object()) place["lens"] = 1;
        break;
      case 2:
        if (place.is_object() && !place.empty()) place.erase(place.begin());
        if (place.is_array() && !place.empty()) place.erase(place.begin());
        break;
      case 3:
        if (place.is_array() && !place.empty()) place.push_back(json(place[0]));
        break;
      case 4:
        if (place.is_number()) place = place.get<double>() * (Below(5) - 2);
        break;
      default:
        place = Odd();
    }
    return document.dump(-1, ' ', false, json::error_handler_t::replace);
  }

  static void Collect(json& value, std::vector<json*>& values) {
    values.push_back(&value);
    if (!value.is_structured()) return;
    for (json& part : value) Collect(part, values);
  }

  json Odd() {
    static const json kOdd[] = {nullptr,
                                true,
                                0,
                                -1,
                                1,
                                3,
                                0.5,
                                1e9,
                                1e300,
                                -1e-300,
                                "",
                                "x",
                                "Out: Hold",
                                json::array(),
                                json::object(),
                                json::array({0, 0}),
                                UINT64_MAX,
                                INT64_MIN};
    return kOdd[Below(std::size(kOdd))];
  }

  std::mt19937 random_;
};

}  // namespace kelto::test
