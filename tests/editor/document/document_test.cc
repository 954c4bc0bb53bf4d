// Documents: what is read, changed and written is the text of a project.
#include "editor/document/document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "editor/document/command_line.h"
#include "editor/document/settings.h"
#include "host/base/error.h"
#include "tests/editor/document/samples.h"

namespace kelto::editor {
namespace {

std::string TextIn(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// `kHandMade` with a part of it replaced.
std::string HandMadeWith(const std::string& part, const std::string& with) {
  std::string text = kHandMade;
  return text.replace(text.find(part), part.size(), with);
}

TEST(Document, SavingWhatWasNotChangedChangesNoByte) {
  const Sample sample;
  WriteDocument(sample.Opened());
  EXPECT_EQ(TextIn(sample.Path()), kHandMade);
}

TEST(Document, AChangedValueIsAllThatChangesInTheFile) {
  const Sample sample;
  WriteDocument(WithMotion(sample.Opened(), host::MotionLaw::kSteady));
  EXPECT_EQ(TextIn(sample.Path()), HandMadeWith("\"fly\"", "\"steady\""));
}

TEST(Document, ASizeOfTheSameShapeKeepsTheRest) {
  const Sample sample;
  EXPECT_EQ(
      WithSize(sample.Opened(), 1280, 720).text,
      HandMadeWith("\"height\": 1080,   \"width\": 1920", "\"height\": 720,   \"width\": 1280"));
}

TEST(Document, NoChangeMakesWhatCouldNotBeReadAgain) {
  const Sample sample;
  const Document document = sample.Opened();
  EXPECT_THROW(WithSize(document, 0, 1080), host::Error);
  EXPECT_THROW(WithParameter(document, "filter", std::string("Filter: None")), host::Error);
}

TEST(Document, FaultsAreReportedAsTheCommandReportsThem) {
  const Sample sample(HandMadeWith("\"fly\"", "\"swim\""));
  try {
    sample.Opened();
    FAIL() << "was read";
  } catch (const host::Error& error) {
    EXPECT_EQ(std::string(error.what()).find(sample.Path() + ": motion: "), 0u) << error.what();
  }
}

TEST(Document, MovedElsewhereItNamesTheSamePhoto) {
  const Sample sample, other;
  const Document moved = MovedTo(sample.Opened(), other.Path());
  EXPECT_EQ(PlanOf(moved).photo, sample.Folder() + "/photo.jpg");
  EXPECT_EQ(MovedTo(moved, sample.Path()).text, kHandMade) << "and back";
}

TEST(Document, LengthScalesTheViews) {
  const Sample sample;
  const Document longer = WithLength(sample.Opened(), 15.0);
  EXPECT_EQ(PlanOf(longer).frames, 375);
}

TEST(Document, TheRateKeepsTheSeconds) {
  const Sample sample(HandMadeWith("\"width\": 1920", "\"width\": 1920, \"frames\": 250"));
  const Document faster = WithRate(sample.Opened(), "50");
  EXPECT_EQ(PlanOf(faster).frames, 500);
  EXPECT_EQ(PlanOf(WithRate(faster, "30000/1001")).format.rate.numerator, 30000);
}

TEST(Document, KeysAreWrittenAsProjectsHaveThem) {
  const Sample sample;
  const host::Setting filter{
      "filter",
      {},
      {{0.0, std::string("Filter: Triangle")}, {0.5, std::string("Filter: Kelto Hi Qual")}},
      1};
  const host::RenderPlan plan = PlanOf(WithKeys(sample.Opened(), filter));
  ASSERT_NE(plan.FindSetting("filter"), nullptr);
  EXPECT_EQ(*plan.FindSetting("filter"), filter);
}

TEST(CommandLine, QuotesWhatAShellWouldTakeApart) {
  EXPECT_EQ(ShellLine(RenderWords({"/a/tour.json", R"({"image": "a.jpg"})"}, "/a/tour.mp4")),
            "kelto render /a/tour.json -o /a/tour.mp4");
  EXPECT_EQ(ShellLine({"kelto", "it's here", ""}), "kelto 'it'\\''s here' ''");
}

}  // namespace
}  // namespace kelto::editor
