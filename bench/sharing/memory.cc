// Renders a photograph in instances on a thread each and prints the memory that this takes:
//   memory FOLDER PHOTO INSTANCES, with the plug-ins in FOLDER
#include <cstdio>
#include <exception>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/adapters/plugin.h"

namespace {

/// A figure of /proc/self/status in MiB.
int64_t Mebibytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(key)) return std::stoll(line.substr(key.size() + 1)) / 1024;
  }
  return -1;
}

void Measure(char** argv) {
  using namespace kelto;
  const test::Plugin plugin(argv[1], "kelto_pan_zoom_src");
  std::vector<std::unique_ptr<test::Instance>> instances;
  std::vector<std::thread> threads;
  for (int i = std::stoi(argv[3]); i > 0; --i) {
    instances.push_back(std::make_unique<test::Instance>(plugin, 1920, 1080));
    instances.back()->Set(frei0r::kImage, argv[2]);
    threads.emplace_back([&instance = *instances.back()] {
      for (const double zoom : {1.0, 1.5, 2.0}) {
        instance.Set(frei0r::kZoom, zoom);
        instance.Render();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::printf("| %9s | %19lld | %8lld |\n", argv[3], static_cast<long long>(Mebibytes("VmRSS:")),
              static_cast<long long>(Mebibytes("VmHWM:")));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  try {
    Measure(argv);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "memory: %s\n", error.what());
    return 1;
  }
}
