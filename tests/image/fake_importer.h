// A still importer whose files, bounds and failures are set by the test.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/still_importer.h"

namespace kelto::test {

/// A picture on the fake disk.
struct FakePicture {
  StillRect bounds = {0, 0, 0, 0};
  /// Bytes B, G, R, A of every pixel, row by row without padding. Of pictures with more rows than
  /// that, they repeat.
  std::vector<uint8_t> bgra;

  /// One colour all over, with bounds that start at (`left`, `top`).
  static FakePicture Flat(int16_t width, int16_t height, uint8_t r, uint8_t g, uint8_t b,
                          int16_t left = 0, int16_t top = 0);
};

/// Holds the fake disk while it lives; one at a time.
class FakeImporter {
 public:
  FakeImporter();
  ~FakeImporter();
  FakeImporter(const FakeImporter&) = delete;
  FakeImporter& operator=(const FakeImporter&) = delete;

  std::map<std::string, FakePicture> files;
  /// The operation that fails, such as "Draw", with `error`; empty for none.
  std::string failing;
  OSErr error = codecBadDataErr;
  /// Runs while a picture is drawn.
  std::function<void()> whileDrawing;

  std::vector<std::string> calls;        ///< names of the operations, in order
  std::vector<std::string> triedToOpen;  ///< paths
  int openImporters = 0, openWorlds = 0;
};

}  // namespace kelto::test
