#include <gtest/gtest.h>

#include "tests/runtime/ipl/fixture.h"

namespace kelto {
namespace {

using Status = IplTest;

TEST_F(Status, StaysUntilItIsSetAgain) {
  iplAllocateImage(nullptr, 0, 0);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNullPtr);
  const Image image = NewHeader(4, "MSI", "MSI", IPL_ALIGN_QWORD, 1, 1);
  iplAllocateImage(image.get(), 0, 0);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsNullPtr) << "success does not clear it";
  iplSetErrStatus(IPL_StsOk);
  EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
}

TEST_F(Status, SilentModeWritesNothing) {
  testing::internal::CaptureStderr();
  iplAllocateImage(nullptr, 0, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Status, OtherModesNameTheOperationAndTheCause) {
  iplSetErrMode(IPL_ErrModeLeaf);
  testing::internal::CaptureStderr();
  iplAllocateImage(nullptr, 0, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "iplAllocateImage: no image header (status -27)\n");
}

TEST_F(Status, UnknownModesAreRefused) {
  for (const int32_t mode : {-1, 3}) {
    iplSetErrStatus(IPL_StsOk);
    iplSetErrMode(mode);
    EXPECT_EQ(iplGetErrStatus(), IPL_StsBadArg);
    EXPECT_EQ(iplGetErrMode(), IPL_ErrModeSilent);
  }
}

}  // namespace
}  // namespace kelto
