// A host that runs for long: many frames over many instances with cache commands between, a
// thousand instances, pictures that do not fit together, and one as large as they come. Prints a
// table of what that took, and fails where memory grows or stays.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/ipl.h"
#include "runtime/hfx/host.h"
#include "tests/support/photo.h"

namespace kelto::soak {
namespace {

constexpr int32_t kWidth = 160, kHeight = 90;
constexpr double kMiB = 1024.0 * 1024.0;
constexpr uint64_t kBudget = 125829120;
constexpr int32_t kPathRecord = 2048;

/// A line "NAME:   12345 kB" of the process's status.
double StatusMiB(const char* name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(name, 0) == 0) return std::stod(line.substr(std::strlen(name) + 1)) / 1024.0;
  }
  return 0.0;
}
double ResidentMiB() { return StatusMiB("VmRSS"); }
double PeakMiB() { return StatusMiB("VmHWM"); }
/// The peak starts anew from what is resident now.
void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }
double PictureMiB() { return static_cast<double>(iplxAllocatedBytes()) / kMiB; }

class Stopwatch {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

bool failed = false;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::printf("FAILED: %s\n", what);
  failed = true;
}

using EffectPtr = std::unique_ptr<hfx::Effect>;

class Soak {
 public:
  explicit Soak(hfx::Module& module)
      : module_(module),
        input_(kWidth, kHeight, hfxColorspaceYCbCr),
        output_(kWidth, kHeight, hfxColorspaceYCbCr) {}

  void ManyFrames(int frames, int instances) {
    std::printf("\n%d frames over %d instances, cache commands between\n", frames, instances);
    std::printf("%10s %12s %14s %10s\n", "frames", "memory MiB", "pictures MiB", "seconds");
    std::vector<EffectPtr> effects;
    effects.reserve(static_cast<size_t>(instances));
    for (int i = 0; i < instances; ++i) {
      effects.push_back(New(Photo("small" + std::to_string(i % 7), 160 + 20 * (i % 7), 120)));
    }
    const Stopwatch watch;
    double settled = 0.0;
    for (int frame = 0; frame <= frames; ++frame) {
      if (frame % (frames / 10) == 0) {
        std::printf("%10d %12.1f %14.2f %10.1f\n", frame, ResidentMiB(), PictureMiB(),
                    watch.Seconds());
        std::fflush(stdout);
      }
      if (frame == frames / 10) settled = ResidentMiB();
      hfx::Effect& effect = *effects[Random(instances)];
      if (Random(25) == 0) Edit(effect);
      Render(effect, static_cast<int32_t>(Random(200)));
    }
    Expect(ResidentMiB() < settled + 8.0, "memory stays as it was after the first tenth");
    effects.clear();
    Expect(iplxAllocatedBytes() == 0, "no picture stays");
  }

  void ManyInstances(int instances) {
    const double before = ResidentMiB();
    const Stopwatch watch;
    std::vector<EffectPtr> effects;
    const std::string photo = Photo("shared", 200, 130);
    for (int i = 0; i < instances; ++i) {
      effects.push_back(New(photo));
      Render(*effects.back(), 0);
    }
    const double with = ResidentMiB(), pictures = PictureMiB();
    while (!effects.empty()) {
      effects.erase(effects.begin() + static_cast<ptrdiff_t>(Random(effects.size())));
    }
    ::malloc_trim(0);  // what is freed may else stay with the C library
    std::printf(
        "\n%d instances: %.1f MiB more, of which %.1f MiB pictures; %.1f MiB after they are "
        "deleted; %.1f s\n",
        instances, with - before, pictures, ResidentMiB() - before, watch.Seconds());
    Expect(iplxAllocatedBytes() == 0, "no picture stays");
    Expect(ResidentMiB() < before + 8.0, "instances give their memory back");
  }

  void LargePictures(int instances) {
    const Stopwatch watch;
    std::vector<EffectPtr> effects;
    uint64_t most = 0;
    const std::string photo = Photo("large", 3600, 2400);
    for (int i = 0; i < instances; ++i) {
      effects.push_back(New(photo));
      Render(*effects.back(), 0);
      most = std::max(most, iplxAllocatedBytes());
    }
    std::printf(
        "\n%d pictures of 33 MiB: at most %.1f MiB held after a frame, of a budget of %.1f; "
        "%.1f s\n",
        instances, static_cast<double>(most) / kMiB, kBudget / kMiB, watch.Seconds());
    Expect(most <= kBudget, "pictures keep to the budget");
  }

  void HugeTiff(int32_t width, int32_t height) {
    const std::string path = folder_ / "huge.tif";
    WriteTiff(path, width, height);
    ForgetPeak();
    const double before = ResidentMiB();
    const Stopwatch watch;
    const EffectPtr effect = New(path);
    Render(*effect, 0);
    const double pixels = 1e-6 * width * height;
    std::printf("\na TIFF of %.0f megapixels: %s, %.0f MiB at the most, %.1f s\n", pixels,
                iplxAllocatedBytes() > 0 ? "rendered" : "refused", PeakMiB() - before,
                watch.Seconds());
    // Two pictures at a time: four and three bytes a pixel.
    Expect(PeakMiB() - before < pixels * 1e6 * 7.0 / kMiB + 64.0, "no third copy is made");
  }

 private:
  size_t Random(size_t count) {
    return std::uniform_int_distribution<size_t>(0, count - 1)(random_);
  }

  std::string Photo(const std::string& name, int32_t width, int32_t height) {
    std::string path = folder_ / (name + ".bmp");
    test::WritePhoto(path, width, height, [](int32_t x, int32_t y) {
      return test::Rgb{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 80};
    });
    return path;
  }

  EffectPtr New(const std::string& photo) {
    std::string error;
    EffectPtr effect = hfx::Effect::Create(module_, 1, &error);
    Expect(effect != nullptr, error.c_str());
    std::vector<char> record(kPathRecord);
    std::memcpy(record.data(), photo.data(), photo.size());
    effect->instance().SetInstanceData(record.data(), kPathRecord);
    SetKey(*effect, "display", 0.0, int32_t{1});
    for (int key = 0; key < 4; ++key) {
      const double position[2] = {0.1 * static_cast<double>(Random(5)), -0.1};
      SetKey(*effect, "position", key / 3.0, position);
      SetKey(*effect, "size", key / 3.0, 1.0 + 0.3 * key);
      SetKey(*effect, "invelocity", key / 3.0, static_cast<int32_t>(Random(3)));
      SetKey(*effect, "outvelocity", key / 3.0, static_cast<int32_t>(Random(4)));
    }
    SetKey(*effect, "path", 0.0, static_cast<int32_t>(Random(2)));
    effect->ParametersChanged();
    return effect;
  }

  template <typename Value>
  static void SetKey(hfx::Effect& effect, const char* name, double time, const Value& value) {
    hfxParameter& parameter = *effect.instance().FindParameter(name);
    hfx::SetActiveKey(parameter, hfx::SetKey(parameter, time, &value, sizeof value));
  }

  void Edit(hfx::Effect& effect) {
    SetKey(effect, "cache", 0.0, static_cast<int32_t>(Random(8)));
    SetKey(effect, "filter", 0.0, static_cast<int32_t>(Random(8)));
    SetKey(effect, "levels", 0.0, static_cast<int32_t>(Random(2)));
    effect.ParametersChanged();
  }

  void Render(hfx::Effect& effect, int32_t frame) {
    std::string error = "no error";
    hfx::RenderState state;
    state.totalFrames = 200;
    state.currentFrame = frame;
    const int32_t mode = Random(16) == 0 ? hfxPlayModePreview : hfxPlayModeRender;
    const bool rendered = effect.BeginRender(mode, &error) &&
                          effect.Render(state, input_.image(), output_.image(), &error) &&
                          effect.EndRender(&error);
    Expect(rendered, error.c_str());
  }

  /// Rows of one colour, packed in runs of bytes (PackBits); all strips are the one row.
  static void WriteTiff(const std::string& path, int32_t width, int32_t height) {
    std::vector<uint8_t> file;
    const auto put = [&](uint64_t value, int bytes) {
      for (int i = 0; i < bytes; ++i) file.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    std::vector<uint8_t> row;
    for (int32_t left = width * 3; left > 0; left -= 128) {
      const int32_t run = std::min(left, 128);
      row.push_back(static_cast<uint8_t>(257 - run));
      row.push_back(120);
    }
    constexpr uint32_t kEntries = 10, kHeader = 8, kDirectory = 2 + kEntries * 12 + 4;
    const auto rows = static_cast<uint32_t>(height);
    const uint32_t bits = kHeader + kDirectory, offsets = bits + 6, counts = offsets + 4 * rows;
    const uint32_t data = counts + 4 * rows;
    put(0x002a4949, 4);
    put(kHeader, 4);
    put(kEntries, 2);
    const auto entry = [&](uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
      put(tag, 2);
      put(type, 2);
      put(count, 4);
      put(value, 4);
    };
    constexpr uint32_t kShort = 3, kLong = 4;
    entry(256, kLong, 1, static_cast<uint32_t>(width));
    entry(257, kLong, 1, rows);
    entry(258, kShort, 3, bits);
    entry(259, kShort, 1, 32773);
    entry(262, kShort, 1, 2);
    entry(273, kLong, rows, offsets);
    entry(277, kShort, 1, 3);
    entry(278, kLong, 1, 1);
    entry(279, kLong, rows, counts);
    entry(284, kShort, 1, 1);
    put(0, 4);
    for (int i = 0; i < 3; ++i) put(8, 2);
    for (uint32_t y = 0; y < rows; ++y) put(data, 4);
    for (uint32_t y = 0; y < rows; ++y) put(row.size(), 4);
    file.insert(file.end(), row.begin(), row.end());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()),
               static_cast<std::streamsize>(file.size()));
  }

  hfx::Module& module_;
  test::TempFolder folder_;
  std::mt19937 random_{20240817};
  hfx::ImageBuffer input_, output_;
};

}  // namespace
}  // namespace kelto::soak

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: kelto_soak MODULE [FRAMES]\n");
    return 2;
  }
  const int frames = argc > 2 ? std::max(std::atoi(argv[2]), 10) : 100000;
  std::string error;
  const auto module = hfx::Module::Load(argv[1], &error);
  if (module == nullptr) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 2;
  }
  try {
    kelto::soak::Soak soak(*module);
    soak.ManyFrames(frames, 50);
    soak.ManyInstances(1000);
    soak.LargePictures(12);
    soak.HugeTiff(25000, 20000);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
  return kelto::soak::failed ? 1 : 0;
}
