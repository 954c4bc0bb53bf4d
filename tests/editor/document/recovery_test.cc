// What was not saved is found again.
#include "editor/document/recovery.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/editor/document/samples.h"

namespace kelto::editor {
namespace {

TEST(Recovery, FindsWhatWasKept) {
  const Sample sample;
  const Document document = sample.Opened();
  Document changed = document;
  changed.text.replace(changed.text.find("1920"), 4, "1280");
  KeepUnsaved(changed, document.text);
  const auto found = FindUnsaved(document.path);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->document, changed);
  EXPECT_FALSE(found->fileChanged);
  ForgetUnsaved(document.path);
  EXPECT_FALSE(FindUnsaved(document.path));
}

TEST(Recovery, WhatTheFileHasIsNotUnsaved) {
  const Sample sample;
  const Document document = sample.Opened();
  KeepUnsaved(document, "");
  EXPECT_FALSE(FindUnsaved(document.path));
}

TEST(Recovery, SaysThatTheFileHasChangedSince) {
  const Sample sample;
  Document changed = sample.Opened();
  const std::string before = changed.text;
  changed.text += "\n";
  KeepUnsaved(changed, before);
  std::ofstream(changed.path, std::ios::app) << "  ";
  const auto found = FindUnsaved(changed.path);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->fileChanged);
}

TEST(Recovery, OffersNothingThatIsNoProject) {
  const Sample sample;
  KeepUnsaved({sample.Path(), "{\"film\": 1}"}, "");
  EXPECT_FALSE(FindUnsaved(sample.Path()));
  std::ofstream(RecoveryPath(sample.Path())) << "{\"unsaved\": ";
  EXPECT_FALSE(FindUnsaved(sample.Path())) << "half a file";
  std::ofstream(RecoveryPath(sample.Path())) << "{\"unsaved\": 3}";
  EXPECT_FALSE(FindUnsaved(sample.Path()));
}

}  // namespace
}  // namespace kelto::editor
