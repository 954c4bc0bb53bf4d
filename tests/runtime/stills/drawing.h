// An importer with a world over its own pixels.
#pragma once

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

/// Takes the importer of a picture that was opened, and makes it ready to draw.
struct Drawing {
  explicit Drawing(const Opened& opened) : importer(opened.importer) {
    StillRect bounds = {};
    GraphicsImportGetNaturalBounds(importer, &bounds);
    const int row_bytes = bounds.right * 4;
    pixels.resize(size_t{1} * row_bytes * bounds.bottom);
    QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0, pixels.data(),
                       row_bytes);
    GraphicsImportSetGWorld(importer, world, nullptr);
  }
  ~Drawing() {
    DisposeGWorld(world);
    CloseComponent(importer);
  }
  GraphicsImportComponent importer;
  GWorldPtr world = nullptr;
  Bytes pixels;
};

}  // namespace kelto::stills
