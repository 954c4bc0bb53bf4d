// A slideshow as a document: its pictures, and each of them as a film of its own.
#include "editor/document/show_changes.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "editor/document/command_line.h"
#include "editor/document/settings.h"
#include "editor/document/show_fades.h"
#include "editor/document/tour_changes.h"
#include "host/base/error.h"
#include "tests/editor/document/samples.h"

namespace kelto::editor {
namespace {

class ShowDocument : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return sample_.Folder() + "/" + name; }
  nlohmann::json Json(const Document& document) const {
    return nlohmann::json::parse(document.text);
  }
  /// The photos in order, as letters.
  static std::string Order(const Document& document) {
    std::string order;
    for (const PictureEntry& picture : PicturesOf(document)) {
      order += picture.photo[picture.photo.size() - 5];
    }
    return order;
  }

  const PhotoSizes sizes_ = [](const std::string&) { return PixelSize{400, 300}; };
  const Sample sample_{R"({
    "film": { "width": 320,  "height": 180 },
    "each": 4,
    "parameters": {"filter": {"value": "Filter: Triangle"}},
    "pictures": [
        {"image": "a.bmp",   "views": [{"view": "1"}, {"view": "2"}]},
        {"image": "b.bmp", "each": 2,  "fade": 0.5, "views": [{"view": "1"}]},
        {"image": "c.bmp", "views": [{"view": "2"}, {"view": "1"}]}
    ]
})"};
  const Document show_ = sample_.Opened();
};

TEST_F(ShowDocument, HasATitleAndCaptionsOfItsPictures) {
  const Document titled = WithTitle(show_, "Summer");
  EXPECT_EQ(Json(titled)["title"], "Summer");
  EXPECT_EQ(FadesOf(titled).title, "Summer");
  EXPECT_FALSE(Json(WithTitle(titled, "")).contains("title"));
  Document second = show_;
  second.picture = 1;
  const Document captioned = WithCaption(second, "A hill");
  EXPECT_EQ(Json(captioned)["pictures"][1]["caption"], "A hill");
  EXPECT_FALSE(Json(captioned)["pictures"][0].contains("caption"));
  EXPECT_EQ(PlanOf(captioned).caption.text, "A hill");
  EXPECT_EQ(PlanOf(WithCaption(captioned, "")).caption.text, "");
}

TEST_F(ShowDocument, ACaptionOfAllPicturesIsTakenAwayFromOne) {
  const Sample shared{R"({"film": {"width": 320, "height": 180}, "caption": "All",
      "pictures": [{"image": "a.bmp", "views": [{"view": "1"}]},
                   {"image": "b.bmp", "views": [{"view": "1"}]}]})"};
  Document document = shared.Opened();
  document = WithCaption(document, "");
  EXPECT_EQ(PlanOf(document).caption.text, "");
  document.picture = 1;
  EXPECT_EQ(PlanOf(document).caption.text, "All");
}

TEST_F(ShowDocument, EachPictureIsAFilmOfItsOwn) {
  ASSERT_TRUE(IsShow(show_));
  EXPECT_EQ(Order(show_), "abc");
  EXPECT_EQ(PicturesOf(show_)[1].seconds, 2.0);
  EXPECT_EQ(PicturesOf(show_)[1].fade, 0.5);
  Document second = show_;
  second.picture = 1;
  EXPECT_EQ(PlanOf(second).photo, Path("b.bmp"));
  EXPECT_EQ(PlanOf(second).frames, 50);
  EXPECT_EQ(PlanOf(second).format.size, (host::FrameSize{320, 180}));
}

TEST_F(ShowDocument, AChangeOfAPictureLeavesTheOthersAndTheLayout) {
  Document second = show_;
  second.picture = 1;
  const Document changed = WithPart(second, 0, {40, 30, 160, 90});
  EXPECT_EQ(Json(changed)["pictures"][1]["views"][0]["view"], "40,30,160,90");
  EXPECT_NE(changed.text.find("{\"image\": \"a.bmp\",   \"views\""), std::string::npos)
      << "the text of other pictures is as it was:\n"
      << changed.text;
  EXPECT_NE(changed.text.find("{ \"width\": 320,  \"height\": 180 }"), std::string::npos);
}

TEST_F(ShowDocument, SizeAndSharedParametersAreTheShowsLengthIsThePictures) {
  Document second = show_;
  second.picture = 1;
  const Document larger = WithSize(second, 640, 360);
  EXPECT_EQ(Json(larger)["film"]["width"], 640);
  const Document longer = WithLength(larger, 7.5);
  EXPECT_EQ(Json(longer)["pictures"][1]["each"], 7.5);
  EXPECT_FALSE(Json(longer)["film"].contains("seconds"));
  const Document finer = WithParameter(longer, "filter", std::string("Filter: Cubic"));
  EXPECT_EQ(Json(finer)["parameters"]["filter"]["value"], "Filter: Cubic");
  EXPECT_FALSE(Json(finer)["pictures"][1].contains("parameters"));
  const Document path = WithParameter(finer, "path", std::string("Path: Spline"));
  EXPECT_EQ(Json(path)["pictures"][1]["parameters"]["path"]["value"], "Path: Spline");
}

TEST_F(ShowDocument, AStopMakesThePictureAsLongAsItsViewsTake) {
  const Document more = WithStopAfter(show_, 0, {10, 10, 160, 90});
  EXPECT_EQ(PlanOf(more).views.size(), 3u);
  const double seconds = host::SecondsOf(PlanOf(more).views);
  EXPECT_NEAR(PicturesOf(more)[0].seconds, seconds, 0.04);
  EXPECT_GT(seconds, 4.0);
  EXPECT_EQ(PicturesOf(more)[2].seconds, 4.0);
}

TEST_F(ShowDocument, SoundIsTheShows) {
  const Document music = WithAudio(show_, Path("music.mp3"));
  EXPECT_EQ(Json(music)["audio"], "music.mp3");
  EXPECT_FALSE(Json(WithAudio(music, "")).contains("audio"));
  EXPECT_THROW(WithVideo(show_, Path("clip.mp4")), host::Error);
}

TEST_F(ShowDocument, PicturesAreMovedRemovedAndAdded) {
  const Document moved = WithPictureMoved(show_, 0, 2);
  EXPECT_EQ(Order(moved), "bca");
  EXPECT_EQ(moved.picture, 2u) << "the picture that was moved is still the one being edited";
  EXPECT_EQ(Order(WithPictureMoved(moved, 2, 0)), "abc");
  const Document fewer = WithoutPicture(moved, 0);
  EXPECT_EQ(Order(fewer), "ca");
  EXPECT_EQ(fewer.picture, 1u);
  EXPECT_THROW(WithoutPicture(WithoutPicture(fewer, 0), 0), host::Error);
  const Document more = WithPhotosAdded(fewer, 1, {Path("b.bmp"), Path("a.bmp")}, sizes_);
  EXPECT_EQ(Order(more), "cbaa");
  EXPECT_EQ(more.picture, 1u);
  EXPECT_EQ(PlanOf(more).views.size(), 2u) << "what is added moves";
}

TEST_F(ShowDocument, TimesAreChangedByThemselves) {
  const Document changed = WithFade(WithEach(show_, 2, 6.25), 0, 1.5);
  EXPECT_EQ(PicturesOf(changed)[2].seconds, 6.24);  // whole frames
  EXPECT_EQ(Json(changed)["pictures"][2]["each"], 6.25);
  EXPECT_EQ(PicturesOf(changed)[0].fade, 1.5);
  EXPECT_EQ(PicturesOf(changed)[1].fade, 0.5);
}

TEST_F(ShowDocument, AFilmOfOnePictureBecomesAShow) {
  const Document one{Path("one.json"),
                     R"({"image": "a.bmp", "film": {"width": 320, "height": 180, "seconds": 3},
                         "views": [{"view": "1"}, {"view": "2"}], "caption": "One",
                         "parameters": {"path": {"value": "Path: Spline"}}})"};
  const Document show = WithPhotosAdded(one, 1, {Path("b.bmp")}, sizes_);
  ASSERT_TRUE(IsShow(show));
  EXPECT_EQ(Order(show), "ab");
  Document first = show;
  first.picture = 0;
  EXPECT_EQ(PlanOf(first).frames, PlanOf(one).frames);
  EXPECT_EQ(PlanOf(first).views, PlanOf(one).views);
  EXPECT_EQ(*PlanOf(first).FindSetting("path"), *PlanOf(one).FindSetting("path"));
  EXPECT_EQ(PlanOf(first).caption.text, "One");
  Document second = show;
  second.picture = 1;
  EXPECT_EQ(PlanOf(second).caption.text, "");
}

TEST_F(ShowDocument, KnowsWhereInTheSoundEachPictureBegins) {
  const std::string pictures = R"("pictures": [
    {"image": "a.bmp", "each": 3, "fade": 0.5}, {"image": "b.bmp", "each": 2}, {"image": "c.bmp",
     "each": 1}]})";
  const auto begins = [&](const std::string& before) {
    std::vector<double> seconds;
    for (const PictureEntry& picture : PicturesOf({Path("show.json"), "{" + before + pictures})) {
      seconds.push_back(picture.begin);
    }
    return seconds;
  };
  // Half a second of 25 frames is 13 of them, as in the film. The usual fade of a second is half of
  // the last picture's at the most.
  EXPECT_EQ(begins(""), (std::vector{0.0, 2.48, 4.0}));
  EXPECT_EQ(begins(R"("title": "T", )"), (std::vector{3.48, 5.96, 7.48}));
}

TEST_F(ShowDocument, KnowsWhatFadesShowBesideEachPicture) {
  Document document = show_;
  FadesAround fades = FadesOf(document);
  EXPECT_FALSE(fades.before);
  EXPECT_EQ(fades.in, 0);
  EXPECT_EQ(fades.out, 25) << "the usual second";
  EXPECT_EQ(fades.after->photo, Path("b.bmp"));
  document.picture = 1;
  fades = FadesOf(document);
  EXPECT_EQ(fades.before->photo, Path("a.bmp"));
  EXPECT_EQ(fades.in, 25) << "half of the two seconds for which it is seen";
  EXPECT_EQ(fades.out, 13) << "its own half second";
  EXPECT_EQ(fades.after->photo, Path("c.bmp"));
  EXPECT_FALSE(fades.dip);
  document.picture = 2;
  EXPECT_EQ(FadesOf(document).out, 0) << "nothing comes behind the last";
  nlohmann::json json = Json(show_);
  json["title"] = "Summer";
  json["fadeKind"] = "dip";
  fades = FadesOf({show_.path, json.dump()});
  EXPECT_EQ(fades.title, "Summer");
  EXPECT_EQ(fades.titleFrames, 100);
  EXPECT_EQ(fades.in, 25);
  EXPECT_TRUE(fades.dip);
  EXPECT_EQ(FadesOf(PictureAlone(show_)).out, 0) << "a film of one picture has none";
}

TEST_F(ShowDocument, KnowsWhatSettlesTheDepthOfItsFilm) {
  const auto depths = [&](const char* ofAll, const char* ofOne) {
    nlohmann::json json = Json(show_);
    json.update(nlohmann::json::parse(ofAll));
    json["pictures"][1].update(nlohmann::json::parse(ofOne));
    return *FadesOf({show_.path, json.dump()}).depths;
  };
  const ShowDepths plain = depths("{}", "{}");
  EXPECT_EQ(plain.photos, (std::vector{Path("a.bmp"), Path("b.bmp"), Path("c.bmp")}));
  EXPECT_TRUE(plain.possible);
  EXPECT_FALSE(plain.needed) << "but for its photos";
  EXPECT_TRUE(depths(R"({"linearLight": true})", "{}").needed);
  EXPECT_TRUE(depths("{}", R"({"transparent": true})").needed);
  EXPECT_FALSE(
      depths("{}", R"({"parameters": {"levels": {"value": "Source Has 601 Levels"}}})").possible);
  EXPECT_FALSE(FadesOf(PictureAlone(show_)).depths) << "a film of one picture";
}

TEST_F(ShowDocument, MovesByNameBecomeViewsThatCanBeSeen) {
  const Document moves{Path("moves.json"), R"({"move": "mixed", "pictures": [
    {"image": "a.bmp"}, {"image": "b.bmp", "move": "left"},
    {"image": "c.bmp", "views": [{"view": "2"}]}]})"};
  const Document views = WithMovesAsViews(moves, sizes_);
  const nlohmann::json json = Json(views);
  for (size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(json["pictures"][i]["views"].size(), 2u) << i;
    EXPECT_FALSE(json["pictures"][i].contains("move")) << i;
  }
  EXPECT_FALSE(json.contains("move"));
  EXPECT_EQ(json["pictures"][2], Json(moves)["pictures"][2]);
  EXPECT_EQ(WithMovesAsViews(views, sizes_), views);
}

TEST_F(ShowDocument, OfPhotosIsReadAgain) {
  const Document made = NewShow({Path("a.bmp"), Path("b.bmp")}, Path("new.json"), sizes_);
  EXPECT_EQ(Order(made), "ab");
  EXPECT_EQ(PlanOf(made).views.size(), 2u);
  WriteDocument(made);
  EXPECT_EQ(ReadDocument(Path("new.json")), made);
  const auto missing = [](const std::string& photo) -> PixelSize {
    throw host::Error(photo + ": there is no such file");
  };
  EXPECT_THROW(NewShow({Path("missing.bmp")}, Path("new.json"), missing), host::Error);
}

TEST_F(ShowDocument, ElsewhereItNamesTheSamePhotos) {
  const Document moved = MovedTo(show_, "/tmp/elsewhere.json");
  EXPECT_EQ(PicturesOf(moved), PicturesOf(show_));
}

TEST_F(ShowDocument, IsMadeByAnotherCommand) {
  EXPECT_EQ(RenderWords(show_, "/f.mp4")[1], "slideshow");
  const Document alone = PictureAlone(show_);
  EXPECT_FALSE(IsShow(alone));
  EXPECT_EQ(PlanOf(alone).views, PlanOf(show_).views);
}

}  // namespace
}  // namespace kelto::editor
