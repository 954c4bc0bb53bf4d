#include <gtest/gtest.h>

#include "runtime/hfx/host.h"

namespace kelto {
namespace {

bool Accept(hfxInstance_v1*) { return true; }

TEST(Model, KeepsWhatItSaidOfItselfInTheOrderItSaidIt) {
  hfxModel_v1 model;
  model.SetType(0);
  model.SetName("Name");
  model.SetPluginVersion(3.25f);
  model.SetVendor("Vendor");
  model.SetCategory("Category");
  model.AddFormat(1, 8, nullptr, 9);
  model.AddFormat(0, 8, "named", 2);
  model.AddInput(0, "Input1", "input1", 0);
  model.AddInput(1, "Input2", "input2", 5);
  model.AddOutput(0, "Output", "output", 0);
  model.SetUpdateParamsCallback(Accept);

  const hfx::ModelDescription& told = hfx::DescriptionOf(model);
  EXPECT_EQ(told.type, 0);
  EXPECT_EQ(told.name, "Name");
  EXPECT_EQ(told.version, 3.25f);
  EXPECT_EQ(told.vendor, "Vendor");
  EXPECT_EQ(told.category, "Category");
  ASSERT_EQ(told.formats.size(), 2u);
  EXPECT_EQ(told.formats[0].colorspace, 1);
  EXPECT_EQ(told.formats[0].depth, 8);
  EXPECT_EQ(told.formats[0].imgFormat, 9);
  EXPECT_FALSE(told.formats[0].named);
  EXPECT_TRUE(told.formats[1].named);
  EXPECT_EQ(told.formats[1].name, "named");
  ASSERT_EQ(told.inputs.size(), 2u);
  EXPECT_EQ(told.inputs[1].index, 1);
  EXPECT_EQ(told.inputs[1].displayName, "Input2");
  EXPECT_EQ(told.inputs[1].key, "input2");
  EXPECT_EQ(told.inputs[1].dataType, 5);
  ASSERT_EQ(told.outputs.size(), 1u);
  EXPECT_EQ(told.outputs[0].key, "output");
  EXPECT_EQ(told.updateParams, Accept);
}

TEST(Model, ThatOverridesNothingHasThePlainAnswers) {
  hfxModel_v1 model;
  EXPECT_FALSE(model.DescribeEffect());
  EXPECT_TRUE(model.DeclareConnections());
  EXPECT_EQ(model.CreateInstance(), nullptr);
  EXPECT_STREQ(model.GetInitString(), "");
  EXPECT_FALSE(model.QueryCapability(1));
  EXPECT_FALSE(model.UseHardwareList());
  EXPECT_FALSE(model.UseLibraryList());
  EXPECT_EQ(hfx::DescriptionOf(model).type, -1);
}

TEST(Model, TakesNullTextsForEmptyOnes) {
  hfxModel_v1 model;
  model.SetName(nullptr);
  model.SetVendor(nullptr);
  model.SetCategory(nullptr);
  model.AddInput(0, nullptr, nullptr, 0);
  EXPECT_EQ(hfx::DescriptionOf(model).name, "");
  EXPECT_EQ(hfx::DescriptionOf(model).inputs[0].key, "");
}

TEST(Model, DeletesInstancesThroughTheirOwnDestructor) {
  struct Watched : hfxInstance_v1 {
    explicit Watched(bool* gone) : gone_(gone) {}
    ~Watched() override { *gone_ = true; }
    bool* gone_;
  };
  hfxModel_v1 model;
  bool gone = false;
  model.DeleteInstance(new Watched(&gone));
  EXPECT_TRUE(gone);
  model.DeleteInstance(nullptr);
}

}  // namespace
}  // namespace kelto
