// The module file as a host meets it: loaded at run time, asked through its entry points.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

#include "platform/ipl.h"
#include "runtime/hfx/host.h"

namespace kelto {
namespace {

class LoadedModule : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    module = hfx::Module::Load(KELTO_MODULE, &error);
    ASSERT_TRUE(module) << error;
  }
  std::unique_ptr<hfx::Module> module;
};

TEST_F(LoadedModule, StartUpSilencesTheImageLibraryAndReportsSuccess) {
  iplSetErrMode(IPL_ErrModeLeaf);
  EXPECT_EQ(module->startUp(), 1);
  EXPECT_EQ(iplGetErrMode(), IPL_ErrModeSilent);
  module->shutDown();
}

TEST_F(LoadedModule, ThereIsOneModelNumberedOne) {
  EXPECT_EQ(module->numModels(), 1);
  EXPECT_EQ(module->newModel(0), nullptr);
  EXPECT_EQ(module->newModel(2), nullptr);
  hfxModel_v1* model = module->newModel(1);
  ASSERT_NE(model, nullptr);
  EXPECT_TRUE(model->QueryCapability(0) && model->QueryCapability(7));
  delete model;
}

TEST_F(LoadedModule, Attribute12AnswersOneByteAndAllElseNothing) {
  uint8_t area[4] = {9, 9, 9, 9};
  EXPECT_EQ(module->getModelAttributes(1, 12, area), 1);
  EXPECT_EQ(area[0], 1);
  EXPECT_EQ(area[1], 9) << "one byte only";
  area[0] = 9;
  EXPECT_EQ(module->getModelAttributes(2, 12, area), 0);
  EXPECT_EQ(module->getModelAttributes(1, 12, nullptr), 0);
  EXPECT_EQ(module->getModelAttributes(1, 15, area), 0);
  EXPECT_EQ(module->getModelAttributes(1, 3, area), 0);
  EXPECT_EQ(area[0], 9);
}

TEST_F(LoadedModule, SetAttributeWritesZeroForEveryNumber) {
  for (const int32_t attribute : {0, 1, 12, 15, -1}) {
    int32_t result = 77;
    EXPECT_EQ(module->setAttribute(5, attribute, 0, &result), 0);
    EXPECT_EQ(result, 0) << attribute;
  }
}

TEST_F(LoadedModule, ThereIsNeverAnOverlay) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(module->newOverlay(), nullptr);
}

TEST_F(LoadedModule, TheModelDescribesTheEffect) {
  std::string error;
  const auto effect = hfx::Effect::Create(*module, 1, &error);
  ASSERT_TRUE(effect) << error;
  const hfx::ModelDescription& d = hfx::DescriptionOf(effect->model());
  EXPECT_EQ(d.type, 0);
  EXPECT_EQ(d.name, "Kelto Pan & Zoom");
  EXPECT_EQ(d.version, 3.0f);
  EXPECT_EQ(d.vendor, "Kelto");
  EXPECT_EQ(d.category, "Image");
  ASSERT_EQ(d.formats.size(), 2u);
  EXPECT_EQ(d.formats[0].colorspace, 1);
  EXPECT_EQ(d.formats[0].depth, 8);
  EXPECT_EQ(d.formats[0].imgFormat, 9);
  EXPECT_FALSE(d.formats[0].named);
  EXPECT_EQ(d.formats[1].colorspace, 0);
  EXPECT_EQ(d.formats[1].imgFormat, 2);
  ASSERT_EQ(d.inputs.size(), 1u);
  EXPECT_EQ(d.inputs[0].displayName, "Input1");
  EXPECT_EQ(d.inputs[0].key, "input1");
  ASSERT_EQ(d.outputs.size(), 1u);
  EXPECT_EQ(d.outputs[0].displayName, "Output");
  EXPECT_EQ(d.outputs[0].key, "output");
  EXPECT_NE(d.updateParams, nullptr);
}

int g_asked = 0;
int32_t HostStateOne() {
  ++g_asked;
  return 1;
}

TEST_F(LoadedModule, TheHostStateCallbackIsAskedWhenARenderBeginsUntilCleared) {
  int32_t result;
  module->setAttribute(0, 0, reinterpret_cast<intptr_t>(&HostStateOne), &result);
  std::string error;
  const auto effect = hfx::Effect::Create(*module, 1, &error);
  g_asked = 0;
  EXPECT_EQ(effect->instance().BeginRender(), 1);
  EXPECT_EQ(g_asked, 1);
  EXPECT_EQ(effect->instance().EndRender(), -1);
  module->setAttribute(0, 0, 0, &result);
  effect->instance().BeginRender();
  EXPECT_EQ(g_asked, 1);
}

#if !defined(_WIN32)
TEST(ModuleFile, ExportsTheSevenEntryPointsAndNothingElse) {
  const std::string command = std::string("nm -D --defined-only '") + KELTO_MODULE + "'";
  FILE* nm = popen(command.c_str(), "r");
  ASSERT_NE(nm, nullptr);
  std::set<std::string> names;
  std::array<char, 512> line;
  while (fgets(line.data(), line.size(), nm)) {
    std::string text = line.data();
    text.erase(text.find_last_not_of('\n') + 1);
    names.insert(text.substr(text.rfind(' ') + 1));
  }
  EXPECT_EQ(pclose(nm), 0);
  const std::set<std::string> entries = {"hfxStartUp_v1",    "hfxShutDown_v1",
                                         "hfxNumModels_v1",  "hfxNewModel_v1",
                                         "hfxNewOverlay_v1", "hfxGetModelAttributes_v1ext",
                                         "hfxSetAttribute"};
  EXPECT_EQ(names, entries);
}
#endif

}  // namespace
}  // namespace kelto
