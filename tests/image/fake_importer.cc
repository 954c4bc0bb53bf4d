#include "tests/image/fake_importer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using kelto::test::FakeImporter;
using kelto::test::FakePicture;

struct GraphicsImporter {
  FakePicture picture;
  OffscreenWorld* world = nullptr;
};

struct OffscreenWorld {
  StillRect bounds;
  uint8_t* pixels;
  int32_t rowBytes;
};

namespace {

FakeImporter* fake = nullptr;

/// Records a call; its error, when it is the one to fail.
OSErr Call(const char* name) {
  fake->calls.push_back(name);
  return fake->failing == name ? fake->error : static_cast<OSErr>(noErr);
}

}  // namespace

OSErr MakeFileSpecification(const char* path, FSSpec* spec) {
  const size_t length = path != nullptr ? std::strlen(path) : 0;
  if (length == 0 || length > 255) return fnfErr;
  *spec = {};
  spec->name[0] = static_cast<uint8_t>(length);
  std::memcpy(spec->name + 1, path, length);
  return noErr;
}

OSErr GetGraphicsImporterForFile(const FSSpec* spec, GraphicsImportComponent* importer) {
  *importer = nullptr;
  const void* name = spec->name + 1;
  const std::string path(static_cast<const char*>(name), spec->name[0]);
  fake->triedToOpen.push_back(path);
  if (const OSErr error = Call("Open"); error != noErr) return error;
  const auto file = fake->files.find(path);
  if (file == fake->files.end()) return fnfErr;
  ++fake->openImporters;
  *importer = new GraphicsImporter{file->second};
  return noErr;
}

OSErr GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, StillRect* bounds) {
  *bounds = importer->picture.bounds;
  return Call("GetNaturalBounds");
}

OSErr QTNewGWorldFromPtr(GWorldPtr* world, OSType pixelFormat, const StillRect* bounds,
                         void* colorTable, void* device, uint32_t flags, void* pixels,
                         int32_t rowBytes) {
  if (const OSErr error = Call("NewGWorld"); error != noErr) return error;
  const bool plain = colorTable == nullptr && device == nullptr && flags == 0;
  if (!plain || pixelFormat != k32BGRAPixelFormat || pixels == nullptr) return paramErr;
  ++fake->openWorlds;
  *world = new OffscreenWorld{*bounds, static_cast<uint8_t*>(pixels), rowBytes};
  return noErr;
}

OSErr GraphicsImportSetGWorld(GraphicsImportComponent importer, GWorldPtr world, void*) {
  importer->world = world;
  return Call("SetGWorld");
}

OSErr GraphicsImportDraw(GraphicsImportComponent importer) {
  if (const OSErr error = Call("Draw"); error != noErr) return error;
  if (fake->whileDrawing) fake->whileDrawing();
  const OffscreenWorld& world = *importer->world;
  const size_t rowBytes = size_t{4} * static_cast<size_t>(world.bounds.right - world.bounds.left);
  const int rows = world.bounds.bottom - world.bounds.top;
  for (int y = 0; y < rows; ++y) {
    std::memcpy(world.pixels + ptrdiff_t{y} * world.rowBytes,
                importer->picture.bgra.data() +
                    static_cast<size_t>(y) * rowBytes % importer->picture.bgra.size(),
                rowBytes);
  }
  return noErr;
}

OSErr CloseComponent(GraphicsImportComponent importer) {
  --fake->openImporters;
  delete importer;
  return Call("Close");
}

void DisposeGWorld(GWorldPtr world) {
  --fake->openWorlds;
  fake->calls.push_back("Dispose");
  delete world;
}

const char* StillImporterLastError() { return ""; }

namespace kelto::test {

FakePicture FakePicture::Flat(int16_t width, int16_t height, uint8_t r, uint8_t g, uint8_t b,
                              int16_t left, int16_t top) {
  FakePicture picture;
  picture.bounds = {top, left, static_cast<int16_t>(top + height),
                    static_cast<int16_t>(left + width)};
  const uint8_t pixel[4] = {b, g, r, 255};
  picture.bgra.resize(size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(height));
  for (size_t i = 0; i < picture.bgra.size(); i += 4) std::copy_n(pixel, 4, &picture.bgra[i]);
  return picture;
}

FakeImporter::FakeImporter() { fake = this; }

FakeImporter::~FakeImporter() { fake = nullptr; }

}  // namespace kelto::test
