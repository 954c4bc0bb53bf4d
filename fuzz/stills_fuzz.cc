// A still of any bytes, opened, measured and drawn through the importer, and read with all its
// bits.
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/byte_source.h"
#include "fuzz/deep_still.h"
#include "fuzz/memory_file.h"
#include "platform/still_importer.h"

/// libheif 1.15 does not give back what it handed to the decoder of damaged AV1 pictures.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's name for it
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libdav1d.so"; }
// NOLINTEND(bugprone-reserved-identifier)

namespace kelto::fuzz {
namespace {

/// Larger pictures are opened and measured only: filling them would take the time of many inputs.
constexpr int64_t kMostPixels = 1 << 18;

/// Every failure has a code of the importer's and one line that says why; success has neither.
void CheckOutcome(OSErr error) {
  const char* text = StillImporterLastError();
  if (error == noErr) return Require(text[0] == 0, "success leaves no text");
  Require(error == fnfErr || error == memFullErr || error == noCodecErr || error == codecBadDataErr,
          "failures have a code that says of what kind they are");
  Require(text[0] != 0, "failures say why");
  for (const char* c = text; *c != 0; ++c) {
    Require(static_cast<unsigned char>(*c) >= 0x20, "a failure's text is one line");
  }
}

class Importer {
 public:
  explicit Importer(const std::string& path) {
    FSSpec spec;
    Require(MakeFileSpecification(path.c_str(), &spec) == noErr, "a short path can be named");
    error = GetGraphicsImporterForFile(&spec, &component_);
    CheckOutcome(error);
    Require((component_ != nullptr) == (error == noErr), "no importer comes with an error");
  }
  Importer(const Importer&) = delete;
  Importer& operator=(const Importer&) = delete;
  ~Importer() {
    if (component_ != nullptr) CloseComponent(component_);
  }

  StillRect Bounds() const {
    StillRect bounds;
    Require(GraphicsImportGetNaturalBounds(component_, &bounds) == noErr,
            "an open still has bounds");
    Require(bounds.right > bounds.left && bounds.bottom > bounds.top, "bounds hold a pixel");
    return bounds;
  }

  OSErr Draw(const StillRect& bounds, void* pixels, int32_t rowBytes) const {
    GWorldPtr world = nullptr;
    Require(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0, pixels,
                               rowBytes) == noErr,
            "there is a world");
    GraphicsImportSetGWorld(component_, world, nullptr);
    const OSErr drawn = GraphicsImportDraw(component_);
    CheckOutcome(drawn);
    DisposeGWorld(world);
    return drawn;
  }

  OSErr error = noErr;

 private:
  GraphicsImportComponent component_ = nullptr;
};

/// Draws over a buffer of one byte value.
OSErr DrawOver(uint8_t fill, const Importer& importer, const StillRect& bounds,
               std::vector<uint8_t>& pixels) {
  constexpr size_t kPadding = 12;
  const size_t width = static_cast<size_t>(bounds.right - bounds.left);
  const size_t height = static_cast<size_t>(bounds.bottom - bounds.top);
  const size_t rowBytes = width * 4 + kPadding;
  pixels.assign(rowBytes * height, fill);
  const OSErr error = importer.Draw(bounds, pixels.data(), static_cast<int32_t>(rowBytes));
  for (size_t y = 0; y < height; ++y) {
    for (size_t i = 0; i < kPadding; ++i) {
      Require(pixels[y * rowBytes + width * 4 + i] == fill, "nothing is written between rows");
    }
    for (size_t x = 0; error == noErr && x < width; ++x) {
      Require(pixels[y * rowBytes + x * 4 + 3] == 255, "what is drawn is opaque");
    }
    std::memset(&pixels[y * rowBytes + width * 4], 0, kPadding);
  }
  return error;
}

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kelto::fuzz;
  const MemoryFile file(data, size);
  CheckDeepStill(file.path(), kMostPixels);
  const Importer importer(file.path());
  if (importer.error != noErr) return 0;
  const StillRect bounds = importer.Bounds();
  if (int64_t{bounds.right - bounds.left} * (bounds.bottom - bounds.top) > kMostPixels) return 0;
  // Twice, over different content: a pixel that stays unwritten tells itself.
  std::vector<uint8_t> first, second;
  const OSErr error = DrawOver(0x00, importer, bounds, first);
  Require(DrawOver(0xFF, importer, bounds, second) == error, "a still is drawn the same twice");
  Require(error != noErr || first == second, "every pixel is drawn");
  return 0;
}
