#include "tests/runtime/stills/still_test.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace kelto::stills {

void Append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

std::ostream& operator<<(std::ostream& out, const Pixel& p) {
  return out << "(r " << int{p.r} << " g " << int{p.g} << " b " << int{p.b} << " a " << int{p.a}
             << ")";
}

testing::AssertionResult IsNear(const Pixel& a, const Pixel& b, int levels) {
  const int difference = std::max(
      {std::abs(a.b - b.b), std::abs(a.g - b.g), std::abs(a.r - b.r), std::abs(a.a - b.a)});
  if (difference <= levels) return testing::AssertionSuccess();
  return testing::AssertionFailure() << a << " and " << b << " differ by " << difference;
}

int LargestDifference(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height || a.pixels.size() != b.pixels.size()) return 256;
  int largest = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    const Pixel &p = a.pixels[i], &q = b.pixels[i];
    largest = std::max({largest, std::abs(p.b - q.b), std::abs(p.g - q.g), std::abs(p.r - q.r),
                        std::abs(p.a - q.a)});
  }
  return largest;
}

Opened OpenStill(const std::string& path) {
  Opened opened = {noErr, "", nullptr};
  FSSpec spec;
  opened.error = MakeFileSpecification(path.c_str(), &spec);
  if (opened.error == noErr) opened.error = GetGraphicsImporterForFile(&spec, &opened.importer);
  opened.text = StillImporterLastError();
  EXPECT_EQ(opened.error == noErr, opened.importer != nullptr);
  EXPECT_EQ(opened.error == noErr, opened.text.empty()) << opened.text;
  return opened;
}

Loaded LoadStill(const std::string& path, int64_t most_pixels) {
  Loaded loaded;
  const Opened opened = OpenStill(path);
  loaded.error = opened.error;
  loaded.text = opened.text;
  if (opened.error != noErr) return loaded;

  StillRect bounds = {};
  EXPECT_EQ(GraphicsImportGetNaturalBounds(opened.importer, &bounds), noErr);
  loaded.picture.width = bounds.right - bounds.left;
  loaded.picture.height = bounds.bottom - bounds.top;
  const size_t width = static_cast<size_t>(loaded.picture.width);
  const size_t height = static_cast<size_t>(loaded.picture.height);
  if (static_cast<int64_t>(width * height) <= most_pixels) {
    constexpr uint8_t kGuard = 0xa5;
    constexpr size_t kGuardBytes = 64, kPadding = 12;
    const size_t row_bytes = width * 4 + kPadding;
    Bytes buffer(row_bytes * height + 2 * kGuardBytes, kGuard);
    GWorldPtr world = nullptr;
    EXPECT_EQ(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                                 &buffer[kGuardBytes], static_cast<int32_t>(row_bytes)),
              noErr);
    EXPECT_EQ(GraphicsImportSetGWorld(opened.importer, world, nullptr), noErr);
    loaded.error = GraphicsImportDraw(opened.importer);
    loaded.text = StillImporterLastError();
    EXPECT_EQ(loaded.error == noErr, loaded.text.empty()) << loaded.text;
    EXPECT_EQ(loaded.text.find('\n'), std::string::npos) << "a text of one line";

    bool untouched = true;
    const auto watch = [&](size_t from, size_t count) {
      untouched &= std::all_of(&buffer[from], &buffer[from] + count,
                               [](uint8_t byte) { return byte == kGuard; });
    };
    watch(0, kGuardBytes);
    watch(kGuardBytes + row_bytes * height, kGuardBytes);
    loaded.picture.pixels.resize(width * height);
    for (size_t y = 0; y < height; ++y) {
      const size_t row = kGuardBytes + y * row_bytes;
      std::memcpy(&loaded.picture.pixels[y * width], &buffer[row], width * 4);
      watch(row + width * 4, kPadding);
    }
    EXPECT_TRUE(untouched) << "bytes outside the picture were written";
    DisposeGWorld(world);
  }
  EXPECT_EQ(CloseComponent(opened.importer), noErr);
  if (loaded.error == noErr) {
    for (const Pixel& p : loaded.picture.pixels) {
      if (p.a != 255) {
        ADD_FAILURE() << "alpha is not 255 everywhere";
        break;
      }
    }
  }
  return loaded;
}

std::string StillTest::Write(const std::string& name, const Bytes& bytes) const {
  std::string path = Path(name);
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
  return path;
}

Pixel Gradient(int x, int y) {
  return Rgb(static_cast<uint8_t>(x), static_cast<uint8_t>(y),
             static_cast<uint8_t>(255 - (x + y) / 2));
}

Picture GradientPicture(int width, int height) {
  Picture picture = {width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) picture.pixels.push_back(Gradient(x, y));
  }
  return picture;
}

}  // namespace kelto::stills
