// Parameters as an instance lists them: classes, groups, ownership.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/runtime/hfx/console_capture.h"
#include "tests/runtime/hfx/editable_instance.h"

namespace kelto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Parameter : public testing::Test {
 protected:
  EditableInstance instance;
};

TEST_F(Parameter, IsListedInOrderOfCreationWithItsGroup) {
  EXPECT_THAT(hfx::ParametersOf(instance),
              ElementsAre(instance.group, instance.list, instance.flag, instance.number,
                          instance.point, instance.color));
  EXPECT_EQ(hfx::GroupOf(*instance.list), nullptr);
  EXPECT_EQ(hfx::GroupOf(*instance.color), instance.group);
  EXPECT_EQ(instance.group->GetFlag(), 1);
}

TEST_F(Parameter, IsFoundByItsKey) {
  EXPECT_EQ(instance.FindParameter("number"), instance.number);
  EXPECT_EQ(instance.FindParameter("group"), instance.group);
  EXPECT_EQ(instance.FindParameter("Number"), nullptr);
  EXPECT_EQ(instance.FindParameter(nullptr), nullptr);
  EXPECT_STREQ(instance.number->GetKeyName(), "number");
  EXPECT_STREQ(instance.number->GetDisplayName(), "Number");
  EXPECT_STREQ(instance.list->GetDisplayName(), "");
}

TEST_F(Parameter, TellsItsKindAndTheSizeOfItsValue) {
  using hfx::ParamKind;
  const std::vector<std::pair<ParamKind, int32_t>> expected = {
      {ParamKind::Group, 0},  {ParamKind::List, 4},     {ParamKind::Boolean, 1},
      {ParamKind::Number, 8}, {ParamKind::Point2D, 16}, {ParamKind::ColorRGB, 24}};
  std::vector<std::pair<ParamKind, int32_t>> told;
  for (const hfxParameter* each : hfx::ParametersOf(instance)) {
    told.emplace_back(hfx::KindOf(*each), hfx::ValueSizeOf(*each));
  }
  EXPECT_EQ(told, expected);
}

TEST_F(Parameter, IsCastToItsClassAndNoOther) {
  hfxParameter* number = instance.FindParameter("number");
  EXPECT_EQ(dynamic_cast<hfxPNumber*>(number), instance.number);
  EXPECT_EQ(dynamic_cast<hfxPPoint2D*>(number), nullptr);
}

TEST_F(Parameter, KeepsWhatAPanelNeeds) {
  EXPECT_EQ(instance.number->GetLower(), 0.1);
  EXPECT_EQ(instance.number->GetUpper(), 20.0);
  EXPECT_EQ(instance.number->GetStep(), 0.01);
  EXPECT_EQ(instance.number->GetNumberType(), 3);
  EXPECT_EQ(instance.number->GetFlag(), 1);
  EXPECT_EQ(instance.list->GetListType(), 1);
  EXPECT_EQ(instance.list->GetNumEntries(), 3);
  EXPECT_STREQ(instance.list->GetEntry(2), "Two");
  EXPECT_EQ(instance.list->GetEntry(3), nullptr);
  EXPECT_EQ(instance.list->GetEntry(-1), nullptr);
}

TEST_F(Parameter, KeepsTheModulesUserData) {
  EXPECT_EQ(instance.number->GetUserData(), nullptr);
  instance.number->SetUserData(&instance);
  EXPECT_EQ(instance.number->GetUserData(), &instance);
}

TEST_F(Parameter, OfATakenKeyIsNeitherListedNorFoundButStaysUsable) {
  double field = 1.0;
  hfxPNumber* second = hfxPNumber::New("", "number", &field, 8, 0, 1, 0.1, 0, 0);
  instance.AddParameter(second, nullptr);
  EXPECT_EQ(hfx::ParametersOf(instance).size(), 6u);
  EXPECT_EQ(instance.FindParameter("number"), instance.number);
  second->SetUserData(&field);
  EXPECT_EQ(SetNumberKey(*second, 0.0, 3.0), 0);
}

TEST_F(Parameter, IsIgnoredWhenNullOrAddedAlready) {
  instance.AddParameter(nullptr, nullptr);
  instance.AddParameter(instance.number, nullptr);
  EditableInstance other;
  other.AddParameter(instance.number, nullptr);
  EXPECT_EQ(hfx::ParametersOf(instance).size(), 6u);
  EXPECT_EQ(hfx::ParametersOf(other).size(), 6u);
  EXPECT_EQ(hfx::GroupOf(*instance.number), instance.group);
}

TEST_F(Parameter, UnderAGroupOfAnotherInstanceStandsAtTheTopLevel) {
  EditableInstance other;
  double field = 0.0;
  hfxPNumber* added = hfxPNumber::New("", "extra", &field, 8, 0, 1, 0.1, 0, 0);
  instance.AddParameter(added, other.group);
  EXPECT_EQ(hfx::GroupOf(*added), nullptr);
  hfxPGroup* own = hfxPGroup::New("", "own", 0);
  instance.AddParameter(own, own);
  EXPECT_EQ(hfx::GroupOf(*own), nullptr);
}

TEST_F(Parameter, DeletedByTheModuleLeavesItsInstance) {
  delete instance.group;
  EXPECT_EQ(instance.FindParameter("group"), nullptr);
  EXPECT_EQ(hfx::ParametersOf(instance).size(), 5u);
  EXPECT_EQ(hfx::GroupOf(*instance.number), nullptr);
}

TEST_F(Parameter, WithNullTextsAndEntriesCountsThemAsEmpty) {
  int32_t field = 0;
  hfxPList* list = hfxPList::New(nullptr, nullptr, &field, 4, nullptr, 0);
  instance.AddParameter(list, nullptr);
  EXPECT_STREQ(list->GetKeyName(), "");
  EXPECT_STREQ(list->GetDisplayName(), "");
  EXPECT_EQ(list->GetNumEntries(), 0);
  EXPECT_EQ(list->GetEntry(0), nullptr);
}

TEST_F(Parameter, WithoutAFieldOfItsSizeHoldsAValueOfItsOwn) {
  ConsoleCapture console;
  float narrow = 3.0f;
  hfxPNumber* wrongSize = hfxPNumber::New("", "a", &narrow, 4, 0, 1, 0.1, 0, 0);
  hfxPNumber* noField = hfxPNumber::New("", "b", nullptr, 8, 0, 1, 0.1, 0, 0);
  EXPECT_THAT(console.text(), HasSubstr("\"a\" is bound to a field of another size"));
  EXPECT_THAT(console.text(), HasSubstr("\"b\" is bound to nothing"));
  instance.AddParameter(wrongSize, nullptr);
  instance.AddParameter(noField, nullptr);
  for (hfxPNumber* each : {wrongSize, noField}) {
    EXPECT_EQ(NumberAt(*each, 0.0), 0.0);
    SetNumberKey(*each, 0.0, 5.0);
  }
  hfx::WriteBoundFields(instance, 0.0);
  EXPECT_EQ(narrow, 3.0f);
  double value = 0.0;
  EXPECT_TRUE(hfx::BoundValueOf(*noField, &value, 8));
  EXPECT_EQ(value, 5.0);
}

TEST(Parameters, AreDeletedLastMadeFirstWithTheirInstance) {
  // A parameter class of a module's own records when it goes.
  struct Recorded : hfxParameter {
    Recorded(const char* key, std::string* record)
        : hfxParameter("", key, nullptr, 0), order(record) {}
    ~Recorded() override { *order += GetKeyName(); }
    std::string* order;
  };
  std::string order;
  {
    hfxInstance_v1 instance;
    for (const char* key : {"a", "b", "c"}) {
      instance.AddParameter(new Recorded(key, &order), nullptr);
    }
    EXPECT_EQ(hfx::KindOf(*instance.FindParameter("a")), hfx::ParamKind::Group);
  }
  EXPECT_EQ(order, "cba");
}

}  // namespace
}  // namespace kelto
