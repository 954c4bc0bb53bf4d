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

/// A film's samples: words in raw films of more than eight bits, else bytes.
std::vector<int> SamplesOf(const std::string& path) {
  const std::vector<uint8_t> bytes = BytesOf(path);
  if (!path.ends_with(".rgba64") && !path.ends_with(".yuv422p10"))
    return {bytes.begin(), bytes.end()};
  std::vector<int> words(bytes.size() / 2);
  for (size_t i = 0; i < words.size(); ++i) words[i] = bytes[2 * i] | bytes[2 * i + 1] << 8;
  return words;
}

struct Differences {
  int largest = 0;
  int even = 0, odd = 0;  ///< the largest of samples at even places, luma in 4:2:2, and at odd ones
  size_t count = 0;
  double mean = 0.0;
};

/// Renders a film with this build and compares every sample with the other build's.
Differences RenderAndCompare(const Film& film) {
  const std::string output = "windows-" + film.name;
  std::vector<const char*> arguments = {KELTO_COMMAND, "render", "-o", output.c_str()};
  for (const std::string& option : film.options) arguments.push_back(option.c_str());
  arguments.push_back(nullptr);
  EXPECT_EQ(_spawnv(_P_WAIT, KELTO_COMMAND, arguments.data()), 0);

  Differences differences;
  const auto native = SamplesOf("native-" + film.name), here = SamplesOf(output);
  EXPECT_GT(native.size(), 100'000u);
  EXPECT_EQ(here.size(), native.size());
  if (here.size() != native.size()) return differences;
  for (size_t i = 0; i < here.size(); ++i) {
    const int difference = std::abs(here[i] - native[i]);
    differences.largest = std::max(differences.largest, difference);
    int& ofKind = i % 2 == 0 ? differences.even : differences.odd;
    ofKind = std::max(ofKind, difference);
    differences.count += difference != 0 ? 1 : 0;
    differences.mean += difference;
  }
  differences.mean /= static_cast<double>(here.size());
  std::cout << film.name << ": largest difference " << differences.largest << " (even places "
            << differences.even << ", odd " << differences.odd << "), " << differences.count
            << " of " << here.size() << " samples differ, mean " << differences.mean << '\n';
  return differences;
}

bool HasChromaOfHalfTheSize(const Film& film) { return film.name.starts_with("half"); }

/// The same pixels make the same films. One decoder rounds 16 bits to 8, the other cuts them, which
/// is a level of the effect's own frames; and frames with all bits come from single-precision
/// sums, which processors of the two kinds round differently. Colours that have been divided by an
/// alpha of half and more differ by as much again.
int BoundFor(const Film& film) {
  if (film.name.starts_with("deepclear")) return 4;
  const bool rounds = film.name.starts_with("sixteen") || film.name.starts_with("deep");
  return rounds ? 1 : 0;
}

TEST(BothBuilds, MakeTheSameFilmsOfTheSamePixels) {
  std::filesystem::current_path(KELTO_NATIVE_FRAMES);
  size_t compared = 0;
  for (const Film& film : Films()) {
    SCOPED_TRACE(film.name);
    if (HasChromaOfHalfTheSize(film)) continue;
    EXPECT_LE(RenderAndCompare(film).largest, BoundFor(film));
    ++compared;
  }
  EXPECT_GE(compared, 20u);
}

// Wine's JPEG library enlarges chroma in the frequency domain, the Linux one by weighting
// neighbours. Either goes into RGB and back, which lets a part of the difference into luma.
TEST(BothBuilds, ShowTheSamePhotographWhereTheirDecodersDiffer) {
  std::filesystem::current_path(KELTO_NATIVE_FRAMES);
  size_t compared = 0;
  for (const Film& film : Films()) {
    SCOPED_TRACE(film.name);
    if (!HasChromaOfHalfTheSize(film)) continue;
    const Differences differences = RenderAndCompare(film);
    EXPECT_LT(differences.mean, 0.5);
    if (film.name.ends_with(".yuyv")) {
      EXPECT_LE(differences.even, 2) << "luma";
      EXPECT_LE(differences.odd, 7) << "chroma";
    } else {
      // Chroma weighs up to twice in RGB.
      EXPECT_LE(differences.largest, 16);
    }
    ++compared;
  }
  EXPECT_GE(compared, 2u);
}

}  // namespace
}  // namespace kelto
