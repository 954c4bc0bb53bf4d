// Undo and redo: everything is a step, a drag is one.
#include "editor/document/history.h"

#include <gtest/gtest.h>

namespace kelto::editor {
namespace {

Document Text(const std::string& text) { return {"p.json", text}; }

TEST(History, GoesBackAndForth) {
  History history;
  history.Begin(Text("a"), true);
  EXPECT_FALSE(history.CanUndo());
  history.Do(Text("b"), "First");
  history.Do(Text("c"), "Second");
  EXPECT_EQ(history.UndoName(), "Second");
  history.Undo();
  EXPECT_EQ(history.Current().text, "b");
  EXPECT_EQ(history.UndoName(), "First");
  EXPECT_EQ(history.RedoName(), "Second");
  history.Undo();
  EXPECT_EQ(history.Current().text, "a");
  history.Redo();
  history.Redo();
  EXPECT_EQ(history.Current().text, "c");
  EXPECT_FALSE(history.CanRedo());
}

TEST(History, ADragIsOneStep) {
  History history;
  history.Begin(Text("a"), true);
  for (const char* text : {"b", "c", "d"}) history.Do(Text(text), "Move", 7);
  history.Undo();
  EXPECT_EQ(history.Current().text, "a");
  history.Redo();
  EXPECT_EQ(history.Current().text, "d");
}

TEST(History, TwoDragsAreTwoSteps) {
  History history;
  history.Begin(Text("a"), true);
  history.Do(Text("b"), "Move", 7);
  history.EndGesture();
  history.Do(Text("c"), "Move", 7);
  history.Do(Text("d"), "Move", 8);
  history.Undo();
  EXPECT_EQ(history.Current().text, "c");
  history.Undo();
  EXPECT_EQ(history.Current().text, "b");
}

TEST(History, ADragAfterUndoKeepsWhatTheUndoneOneBeganWith) {
  History history;
  history.Begin(Text("a"), true);
  history.Do(Text("b"), "Move", 7);
  history.Undo();
  history.Do(Text("c"), "Move", 7);
  history.Undo();
  EXPECT_EQ(history.Current().text, "a");
}

TEST(History, WhatChangesNothingIsNoStep) {
  History history;
  history.Begin(Text("a"), true);
  history.Do(Text("a"), "Move");
  EXPECT_FALSE(history.CanUndo());
  EXPECT_FALSE(history.Modified());
}

TEST(History, IsUnmodifiedWhereverTheFileAgrees) {
  History history;
  history.Begin(Text("a"), true);
  history.Do(Text("b"), "Move");
  EXPECT_TRUE(history.Modified());
  history.Undo();
  EXPECT_FALSE(history.Modified());
  history.Redo();
  history.Saved("p.json");
  EXPECT_FALSE(history.Modified());
  history.Undo();
  EXPECT_TRUE(history.Modified()) << "the file has what was undone";
}

TEST(History, AProjectInNoFileIsModified) {
  History history;
  history.Begin(Text("a"), false);
  EXPECT_TRUE(history.Modified());
  EXPECT_FALSE(history.HasFile());
}

TEST(History, ForgetsTheOldestWhenItHoldsTooMuch) {
  History history;
  history.Begin(Text("0"), true);
  for (int i = 1; i <= 40; ++i) {
    history.Do(Text(std::string(size_t{4} << 20, static_cast<char>('A' + i))), "Grow");
  }
  int steps = 0;
  for (; history.CanUndo(); ++steps) history.Undo();
  EXPECT_GE(steps, 10);
  EXPECT_LE(steps, 17) << "64 MiB hold sixteen of four";
}

}  // namespace
}  // namespace kelto::editor
