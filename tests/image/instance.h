// Instances with images in their cache, and a process whose image memory is watched.
#pragma once

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "image/cache.h"
#include "runtime/hfx/host.h"
#include "state/module.h"

namespace kelto::test {

/// An instance that only holds images.
class Instance : public PanZoomState {
 public:
  Instance() = default;
  ~Instance() override { ReleaseWorkImages(*this); }

  hfx::RenderState& host() { return hfx::StateOf(*this); }
  /// Puts an image with pixels (not cleared) into `level`.
  IplImage* Hold(int32_t width, int32_t height, int level = 0) {
    IplImage* image = NewCachedImageHeader(width, height);
    AllocateImageData(*this, image);
    EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
    picture.workImages[level].reset(image);
    if (level == 0) {
      picture.imageWidth = static_cast<uint32_t>(width);
      picture.imageHeight = static_cast<uint32_t>(height);
    }
    return image;
  }
  bool empty() const {
    for (const ImagePtr& image : picture.workImages) {
      if (image != nullptr) return false;
    }
    return true;
  }
};

/// An output image of a host's, of any size, without pixels.
inline hfxImage Output(int32_t width, int32_t height) {
  return hfxImage(width, height, nullptr, ptrdiff_t{4} * width, hfxColorspaceRGB, hfxImgFormatBGRA);
}

/// Silent library, console kept, and at the end no image memory left and no status.
class ImageTest : public testing::Test {
 protected:
  ImageTest() {
    iplSetErrMode(IPL_ErrModeSilent);
    iplSetErrStatus(IPL_StsOk);
    hfx::SetConsole([this](const std::string& text) { console.push_back(text); });
  }
  ~ImageTest() override {
    iplxSetMemoryLimit(0);
    hfx::SetConsole({});
    EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
    EXPECT_EQ(iplGetErrMode(), IPL_ErrModeSilent);
    EXPECT_EQ(iplxAllocatedBytes(), 0u);
    EXPECT_EQ(Module().cachedBytes, 0u);
  }

  static std::string ReclaimMessage(const PanZoomState& state) {
    char address[32];
    std::snprintf(address, sizeof(address), "%" PRIxPTR, reinterpret_cast<uintptr_t>(&state));
    return std::string("KeltoPanAndZoom instance at ") + address +
           " failed to allocate memory for image, even when reclaiming memory from other "
           "instances.\n";
  }

  std::vector<std::string> console;
};

}  // namespace kelto::test
