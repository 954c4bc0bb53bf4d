// Image headers of the shapes that the tests need, and a library left as it was found.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "platform/ipl.h"

namespace kelto {

struct Deallocate {
  void operator()(IplImage* image) const { iplDeallocate(image, IPL_IMAGE_ALL); }
};
using Image = std::unique_ptr<IplImage, Deallocate>;

inline Image NewHeader(int32_t channels, const char* model, const char* sequence, int32_t align,
                       int32_t width, int32_t height) {
  return Image(iplCreateImageHeader(channels, 0, IPL_DEPTH_8U, model, sequence,
                                    IPL_DATA_ORDER_PIXEL, IPL_ORIGIN_TL, align, width, height,
                                    nullptr, nullptr, nullptr, nullptr));
}

/// Silent mode and a clear status for each test; nothing may stay allocated.
class IplTest : public testing::Test {
 protected:
  IplTest() {
    iplSetErrMode(IPL_ErrModeSilent);
    iplSetErrStatus(IPL_StsOk);
  }
  ~IplTest() override {
    iplxSetMemoryLimit(0);
    iplSetErrStatus(IPL_StsOk);
    EXPECT_EQ(iplxAllocatedBytes(), 0u);
  }
};

}  // namespace kelto
