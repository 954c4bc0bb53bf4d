// The module's dialogs, shown by the system and answered as a user would.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/ipl.h"
#include "tests/frames/host.h"
#include "tests/windows/dialog_driver.h"

namespace kelto {
namespace {

using test::Accept;
using test::Cancel;
using test::DialogDriver;
using testing::Contains;
using testing::ElementsAre;

class Dialogs : public testing::Test {
 protected:
  Dialogs() : before_(std::filesystem::current_path()) {
    test::WritePhoto(folder / "red.bmp", 64, 36, [](int32_t, int32_t) {
      return test::Rgb{235, 16, 16};
    });
    std::ofstream(folder / "text.bmp") << "no picture at all";
    effect.SetStillView(1.0);
  }
  ~Dialogs() override {
    iplxSetMemoryLimit(0);
    // The system's dialog moves the process to the folder that it showed.
    std::filesystem::current_path(before_);
  }

  std::string Record() {
    int32_t size = 0;
    const void* record = effect.instance().GetInstanceData(&size);
    return record ? std::string(static_cast<const char*>(record), static_cast<size_t>(size)) : "";
  }
  static std::string RecordOf(const std::string& path) {
    return path + std::string(2048 - path.size(), '\0');
  }
  bool Modified() { return hfx::InstanceDataModified(effect.instance()); }
  void SetSavedPath(const std::string& path) {
    effect.SetPhoto(path);
    effect.instance().SetInstanceDataModified(false);
    effect.instance().BeginRender();
  }
  /// Cr of the frame's middle: high where the red picture shows, 128 on the background.
  int Redness() {
    effect.Render();
    return effect.output.row(18)[4 * 8 + 3];
  }

  test::TempFolder folder;
  test::HostedEffect effect{64, 36};

 private:
  std::filesystem::path before_;
};

TEST_F(Dialogs, AChosenPictureIsSavedIn2048BytesAndShown) {
  DialogDriver user({Accept(folder / "red.bmp")});
  EXPECT_TRUE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please choose an image:");
  EXPECT_EQ(Record(), RecordOf(folder / "red.bmp"));
  EXPECT_TRUE(Modified());
  EXPECT_GT(Redness(), 200);
}

TEST_F(Dialogs, ARecordOfSlashesAndAColonCountsAsNoPicture) {
  SetSavedPath("//:");
  DialogDriver user({Accept(folder / "red.bmp")});
  EXPECT_TRUE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please choose an image:");
  EXPECT_EQ(Record(), RecordOf(folder / "red.bmp"));
}

TEST_F(Dialogs, CancellingTheChoiceLeavesTheRecordAlone) {
  SetSavedPath("");
  const std::string before = Record();
  DialogDriver user({Cancel()});
  EXPECT_FALSE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please choose an image:");
  EXPECT_EQ(Record(), before);
  EXPECT_EQ(Record(), std::string(2048, '\0'));
  EXPECT_FALSE(Modified());
}

TEST_F(Dialogs, AMovedPictureIsLocatedByItsBareName) {
  SetSavedPath("C:\\once\\was here\\moved.bmp");
  DialogDriver user({Accept(folder / "red.bmp")});
  EXPECT_TRUE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please locate the image: moved.bmp");
  EXPECT_EQ(user.Seen()[0].name, "moved.bmp");
  EXPECT_EQ(Record(), RecordOf(folder / "red.bmp"));
  EXPECT_TRUE(Modified());
  EXPECT_GT(Redness(), 200);
}

TEST_F(Dialogs, CancellingTheSearchLeavesTheRecordAlone) {
  SetSavedPath("C:\\once\\was here\\lost.bmp");
  DialogDriver user({Cancel()});
  EXPECT_FALSE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please locate the image: lost.bmp");
  EXPECT_EQ(Record(), RecordOf("C:\\once\\was here\\lost.bmp"));
  EXPECT_FALSE(Modified());
}

TEST_F(Dialogs, ALoadedPictureIsOfferedWhenAnotherIsChosen) {
  {
    DialogDriver user({Accept(folder / "red.bmp")});
    EXPECT_TRUE(effect.instance().ChooseImage());
  }
  DialogDriver user({Cancel()});
  EXPECT_FALSE(effect.instance().ChooseImage());
  ASSERT_EQ(user.Seen().size(), 1u);
  EXPECT_EQ(user.Seen()[0].title, "Please choose an image:");
  EXPECT_EQ(std::filesystem::path(user.Seen()[0].name).filename(), "red.bmp");
  EXPECT_EQ(Record(), RecordOf(folder / "red.bmp"));
}

TEST_F(Dialogs, APictureThatMemoryDoesNotHoldIsToldInAMessageBox) {
  SetSavedPath("");
  iplxSetMemoryLimit(iplxAllocatedBytes() + 1000);
  DialogDriver user({Accept(folder / "red.bmp"), Accept()});
  EXPECT_TRUE(effect.instance().ChooseImage()) << "a file was chosen";
  ASSERT_EQ(user.Seen().size(), 2u);
  EXPECT_EQ(user.Seen()[1].title, "Kelto Pan & Zoom Error");
  EXPECT_THAT(user.Seen()[1].texts, ElementsAre("Not enough memory to load image."));
  EXPECT_EQ(user.Seen()[1].buttons, 1u);
  EXPECT_EQ(Record(), std::string(2048, '\0'));
}

TEST_F(Dialogs, AFileThatIsNoPictureIsAskedForOnceMoreAndThenToldTheSameWay) {
  SetSavedPath("");
  DialogDriver user({Accept(folder / "text.bmp"), Cancel(), Accept()});
  EXPECT_TRUE(effect.instance().ChooseImage()) << "a file was chosen";
  ASSERT_EQ(user.Seen().size(), 3u);
  EXPECT_EQ(user.Seen()[0].title, "Please choose an image:");
  EXPECT_EQ(user.Seen()[1].title, "Please locate the image: text.bmp");
  EXPECT_EQ(user.Seen()[2].title, "Kelto Pan & Zoom Error");
  EXPECT_THAT(user.Seen()[2].texts, Contains("Not enough memory to load image."));
  EXPECT_EQ(Record(), std::string(2048, '\0'));
}

}  // namespace
}  // namespace kelto
