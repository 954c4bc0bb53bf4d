// The same projects through the 64-bit Linux command and this 32-bit one.
#include <gtest/gtest.h>
#include <process.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace kelto {
namespace {

struct Film {
  std::string name;
  std::vector<std::string> options;
};

std::vector<Film> Films() {
  std::vector<Film> films;
  std::ifstream file(KELTO_AGREEMENT_CASES);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream words(line);
    Film film;
    words >> film.name;
    for (std::string word; words >> word;) film.options.push_back(word);
    films.push_back(film);
  }
  return films;
}

std::vector<uint8_t> BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Differences {
  int largest = 0;
  size_t count = 0;
  double mean = 0.0;
};

/// Renders a film with this build and compares every byte with the other build's.
Differences RenderAndCompare(const Film& film) {
  const std::string output = "windows-" + film.name;
  std::vector<const char*> arguments = {KELTO_COMMAND, "render", "-o", output.c_str()};
  for (const std::string& option : film.options) arguments.push_back(option.c_str());
  arguments.push_back(nullptr);
  EXPECT_EQ(_spawnv(_P_WAIT, KELTO_COMMAND, arguments.data()), 0);

  Differences differences;
  const auto native = BytesOf("native-" + film.name), here = BytesOf(output);
  EXPECT_GT(native.size(), 100'000u);
  EXPECT_EQ(here.size(), native.size());
  if (here.size() != native.size()) return differences;
  for (size_t i = 0; i < here.size(); ++i) {
    const int difference = std::abs(here[i] - native[i]);
    differences.largest = std::max(differences.largest, difference);
    differences.count += difference != 0 ? 1 : 0;
    differences.mean += difference;
  }
  differences.mean /= static_cast<double>(here.size());
  std::cout << film.name << ": largest difference " << differences.largest << ", "
            << differences.count << " of " << here.size() << " bytes differ, mean "
            << differences.mean << '\n';
  return differences;
}

/// The effect's own frames agree within a level. In films converted from them that one level is up
/// to two of luma (BT.709) and four of RGB: chroma weighs up to 2.07, luma 1.16, and both are
/// rounded.
int BoundFor(const Film& film) {
  if (film.name.ends_with(".yuyv")) return 1;
  return film.name.ends_with(".y4m") ? 2 : 4;
}

TEST(BothBuilds, AgreeWithinOneLevelOfTheEffectsOwnFrames) {
  std::filesystem::current_path(KELTO_NATIVE_FRAMES);
  size_t compared = 0;
  for (const Film& film : Films()) {
    SCOPED_TRACE(film.name);
    if (film.name.starts_with("jpeg")) continue;
    EXPECT_LE(RenderAndCompare(film).largest, BoundFor(film));
    ++compared;
  }
  EXPECT_GE(compared, 11u);
}

// Wine's JPEG library enlarges chroma in the frequency domain, the Linux one by weighting
// neighbours.
TEST(BothBuilds, ShowTheSamePhotographWhereTheirDecodersDiffer) {
  std::filesystem::current_path(KELTO_NATIVE_FRAMES);
  size_t compared = 0;
  for (const Film& film : Films()) {
    if (!film.name.starts_with("jpeg")) continue;
    const Differences differences = RenderAndCompare(film);
    EXPECT_LE(differences.largest, 16);
    EXPECT_LT(differences.mean, 0.5);
    ++compared;
  }
  EXPECT_GE(compared, 1u);
}

}  // namespace
}  // namespace kelto
