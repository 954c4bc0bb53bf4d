#include "host/film/hardware.h"

#include <algorithm>
#include <iterator>

#include "host/base/error.h"
#include "host/base/texts.h"

namespace kelto::host {
namespace {

constexpr const char* kNvenc = "nvenc";
constexpr const char* kHardwareWords[] = {kNvenc, "qsv"};

}  // namespace

std::span<const char* const> HardwareWords() { return kHardwareWords; }

const char* HardwareNeed(const std::string& word) {
  return word == kNvenc ? "a graphics card by NVIDIA and its driver"
                        : "graphics by Intel with Quick Sync Video and their driver";
}

std::vector<std::string> DevicesOf(const std::string& word) {
  if (word.empty()) return {};
  std::vector<std::string> devices{"/dev/dri"};
  if (word != kNvenc) return devices;
  devices.insert(devices.end(), {"/dev/nvidiactl", "/dev/nvidia-uvm", "/dev/nvidia-uvm-tools",
                                 "/dev/nvidia-modeset", "/dev/nvidia-caps"});
  constexpr int kMostCards = 16;
  for (int card = 0; card < kMostCards; ++card) {
    devices.push_back("/dev/nvidia" + std::to_string(card));
  }
  return devices;
}

std::string ParseEncoder(const std::string& word) {
  if (word == "software") return "";
  if (std::find(std::begin(kHardwareWords), std::end(kHardwareWords), word) !=
      std::end(kHardwareWords)) {
    return word;
  }
  const std::string choice = "choose one of software, " + Joined(kHardwareWords);
  if (word != "vaapi") throw UsageError(choice);
  throw UsageError(
      "is not supported, since it takes frames from the graphics card's memory alone; " + choice);
}

}  // namespace kelto::host
