// A frame with every allocation failing once.
#include <gtest/gtest.h>

#include "tests/adapters/built_plugins.h"
#include "tests/adapters/run.h"
#include "tests/faults/failing_calls.h"

namespace kelto {
namespace {

using test::FailingCall;
using test::FailNth;
using test::Instance;

class Memory : public testing::Test {
 protected:
  Memory() { test::WriteTestPhoto(photo_, 90, 60); }

  /// As hosts do that set every parameter before every frame.
  void SetAndRender(Instance& instance) {
    const auto set = [&](int index, std::string& text) {
      char* value = text.data();
      test::FilterPlugin().set(instance.handle(), &value, index);
    };
    set(frei0r::kImage, photo_);
    set(frei0r::kFrom, from_);
    instance.Render();
  }

  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp", from_ = "1.5@0.1,0";
};

TEST_F(Memory, ThatIsRefusedOnceCostsOneFrameAtMost) {
  Instance other(test::FilterPlugin(), 48, 32);
  SetAndRender(other);
  const std::vector<uint32_t> frame = other.output;
  ASSERT_FALSE(other.IsAll(Instance::kGrey));
  // Another photograph, or it would be shared; one at all, since Highway's library does not survive
  // being loaded, with the module, without memory.
  test::WriteTestPhoto(folder_ / "other.bmp", 30, 20);
  other.Set(frei0r::kImage, folder_ / "other.bmp");
  other.Render();

  bool fired = true;
  int64_t n = 0;

  for (; fired; ++n) {
    Instance instance(test::FilterPlugin(), 48, 32);
    FailNth failing(FailingCall::kAllocation, n + 1);
    SetAndRender(instance);
    failing.Stop();
    fired = failing.Fired();
    ASSERT_TRUE(instance.output == frame || instance.IsAll(Instance::kGrey))
        << "allocation " << n + 1;
    SetAndRender(instance);
    ASSERT_TRUE(instance.output == frame) << "allocation " << n + 1;
  }

  EXPECT_GT(n, 50);
}

}  // namespace
}  // namespace kelto
