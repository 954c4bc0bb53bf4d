#include "tests/host/support/other_player.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace kelto::test {
namespace {

/// "0:00:01.040000000" after `label`, in seconds.
double TimeAfter(const std::string& line, const std::string& label) {
  const size_t at = line.find(label);
  int hours = 0, minutes = 0;
  double seconds = 0.0;
  if (at == line.npos ||
      std::sscanf(line.c_str() + at + label.size(), "%d:%d:%lf", &hours, &minutes, &seconds) != 3) {
    ADD_FAILURE() << "no time in: " << line;
  }
  return 3600.0 * hours + 60.0 * minutes + seconds;
}

DecodedFrame FrameAt(const std::string& bytes, size_t start, int width, int height) {
  DecodedFrame frame;
  frame.width = width;
  frame.height = height;
  frame.chromaWidth = width / 2;
  frame.chromaHeight = height / 2;
  const size_t luma = static_cast<size_t>(width) * height;
  const auto plane = [&](size_t at, size_t size) {
    const auto from = bytes.begin() + static_cast<ptrdiff_t>(start + at);
    return std::vector<uint8_t>(from, from + static_cast<ptrdiff_t>(size));
  };
  frame.planes = {plane(0, luma), plane(luma, luma / 4), plane(luma + luma / 4, luma / 4)};
  return frame;
}

}  // namespace

std::string PlayedFilm::Field(const std::string& name) const {
  const size_t at = caps.find(", " + name + "=(");
  if (at == caps.npos) return "";
  const size_t start = caps.find(')', at) + 1;
  return caps.substr(start, caps.find_first_of(",\n", start) - start);
}

PlayedFilm PlayElsewhere(const std::string& path, const std::string& codec, int width, int height) {
  const std::map<std::string, std::string> decoders = {{"h264", "h264parse ! openh264dec"},
                                                       {"hevc", "h265parse ! libde265dec"},
                                                       {"vp9", "vp9parse ! vp9dec"},
                                                       {"av1", "av1parse ! av1dec"}};
  const bool matroska = path.ends_with(".mkv") || path.ends_with(".webm");
  const std::string raw = path + ".raw";
  const std::string command = "gst-launch-1.0 -v filesrc location=" + path + " ! " +
                              (matroska ? "matroskademux" : "qtdemux") + " ! " +
                              decoders.at(codec) +
                              " name=decoder ! identity name=look silent=false ! filesink "
                              "location=" +
                              raw + " 2>&1";
  PlayedFilm film;
  std::FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) {
    ADD_FAILURE() << "cannot run " << command;
    return film;
  }
  std::string text;
  char block[4096];
  for (size_t size; (size = std::fread(block, 1, sizeof block, output)) > 0;) {
    text.append(block, size);
  }
  EXPECT_EQ(pclose(output), 0) << command << "\n" << text;

  std::vector<double> begins;
  double end = 0.0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("decoder.GstPad:src: caps = ") != line.npos) film.caps = line;
    if (line.find("chain   *******") == line.npos) continue;
    begins.push_back(TimeAfter(line, "pts: "));
    end = begins.back() + TimeAfter(line, "duration: ");
  }
  std::ifstream file(raw, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const size_t frameBytes = static_cast<size_t>(width) * height * 3 / 2;
  EXPECT_EQ(bytes.size(), begins.size() * frameBytes) << film.caps;
  for (size_t i = 0; (i + 1) * frameBytes <= bytes.size() && i < begins.size(); ++i) {
    film.frames.push_back(FrameAt(bytes, i * frameBytes, width, height));
    film.frames.back().seconds = begins[i] - begins[0];
  }
  if (!begins.empty()) film.seconds = end - begins[0];
  return film;
}

}  // namespace kelto::test
