// Instances: what the host's answers are, the saved record, and copying.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/runtime/hfx/editable_instance.h"

namespace kelto {
namespace {

using testing::ElementsAre;

std::string RecordOf(const hfxInstance_v1& instance) {
  int32_t length = -1;
  const void* record = instance.GetInstanceData(&length);
  return record != nullptr ? std::string(static_cast<const char*>(record), length) : "(none)";
}

TEST(Instance, AnswersFromTheStateThatTheHostSets) {
  hfxInstance_v1 instance;
  hfx::RenderState& state = hfx::StateOf(instance);
  state = {.currentFrame = 3,
           .totalFrames = 9,
           .field = 1,
           .videoType = hfxVideoType625,
           .fieldMode = hfxFieldModeSeparate,
           .topField = true,
           .displayAspect = 1.5,
           .quality = 0.5,
           .aborted = true};
  EXPECT_EQ(instance.GetCurrentFrame(), 3);
  EXPECT_EQ(instance.GetTotalFrames(), 9);
  EXPECT_EQ(instance.GetField(), 1);
  EXPECT_EQ(instance.GetVideoType(), hfxVideoType625);
  EXPECT_EQ(instance.GetFieldMode(), hfxFieldModeSeparate);
  EXPECT_TRUE(instance.IsTopField());
  EXPECT_EQ(instance.GetDisplayAspect(), 1.5);
  EXPECT_EQ(instance.GetQuality(), 0.5);
  EXPECT_TRUE(instance.Aborted());
}

TEST(Instance, AsksTheHostAnewEachTimeWhetherItIsAborted) {
  hfxInstance_v1 instance;
  int asked = 0;
  hfx::SetAbortQuery(instance, [&] { return ++asked > 2; });
  EXPECT_FALSE(instance.Aborted());
  EXPECT_FALSE(instance.Aborted());
  EXPECT_TRUE(instance.Aborted());
  hfx::SetAbortQuery(instance, {});
  EXPECT_FALSE(instance.Aborted());
}

TEST(Instance, ThatOverridesNothingHasThePlainAnswers) {
  hfxInstance_v1 instance;
  EXPECT_FALSE(instance.RenderFrame({0, 0, 1, 1}));
  EXPECT_TRUE(instance.CreateParameters());
  EXPECT_TRUE(instance.HasEffect());
  EXPECT_FALSE(instance.InPlace());
  EXPECT_NE(instance.BeginRender(), 0);
  EXPECT_NE(instance.EndRender(), 0);
  EXPECT_FALSE(instance.ChooseImage());
}

TEST(Instance, HandsOutTheImagesLentAndTheirSizes) {
  hfxInstance_v1 instance;
  hfxImage input(7, 5, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  hfxImage output(4, 3, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  hfx::SetInput(instance, 2, &input);
  hfx::SetOutput(instance, 0, &output);
  EXPECT_EQ(instance.GetInput(2), &input);
  EXPECT_EQ(instance.GetInput(0), nullptr);
  EXPECT_EQ(instance.GetOutput(0), &output);
  int32_t width = 0, height = 0;
  EXPECT_TRUE(instance.GetInputSize(2, &width, nullptr));
  EXPECT_TRUE(instance.GetOutputSize(0, nullptr, &height));
  EXPECT_EQ(width, 7);
  EXPECT_EQ(height, 3);
  hfx::SetInput(instance, 2, nullptr);
  EXPECT_EQ(instance.GetInput(2), nullptr);
}

TEST(Instance, HasNoSizeForImagesThatAreNotLent) {
  hfxInstance_v1 instance;
  hfxImage image(7, 5, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  hfx::SetInput(instance, -1, &image);
  EXPECT_EQ(instance.GetInput(-1), nullptr);
  int32_t width = 11, height = 12;
  EXPECT_FALSE(instance.GetInputSize(0, &width, &height));
  EXPECT_FALSE(instance.GetOutputSize(1000000, &width, &height));
  EXPECT_EQ(width, 11);
  EXPECT_EQ(height, 12);
}

TEST(InstanceData, IsACopyFollowedByAZeroByte) {
  hfxInstance_v1 instance;
  char path[] = {'p', 'a', 't', 'h'};
  instance.SetInstanceData(path, 4);
  path[0] = 'X';
  int32_t length = 0;
  EXPECT_STREQ(static_cast<const char*>(instance.GetInstanceData(&length)), "path");
  EXPECT_EQ(length, 4);
  EXPECT_NE(instance.GetInstanceData(nullptr), nullptr);
}

TEST(InstanceData, MayBeEmptyWhichIsNotTheSameAsMissing) {
  hfxInstance_v1 instance;
  EXPECT_EQ(RecordOf(instance), "(none)");
  instance.SetInstanceData("", 0);
  EXPECT_EQ(RecordOf(instance), "");
  ASSERT_NE(instance.GetInstanceData(nullptr), nullptr);
  EXPECT_EQ(*static_cast<const char*>(instance.GetInstanceData(nullptr)), 0);
  hfx::ClearInstanceData(instance);
  int32_t length = 5;
  EXPECT_EQ(instance.GetInstanceData(&length), nullptr);
  EXPECT_EQ(length, 0);
}

TEST(InstanceData, MayBeReplacedByAPartOfItself) {
  hfxInstance_v1 instance;
  instance.SetInstanceData("abcdef", 6);
  const char* old = static_cast<const char*>(instance.GetInstanceData(nullptr));
  instance.SetInstanceData(old + 2, 3);
  EXPECT_EQ(RecordOf(instance), "cde");
}

TEST(InstanceData, IgnoresNegativeLengthsAndGoesWithANullRecord) {
  hfxInstance_v1 instance;
  instance.SetInstanceData("abc", 3);
  instance.SetInstanceData("xyz", -3);
  EXPECT_EQ(RecordOf(instance), "abc");
  instance.SetInstanceData(nullptr, 10);
  EXPECT_EQ(RecordOf(instance), "(none)");
}

TEST(InstanceData, IsModifiedWhenTheModuleSaysSo) {
  hfxInstance_v1 instance;
  instance.SetInstanceData("abc", 3);
  EXPECT_FALSE(hfx::InstanceDataModified(instance));
  instance.SetInstanceDataModified(true);
  EXPECT_TRUE(hfx::InstanceDataModified(instance));
  hfx::ClearInstanceData(instance);
  EXPECT_FALSE(hfx::InstanceDataModified(instance));
}

TEST(CopyInstance, TakesRecordValuesAndKeysWithTheirActivity) {
  EditableInstance from, to;
  from.SetInstanceData("record", 6);
  SetNumberKey(*from.number, 0.0, 1.5);
  SetNumberKey(*from.number, 0.5, 2.5);
  hfx::SetActiveKey(*from.number, 1);
  from.listField = 2;
  SetNumberKey(*to.number, 0.9, 8.0);

  ASSERT_TRUE(to.CopyInstance(&from));
  EXPECT_EQ(RecordOf(to), "record");
  EXPECT_TRUE(hfx::InstanceDataModified(to));
  EXPECT_THAT(KeyTimes(*to.number), ElementsAre(0.0, 0.5));
  EXPECT_EQ(KeyNumber(*to.number, 1), 2.5);
  EXPECT_EQ(hfx::ActiveKeyOf(*to.number), 1);
  EXPECT_EQ(to.listField, 2);
}

TEST(CopyInstance, LeavesTheTwoIndependent) {
  EditableInstance from, to;
  from.SetInstanceData("record", 6);
  SetNumberKey(*from.number, 0.0, 1.5);
  to.CopyInstance(&from);
  SetNumberKey(*from.number, 0.0, 9.0);
  from.SetInstanceData("other", 5);
  EXPECT_EQ(KeyNumber(*to.number, 0), 1.5);
  EXPECT_EQ(RecordOf(to), "record");
}

TEST(CopyInstance, KeepsImagesStateAndUserDataOfItsOwn) {
  EditableInstance from, to;
  hfxImage image(7, 5, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  hfx::SetInput(from, 0, &image);
  hfx::StateOf(from).currentFrame = 8;
  from.number->SetUserData(&from);
  to.number->SetUserData(&to);
  ASSERT_TRUE(to.CopyInstance(&from));
  EXPECT_EQ(to.GetInput(0), nullptr);
  EXPECT_EQ(to.GetCurrentFrame(), 0);
  EXPECT_EQ(to.number->GetUserData(), &to);
}

TEST(CopyInstance, PassesOverParametersWithoutANamesakeOfTheirClass) {
  hfxInstance_v1 from;
  int32_t choice = 2;
  from.AddParameter(hfxPList::New("", "number", &choice, 4, EditableInstance::kEntries, 1),
                    nullptr);
  EditableInstance to;
  ASSERT_TRUE(to.CopyInstance(&from));
  EXPECT_EQ(to.numberField, 2.5);
  EXPECT_EQ(to.listField, 1);
}

TEST(CopyInstance, OfNothingFailsAndOfOneselfChangesNothing) {
  EditableInstance instance;
  instance.SetInstanceData("record", 6);
  SetNumberKey(*instance.number, 0.5, 2.5);
  EXPECT_FALSE(instance.CopyInstance(nullptr));
  EXPECT_TRUE(instance.CopyInstance(&instance));
  EXPECT_EQ(RecordOf(instance), "record");
  EXPECT_FALSE(hfx::InstanceDataModified(instance));
  EXPECT_EQ(instance.number->GetNumKeys(), 1);
}

}  // namespace
}  // namespace kelto
