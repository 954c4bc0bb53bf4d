// Running an effect of a loaded module, good days and bad.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/runtime/hfx/console_capture.h"
#include "tests/runtime/hfx/editable_instance.h"

namespace kelto {
namespace {

using testing::Each;
using testing::HasSubstr;

int32_t HostStateFive() { return 5; }

class EffectTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    module = hfx::Module::Load(std::string(HFX_SAMPLES) + "/hfx_sample.hfx", &error);
    ASSERT_NE(module, nullptr) << error;
    effect = hfx::Effect::Create(*module, 1, &error);
    ASSERT_NE(effect, nullptr) << error;
    console.Clear();
  }

  hfxParameter& Find(const char* key) { return *effect->instance().FindParameter(key); }

  /// The error of a render that must fail with the sample's behaviour `index`.
  std::string RenderError(int32_t index) {
    hfx::SetBoundValue(Find("behaviour"), &index, 4);
    hfx::RenderState state;
    state.currentFrame = 3;
    std::string error;
    EXPECT_FALSE(effect->Render(state, input.image(), output.image(), &error));
    return error;
  }

  ConsoleCapture console;
  std::unique_ptr<hfx::Module> module;
  std::unique_ptr<hfx::Effect> effect;
  hfx::ImageBuffer input{4, 3, hfxColorspaceRGB}, output{4, 3, hfxColorspaceRGB};
};

TEST_F(EffectTest, DescribesItselfAndHasItsParameters) {
  const hfx::ModelDescription& told = hfx::DescriptionOf(effect->model());
  EXPECT_EQ(told.name, "Grey");
  EXPECT_EQ(told.version, 1.5f);
  EXPECT_EQ(told.inputs.size(), 1u);
  EXPECT_EQ(hfx::ParametersOf(effect->instance()).size(), 3u);
  EXPECT_EQ(hfx::GroupOf(Find("level")), &Find("look"));
  EXPECT_NE(dynamic_cast<hfxPList*>(&Find("behaviour")), nullptr);
}

TEST_F(EffectTest, RendersTheWholeOutputFromTheBoundFields) {
  std::string error;
  ASSERT_TRUE(effect->Render({}, input.image(), output.image(), &error)) << error;
  EXPECT_THAT(output.bytes(), Each(64));  // the level's default, a quarter
}

TEST_F(EffectTest, RendersKeyedValuesAtTheFramesTime) {
  SetNumberKey(Find("level"), 0.0, 0.6);
  hfx::RenderState state;
  state.totalFrames = 3;
  state.currentFrame = 1;
  ASSERT_TRUE(effect->Render(state, input.image(), output.image(), nullptr));
  EXPECT_THAT(output.bytes(), Each(153)) << "one key: the module's interpolator declines";
  SetNumberKey(Find("level"), 1.0, 0.6);
  ASSERT_TRUE(effect->Render(state, input.image(), output.image(), nullptr));
  EXPECT_THAT(output.bytes(), Each(64)) << "two keys: the interpolator squares the time";
  EXPECT_EQ(effect->instance().GetCurrentFrame(), 1);
}

TEST_F(EffectTest, DrawsOneFieldAtATimeIntoAFrame) {
  const double levels[] = {0.2, 0.4};
  hfx::RenderState state;
  state.fieldMode = hfxFieldModeSeparate;
  for (int32_t field : {0, 1}) {
    state.field = field;
    state.topField = field == 0;
    hfxImage in = hfx::FieldView(*input.image(), state.topField);
    hfxImage out = hfx::FieldView(*output.image(), state.topField);
    hfx::SetBoundValue(Find("level"), &levels[field], 8);
    ASSERT_TRUE(effect->Render(state, &in, &out, nullptr));
  }
  EXPECT_EQ(*output.image()->GetRowPtr(0), 51);
  EXPECT_EQ(*output.image()->GetRowPtr(1), 102);
  EXPECT_EQ(*output.image()->GetRowPtr(2), 51);
}

TEST_F(EffectTest, LendsImagesForTheRenderOnly) {
  hfxImage before(1, 1, nullptr, 0, hfxColorspaceRGB, hfxImgFormatBGRA);
  hfx::SetInput(effect->instance(), 0, &before);
  ASSERT_TRUE(effect->Render({}, input.image(), output.image(), nullptr));
  EXPECT_EQ(effect->instance().GetInput(0), &before);
  EXPECT_EQ(effect->instance().GetOutput(0), nullptr);
  RenderError(1);
  EXPECT_EQ(effect->instance().GetInput(0), &before) << "after an exception too";
}

TEST_F(EffectTest, ReportsWhateverTheModuleThrowsAsAFailedFrame) {
  EXPECT_EQ(RenderError(1), "frame 3: the module threw the integer 1");
  EXPECT_EQ(RenderError(2), "frame 3: the module threw: lens cap on");
  EXPECT_EQ(RenderError(3), "frame 3: the module threw: plain text");
  EXPECT_EQ(RenderError(4), "frame 3: the module threw an exception of an unknown type");
}

TEST_F(EffectTest, ReportsAFrameThatTheModuleCallsFailed) {
  EXPECT_EQ(RenderError(5), "frame 3: RenderFrame failed");
}

TEST_F(EffectTest, ReportsAnAbortedFrameAsAborted) {
  hfx::SetAbortQuery(effect->instance(), [] { return true; });
  EXPECT_EQ(RenderError(6), "frame 3: aborted");
}

TEST_F(EffectTest, PassesMissingImagesOnToTheModule) {
  std::string error;
  EXPECT_FALSE(effect->Render({}, nullptr, nullptr, &error));
  EXPECT_EQ(error, "frame 0: the module threw the integer 1");
  EXPECT_FALSE(effect->Render({}, nullptr, output.image(), nullptr));
}

TEST_F(EffectTest, RendersAgainAfterAFailure) {
  RenderError(1);
  const int32_t fill = 0;
  hfx::SetBoundValue(Find("behaviour"), &fill, 4);
  EXPECT_TRUE(effect->Render({}, input.image(), output.image(), nullptr));
}

TEST_F(EffectTest, OpensARenderWithItsPlayModeHostStateAndRecord) {
  effect->instance().SetInstanceData("photo.jpg", 9);
  module->SetHostState(HostStateFive);
  EXPECT_TRUE(effect->BeginRender(hfxPlayModePreview, nullptr));
  EXPECT_EQ(console.text(), "sample: begin, play mode 1, host state 5, record 'photo.jpg'\n");
  console.Clear();
  module->SetHostState(nullptr);
  EXPECT_TRUE(effect->BeginRender(hfxPlayModeRender, nullptr));
  EXPECT_EQ(console.text(), "sample: begin, play mode 0, host state -1, record 'photo.jpg'\n");
  EXPECT_TRUE(effect->EndRender(nullptr)) << "any value but zero is success";
}

TEST_F(EffectTest, ReportsARenderThatCannotBeOpenedOrClosed) {
  std::string error;
  int32_t behaviour = 5;
  hfx::SetBoundValue(Find("behaviour"), &behaviour, 4);
  EXPECT_FALSE(effect->BeginRender(hfxPlayModeRender, &error));
  EXPECT_EQ(error, "BeginRender failed");
  behaviour = 1;
  hfx::SetBoundValue(Find("behaviour"), &behaviour, 4);
  EXPECT_FALSE(effect->EndRender(&error));
  EXPECT_EQ(error, "EndRender threw the integer 2");
}

TEST_F(EffectTest, TellsTheModuleThatParametersChanged) {
  SetNumberKey(Find("level"), 0.0, 4.0);
  EXPECT_TRUE(effect->ParametersChanged());
  EXPECT_EQ(KeyNumber(Find("level"), 0), 1.0);
  EXPECT_EQ(console.text(), "sample: parameters updated\n");
}

TEST_F(EffectTest, SurvivesAnUpdateCallbackThatThrows) {
  SetNumberKey(Find("level"), 0.0, -1.0);
  EXPECT_FALSE(effect->ParametersChanged());
  EXPECT_EQ(console.text(), "hfx: the update-parameters callback threw: negative level\n");
}

TEST_F(EffectTest, IsDuplicatedWithRecordAndKeys) {
  effect->instance().SetInstanceData("photo.jpg", 9);
  SetNumberKey(Find("level"), 0.0, 0.8);
  std::string error;
  const auto copy = effect->Duplicate(&error);
  ASSERT_NE(copy, nullptr) << error;
  EXPECT_THAT(console.text(), HasSubstr("parameters updated"));
  EXPECT_NE(&copy->instance(), &effect->instance());
  EXPECT_STREQ(static_cast<const char*>(copy->instance().GetInstanceData(nullptr)), "photo.jpg");
  effect.reset();
  ASSERT_TRUE(copy->Render({}, input.image(), output.image(), &error)) << error;
  EXPECT_THAT(output.bytes(), Each(204));
}

TEST_F(EffectTest, DeletesInstanceThenModel) {
  effect.reset();
  EXPECT_EQ(console.text(), "sample: instance gone\nsample: model gone\n");
}

TEST_F(EffectTest, IsNotMadeWhenAStepFailsAndTheStepIsNamed) {
  const auto createError = [&](uint16_t number) {
    std::string error;
    EXPECT_EQ(hfx::Effect::Create(*module, number, &error), nullptr);
    return error;
  };
  EXPECT_EQ(createError(0), "model 0: hfxNewModel_v1 failed");
  EXPECT_EQ(createError(2), "model 2: DescribeEffect failed");
  EXPECT_EQ(createError(3), "model 3: DeclareConnections threw: no connections today");
  EXPECT_EQ(createError(4), "model 4: CreateInstance failed");
  EXPECT_EQ(createError(5), "model 5: CreateParameters failed");
  EXPECT_EQ(createError(6), "model 6: CreateParameters threw the integer 1");
  EXPECT_EQ(createError(7), "model 7: hfxNewModel_v1 failed");
  EXPECT_EQ(hfx::Effect::Create(*module, 5, nullptr), nullptr);
}

}  // namespace
}  // namespace kelto
