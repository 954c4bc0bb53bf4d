// Opening a still image file and drawing it into memory of the caller's.
//
// A file is named by a specification, opened to an importer, measured by its natural bounds and
// drawn, whole and unscaled, into an offscreen world laid over a 32-bit buffer. Every operation
// returns an error code, 0 for success. Nothing is locked; an importer is used by one thread.
//
// What arrives in the buffer: bytes B, G, R, A in sRGB, full range, upright (orientation marks of
// the file applied), drawn over black with alpha 255.
#pragma once

#include <cstdint>

typedef int32_t OSErr;
typedef uint32_t OSType;

enum : OSErr {
  noErr = 0,
  fnfErr = -43,             ///< no such file, or no readable file
  memFullErr = -108,        ///< memory ran out
  paramErr = -50,           ///< a null or senseless argument
  noCodecErr = -8961,       ///< no decoder knows the file's form
  codecBadDataErr = -8969,  ///< damaged, truncated or beyond the limits
};

/// Pixel format of the only kind of offscreen world: bytes B, G, R, A.
constexpr OSType k32BGRAPixelFormat = 0x42475241;

/// 16-bit rectangle: width is right - left, height bottom - top.
struct StillRect {
  int16_t top, left, bottom, right;
};

/// Names a file: a length byte and at most 255 characters.
struct FSSpec {
  int16_t vRefNum;
  int32_t parID;
  uint8_t name[256];
};

struct GraphicsImporter;
typedef GraphicsImporter* GraphicsImportComponent;
struct OffscreenWorld;
typedef OffscreenWorld* GWorldPtr;

/// Makes a specification from a path. fnfErr for a null or empty path, and for a path of more than
/// 255 characters: a shortened name could be another file's. Extension: "?turned=90", 180 or 270
/// behind the path turns the picture by as many degrees clockwise, beyond what its file says.
OSErr MakeFileSpecification(const char* path, FSSpec* spec);
/// Opens the file with the first decoder that knows it. `*importer` is null after an error.
OSErr GetGraphicsImporterForFile(const FSSpec* spec, GraphicsImportComponent* importer);
/// The picture's bounds as drawn (after orientation). Pictures over 32767 pixels a side are refused
/// when opened.
OSErr GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, StillRect* bounds);
/// Lays an offscreen world over `pixels` (`rowBytes` from row to row, at least 4 bytes a pixel).
/// `colorTable`, `device` and `flags` are null, null and 0. The pixels stay the caller's.
OSErr QTNewGWorldFromPtr(GWorldPtr* world, OSType pixelFormat, const StillRect* bounds,
                         void* colorTable, void* device, uint32_t flags, void* pixels,
                         int32_t rowBytes);
OSErr GraphicsImportSetGWorld(GraphicsImportComponent importer, GWorldPtr world, void* device);
/// Decodes into the world. After an error the buffer's content is not settled.
OSErr GraphicsImportDraw(GraphicsImportComponent importer);
OSErr CloseComponent(GraphicsImportComponent importer);
void DisposeGWorld(GWorldPtr world);

/// Extension: bytes that drawing the picture takes beside the world's pixels at the most, as far as
/// they grow with the picture; 0 without an importer. Pictures that need more than 2 GiB are
/// refused when opened.
uint64_t StillImporterScratchBytes(GraphicsImportComponent importer);

/// Extension: one line that says why the last operation failed, for hosts to report; empty
/// when it did not.
const char* StillImporterLastError();

/// Extension: one line on what of an open file the picture will be drawn without, a colour profile
/// that is damaged or of another kind of picture; empty when nothing.
const char* StillImporterFlaw(GraphicsImportComponent importer);
