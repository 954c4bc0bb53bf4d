// The still importer's functions over the decoders of this folder.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "platform/still_importer.h"
#include "platform/still_reduction.h"
#include "runtime/stills/decoder.h"
#include "runtime/stills/still_error.h"
#include "runtime/stills/turned_name.h"

using kelto::stills::ColorConverter;
using kelto::stills::ColorModel;
using kelto::stills::Decoder;
using kelto::stills::PixelFormat;
using kelto::stills::StillError;
using kelto::stills::StillFile;
using kelto::stills::StillInfo;

struct OffscreenWorld {
  StillRect bounds;
  uint8_t* pixels;
  int32_t row_bytes;
};

struct GraphicsImporter {
  GraphicsImporter(std::string file_name, const std::string& path)
      : name(std::move(file_name)), file(path) {}

  std::string name;  ///< without its folder, for messages
  StillFile file;
  const Decoder* decoder = nullptr;
  StillInfo info;
  /// A copy: the caller may dispose of the world before the importer.
  OffscreenWorld world = {};
};

namespace {

thread_local char last_error[512] = "";

/// Keeps the text; characters that would break the line become question marks.
void SetLastError(const std::string& name, const char* reason) {
  std::snprintf(last_error, sizeof last_error, "%s%s%s", name.c_str(), name.empty() ? "" : ": ",
                reason);
  for (char* c = last_error; *c != 0; ++c) {
    if (static_cast<unsigned char>(*c) < 0x20 || *c == 0x7f) *c = '?';
  }
}

OSErr Refuse(OSErr code, const char* reason) {
  SetLastError("", reason);
  return code;
}

/// Runs an operation on a file and turns what it throws into a code and a text.
template <typename Operation>
OSErr Attempt(const std::string& name, const Operation& operation) {
  try {
    operation();
    last_error[0] = 0;
    return noErr;
  } catch (const StillError& error) {
    SetLastError(name, error.reason.c_str());
    return error.code;
  } catch (const std::bad_alloc&) {
    SetLastError(name, "not enough memory");
    return memFullErr;
  } catch (const std::exception& error) {
    SetLastError(name, error.what());
    return codecBadDataErr;
  }
}

/// What a decoder left out because its file could not be read would be missing in the picture.
void CheckReads(const StillFile& file) {
  if (file.read_failed()) throw StillError(fnfErr, "the file cannot be read");
}

std::string NameOf(const std::string& path) {
#if defined(_WIN32)
  const size_t slash = path.find_last_of("/\\");
#else
  const size_t slash = path.rfind('/');
#endif
  const bool ends_with_slash = slash != std::string::npos && slash + 1 == path.size();
  return slash == std::string::npos || ends_with_slash ? path : path.substr(slash + 1);
}

int Width(const StillRect& r) { return r.right - r.left; }
int Height(const StillRect& r) { return r.bottom - r.top; }

}  // namespace

OSErr MakeFileSpecification(const char* path, FSSpec* spec) {
  if (spec == nullptr) return Refuse(paramErr, "no file specification to fill");
  std::memset(spec, 0, sizeof *spec);
  if (path == nullptr || path[0] == 0) return Refuse(fnfErr, "no file name");
  const size_t length = std::strlen(path);
  if (length > 255) return Refuse(fnfErr, "a path of more than 255 characters");
  spec->name[0] = static_cast<uint8_t>(length);
  std::memcpy(spec->name + 1, path, length);
  last_error[0] = 0;
  return noErr;
}

OSErr GetGraphicsImporterForFile(const FSSpec* spec, GraphicsImportComponent* importer) {
  if (importer == nullptr) return Refuse(paramErr, "no place for an importer");
  *importer = nullptr;
  if (spec == nullptr || spec->name[0] == 0) return Refuse(fnfErr, "no file name");
  // Its own attempt: without memory for the name there is none for the message.
  std::string path, name;
  const OSErr error = Attempt("", [&] {
    path.assign(spec->name + 1, spec->name + 1 + spec->name[0]);
    name = NameOf(path);
  });
  if (error != noErr) return error;
  return Attempt(name, [&] {
    const kelto::stills::TurnedName turned = kelto::stills::SplitTurnedName(path);
    auto opened = std::make_unique<GraphicsImporter>(name, turned.path);
    opened->decoder = &kelto::stills::FindDecoder(opened->file);
    opened->info = opened->decoder->ReadInfo(opened->file);
    Turn(opened->info, turned.quarters);
    CheckReads(opened->file);
    kelto::stills::CheckSize(opened->info, opened->file);
    *importer = opened.release();
  });
}

OSErr GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, StillRect* bounds) {
  if (importer == nullptr || bounds == nullptr) return Refuse(paramErr, "no importer or no bounds");
  *bounds = {0, 0, static_cast<int16_t>(importer->info.upright_height()),
             static_cast<int16_t>(importer->info.upright_width())};
  last_error[0] = 0;
  return noErr;
}

uint64_t StillImporterScratchBytes(GraphicsImportComponent importer) {
  return importer == nullptr ? 0 : importer->info.scratch;
}

int32_t StillImporterReduce(GraphicsImportComponent importer, int32_t by) {
  if (importer == nullptr) return 1;
  StillInfo& info = importer->info;
  // Once: sides that are rounded up twice would not be the decoder's.
  if (info.reduction > 1) return static_cast<int32_t>(info.reduction);
  while (info.reduction * 2 <= info.most_reduction &&
         info.reduction * 2 <= static_cast<uint32_t>(std::max(by, 1))) {
    info.reduction *= 2;
  }
  info.width = kelto::stills::ReducedSide(info.width, info.reduction);
  info.height = kelto::stills::ReducedSide(info.height, info.reduction);
  return static_cast<int32_t>(info.reduction);
}

OSErr QTNewGWorldFromPtr(GWorldPtr* world, OSType pixelFormat, const StillRect* bounds,
                         void* colorTable, void* device, uint32_t flags, void* pixels,
                         int32_t rowBytes) {
  if (world == nullptr) return Refuse(paramErr, "no place for an offscreen world");
  *world = nullptr;
  if (pixelFormat != k32BGRAPixelFormat) return Refuse(paramErr, "pixels are not B, G, R, A");
  if (colorTable != nullptr || device != nullptr || flags != 0) {
    return Refuse(paramErr, "an offscreen world takes no colour table, device or flags");
  }
  if (pixels == nullptr || bounds == nullptr || Width(*bounds) <= 0 || Height(*bounds) <= 0) {
    return Refuse(paramErr, "an offscreen world without pixels");
  }
  if (rowBytes < Width(*bounds) * 4) {
    return Refuse(paramErr, "rows of an offscreen world that overlap");
  }
  return Attempt("", [&] {
    *world = new OffscreenWorld{*bounds, static_cast<uint8_t*>(pixels), rowBytes};
  });
}

OSErr GraphicsImportSetGWorld(GraphicsImportComponent importer, GWorldPtr world, void* device) {
  if (importer == nullptr || world == nullptr) return Refuse(paramErr, "no importer or no world");
  if (device != nullptr) return Refuse(paramErr, "an importer draws to no device");
  importer->world = *world;
  last_error[0] = 0;
  return noErr;
}

OSErr GraphicsImportDraw(GraphicsImportComponent importer) {
  if (importer == nullptr) return Refuse(paramErr, "no importer");
  return Attempt(importer->name, [&] {
    const OffscreenWorld& world = importer->world;
    const StillInfo& info = importer->info;
    if (world.pixels == nullptr) throw StillError(paramErr, "there is no world to draw into");
    if (static_cast<uint32_t>(Width(world.bounds)) < info.upright_width() ||
        static_cast<uint32_t>(Height(world.bounds)) < info.upright_height()) {
      throw StillError(paramErr, "the world is smaller than the picture");
    }
    importer->decoder->Decode(importer->file, info, {world.pixels, world.row_bytes});
    CheckReads(importer->file);
  });
}

// Closing and disposing leave the text of an earlier failure: they are how callers clean up
// after it.
OSErr CloseComponent(GraphicsImportComponent importer) {
  if (importer == nullptr) return Refuse(paramErr, "no importer");
  delete importer;
  return noErr;
}

void DisposeGWorld(GWorldPtr world) { delete world; }

const char* StillImporterLastError() { return last_error; }

const char* StillImporterFlaw(GraphicsImportComponent importer) {
  if (importer == nullptr) return "";
  const StillInfo& info = importer->info;
  if (info.icc_lost) return "its colour profile is damaged";
  switch (info.high_range) {
    case StillInfo::HighRange::kPq:
      return "it has high dynamic range (PQ) and comes out pale unless it is converted first";
    case StillInfo::HighRange::kHlg:
      return "it has high dynamic range (HLG) and comes out pale unless it is converted first";
    case StillInfo::HighRange::kNone:
      break;
  }
  try {
    const bool ink = info.model == ColorModel::kCmyk;
    const ColorConverter converter(info.icc, info.model,
                                   ink ? PixelFormat::kCmyka8 : PixelFormat::kBgra8);
    if (converter.ignores_profile())
      return "its colour profile is damaged or made for other samples";
  } catch (const std::bad_alloc&) {
    // Drawing will fail, too, and say so.
  }
  return "";
}
