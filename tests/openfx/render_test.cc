// What the plug-in draws for a strict host, beside the command's frames.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>

#include "adapters/pages/controls.h"
#include "tests/adapters/run.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

constexpr Size kOpenFxSize{321, 181};
const Words kOpenFxMove{"--frames", "8", "--from", "1.2@0.1,0", "--to", "2@-0.2,0.1"};

ofx::RectI Whole(Size size) { return {0, 0, size.width, size.height}; }

HostImage ImageOf(const ofx::RectI& bounds, const char* depth = ofx::value::kByte) {
  HostImage image{bounds, bounds, depth};
  image.Make();
  return image;
}

/// Random pixels, colours not above alpha.
void FillAtRandom(HostImage& image, unsigned seed) {
  std::mt19937 random(seed);
  for (int y = image.bounds.y1; y < image.bounds.y2; ++y) {
    for (int x = image.bounds.x1; x < image.bounds.x2; ++x) {
      uint8_t* at = image.At(x, y);
      const auto alpha = static_cast<uint8_t>(random() % 256);
      for (int i = 0; i < 3; ++i) at[i] = static_cast<uint8_t>(random() % (alpha + 1u));
      at[3] = alpha;
    }
  }
}

/// The image's pixels as the command writes them: B, G, R, A from the top.
std::vector<uint8_t> BgraOf(HostImage& image) {
  std::vector<uint8_t> bytes;
  for (int y = image.bounds.y2 - 1; y >= image.bounds.y1; --y) {
    for (int x = image.bounds.x1; x < image.bounds.x2; ++x) {
      const uint8_t* at = image.At(x, y);
      bytes.insert(bytes.end(), {at[2], at[1], at[0], at[3]});
    }
  }
  return bytes;
}

class OpenFx : public testing::Test {
 protected:
  OpenFx() { WriteTestPhoto(photo_, 1200, 750); }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  /// A host with an instance that moves over the photograph in eight frames.
  std::unique_ptr<StrictHost> Moving(const char* context, HostLacks lacks = {}) {
    auto host = std::make_unique<StrictHost>(BuiltPlugin(), lacks);
    EXPECT_EQ(host->Start(context), ofx::kOk);
    host->parameter("filename").text = photo_;
    host->parameter("from").text = "1.2@0.1,0";
    host->parameter("to").text = "2@-0.2,0.1";
    host->parameter("progress").number = [](double time) { return time / 7.0; };
    EXPECT_EQ(host->Create(), ofx::kOk);
    return host;
  }

  Frames Film(StrictHost& host, Size size) {
    Frames film{size.width, size.height, {}};
    for (int i = 0; i < 8; ++i) {
      HostImage image = ImageOf(Whole(size));
      EXPECT_EQ(host.Run({.time = double(i), .output = &image}), ofx::kOk);
      const auto bytes = BgraOf(image);
      film.bytes.insert(film.bytes.end(), bytes.begin(), bytes.end());
    }
    return film;
  }

  TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
};

TEST_F(OpenFx, AFilmIsTheCommandsToTheByteInEveryContext) {
  const Frames command = RenderByCommand(photo_, kOpenFxSize, kOpenFxMove);
  ASSERT_EQ(command.Count(), 8u);
  for (const char* context :
       {ofx::context::kFilter, ofx::context::kGeneral, ofx::context::kGenerator}) {
    const auto host = Moving(context);
    EXPECT_EQ(Film(*host, kOpenFxSize).bytes, command.bytes) << context;
  }
}

TEST_F(OpenFx, AProjectRunsByItself) {
  const std::string project = folder_ / "film.json";
  WriteTestProject(project, "photo.bmp", 8);
  StrictHost host(BuiltPlugin());
  ASSERT_EQ(host.Start(ofx::context::kGenerator), ofx::kOk);
  host.parameter("filename").text = project;
  ASSERT_EQ(host.Create(), ofx::kOk);
  ExpectSameFrames(Film(host, kOpenFxSize), RenderByCommand(project, kOpenFxSize, {}), "project");
}

TEST_F(OpenFx, RowsOfAnySignAndLengthHoldTheSamePixels) {
  const auto host = Moving(ofx::context::kGenerator);
  HostImage plain = ImageOf(Whole(kOpenFxSize));
  ASSERT_EQ(host->Run({.time = 3.0, .output = &plain}), ofx::kOk);
  for (const bool topDown : {false, true}) {
    for (const int padding : {0, 3, 129}) {
      HostImage image = ImageOf(Whole(kOpenFxSize));
      image.topDown = topDown;
      image.padding = padding;
      image.Make();
      ASSERT_EQ(host->Run({.time = 3.0, .output = &image}), ofx::kOk);
      EXPECT_EQ(BgraOf(image), BgraOf(plain)) << topDown << " " << padding;
      EXPECT_TRUE(image.GuardsHold()) << topDown << " " << padding;
    }
  }
}

TEST_F(OpenFx, AnyTilingIsOneWindowToTheBit) {
  const auto host = Moving(ofx::context::kGenerator);
  for (const char* depth : {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat}) {
    HostImage whole = ImageOf(Whole(kOpenFxSize), depth), tiled = whole;
    ASSERT_EQ(host->Run({.time = 2.0, .output = &whole}), ofx::kOk);
    const std::vector<uint8_t> untouched = tiled.memory;
    for (int y = 0; y < kOpenFxSize.height; y += 61) {
      for (int x = 0; x < kOpenFxSize.width; x += 83) {
        const ofx::RectI window{x, y, std::min(x + 83, kOpenFxSize.width),
                                std::min(y + 61, kOpenFxSize.height)};
        ASSERT_EQ(host->Run({.time = 2.0, .window = window, .output = &tiled}), ofx::kOk);
      }
    }
    EXPECT_EQ(tiled.memory, whole.memory) << depth;
    // Images of a tile alone, as a host with little memory hands them out.
    HostImage part{{100, 20, 180, 90}, Whole(kOpenFxSize), depth};
    part.Make();
    ASSERT_EQ(host->Run({.time = 2.0, .output = &part}), ofx::kOk);
    for (int y = 20; y < 90; ++y) {
      ASSERT_EQ(std::memcmp(part.At(100, y), whole.At(100, y), 80 * part.PixelBytes()), 0) << y;
    }
    // A window of one pixel leaves all others alone.
    HostImage one = ImageOf(Whole(kOpenFxSize), depth);
    ASSERT_EQ(host->Run({.time = 2.0, .window = ofx::RectI{5, 7, 6, 8}, .output = &one}), ofx::kOk);
    EXPECT_EQ(std::memcmp(one.At(5, 7), whole.At(5, 7), one.PixelBytes()), 0);
    std::memcpy(one.At(5, 7), untouched.data(), one.PixelBytes());
    EXPECT_EQ(one.memory, untouched);
  }
}

TEST_F(OpenFx, AScaledImageIsTheSmallerFrame) {
  const auto host = Moving(ofx::context::kGenerator);
  const Size half{160, 90};
  const Frames command = RenderByCommand(photo_, half, kOpenFxMove);
  for (const bool withScale : {true, false}) {
    HostImage image = ImageOf(Whole(half));
    ASSERT_EQ(host->Run({.time = 0.0,
                         .withScaleAndField = withScale,
                         .scaleX = 0.5,
                         .scaleY = 0.5,
                         .output = &image}),
              ofx::kOk);
    const auto bytes = BgraOf(image);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), command.bytes.begin())) << withScale;
  }
}

TEST_F(OpenFx, BesideThePhotoTheSourceStaysToTheBit) {
  const auto host = Moving(ofx::context::kFilter);
  host->parameter("from").text = host->parameter("to").text = "0.4";
  HostImage source = ImageOf(Whole(kOpenFxSize)), output = source;
  FillAtRandom(source, 7);
  ASSERT_EQ(host->Run({.output = &output, .source = &source}), ofx::kOk);
  int kept = 0, opaque = 0;
  for (int y = 0; y < kOpenFxSize.height; ++y) {
    for (int x = 0; x < kOpenFxSize.width; ++x) {
      const bool corner = x < 60 || x >= kOpenFxSize.width - 60;
      const bool same = std::memcmp(output.At(x, y), source.At(x, y), 4) == 0;
      if (corner) kept += same ? 1 : 0;
      if (std::abs(x - 160) < 50 && std::abs(y - 90) < 30) opaque += output.At(x, y)[3] == 255;
    }
  }
  EXPECT_EQ(kept, 120 * kOpenFxSize.height);
  EXPECT_EQ(opaque, 99 * 59);
}

TEST_F(OpenFx, AMissingPhotoGivesTheInputAndOneMessage) {
  const auto host = Moving(ofx::context::kFilter);
  host->parameter("filename").text = folder_ / "nowhere.jpg";
  HostImage source = ImageOf(Whole(kOpenFxSize));
  FillAtRandom(source, 9);
  for (double time = 0.0; time < 3.0; ++time) {
    HostImage output = ImageOf(Whole(kOpenFxSize));
    ASSERT_EQ(host->Run({.time = time, .output = &output, .source = &source}), ofx::kOk);
    EXPECT_EQ(output.memory, source.memory);
  }
  ASSERT_EQ(host->messages().size(), 1u);
  EXPECT_NE(host->messages()[0].find("nowhere.jpg"), std::string::npos);
}

TEST_F(OpenFx, MessagesWithoutFunctionsAreNotCalled) {
  const auto host = Moving(ofx::context::kGenerator, {"", true});
  host->parameter("filename").text = folder_ / "nowhere.jpg";
  HostImage output = ImageOf(Whole(kOpenFxSize));
  EXPECT_EQ(host->Run({.output = &output}), ofx::kOk);
  EXPECT_EQ(output.At(3, 3)[3], 255);
}

TEST_F(OpenFx, WithoutAPhotoTheFrameIsTheSource) {
  const auto host = Moving(ofx::context::kFilter);
  EXPECT_EQ(host->Identity(1.0, true), "");
  host->parameter("filename").text.clear();
  EXPECT_EQ(host->Identity(1.0, true), "Source");
  EXPECT_EQ(host->Identity(1.0, false), "");
}

TEST_F(OpenFx, TheRegionIsTheSourcesOrTheProjects) {
  const auto host = Moving(ofx::context::kGeneral);
  EXPECT_FALSE(host->Region(true).has_value());
  const auto region = host->Region(false);
  ASSERT_TRUE(region.has_value());
  EXPECT_EQ(region->x2 - region->x1, 320.0);
  EXPECT_EQ(region->y2 - region->y1, 180.0);
}

TEST_F(OpenFx, ThreeChannelsAreTheFoursColours) {
  const auto host = Moving(ofx::context::kGenerator);
  HostImage four = ImageOf(Whole(kOpenFxSize)), three = four;
  three.components = ofx::value::kRgb;
  three.Make();
  ASSERT_EQ(host->Run({.output = &four}), ofx::kOk);
  ASSERT_EQ(host->Run({.output = &three}), ofx::kOk);
  for (int y = 0; y < kOpenFxSize.height; y += 10) {
    for (int x = 0; x < kOpenFxSize.width; x += 10) {
      ASSERT_EQ(std::memcmp(three.At(x, y), four.At(x, y), 3), 0);
    }
  }
}

TEST_F(OpenFx, FramesOfSeveralThreadsAreThoseOfOne) {
  const auto host = Moving(ofx::context::kGenerator);
  const Frames film = Film(*host, kOpenFxSize);
  const size_t length = film.bytes.size() / 8;
  std::vector<std::thread> threads;
  std::atomic<int> different{0};
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = thread; i < 16; i += 4) {
        HostImage image = ImageOf(Whole(kOpenFxSize));
        if (host->Run({.time = double(i % 8), .output = &image}) != ofx::kOk) ++different;
        const auto bytes = BgraOf(image);
        const auto whole = film.bytes.begin() + static_cast<ptrdiff_t>(length) * (i % 8);
        if (!std::equal(bytes.begin(), bytes.end(), whole)) ++different;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
}

TEST_F(OpenFx, AThousandRandomParameterSetsEachGiveAFrame) {
  const auto host = Moving(ofx::context::kFilter);
  std::mt19937 random(17);
  const auto below = [&](unsigned end) { return random() % end; };
  const std::vector<std::string> texts{"", photo_, "1@0,0", "0.3@5,-9", "nonsense", "\xff=;|"};
  const char* depths[] = {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat};
  const char* alphas[] = {ofx::value::kOpaque, ofx::value::kPremultiplied,
                          ofx::value::kUnpremultiplied};
  for (int round = 0; round < 1000; ++round) {
    for (auto& [name, parameter] : host->parameters()) {
      const double number = std::ldexp(double(below(2000)) - 1000.0, int(below(20)) - 15);
      const bool zero = below(8) == 0;
      parameter.number = [=](double) { return zero ? 0.0 : number; };
      parameter.choice = static_cast<int>(below(12)) - 1;
      if (name != "filename") parameter.text = texts[below(6)];
    }
    host->parameter("filename").text = below(10) != 0 ? photo_ : texts[below(6)];
    const int left = int(below(40)) - 20, bottom = int(below(40)) - 20;
    const ofx::RectI bounds{left, bottom, left + 1 + int(below(60)), bottom + 1 + int(below(40))};
    HostImage source = ImageOf(bounds), output{bounds, bounds, depths[below(3)]};
    output.alpha = alphas[below(3)];
    output.topDown = below(2) != 0;
    output.padding = int(below(9));
    output.pixelAspect = 0.5 + double(below(20)) / 10.0;
    output.Make();
    FillAtRandom(source, random());
    const Render render{.time = double(below(100)) / 3.0,
                        .output = &output,
                        .source = below(4) != 0 ? &source : nullptr};
    ASSERT_EQ(host->Run(render), ofx::kOk) << round;
    ASSERT_TRUE(output.GuardsHold()) << round;
  }
}

TEST_F(OpenFx, WhatCannotBeDrawnIntoFails) {
  const auto host = Moving(ofx::context::kGenerator);
  HostImage image = ImageOf(Whole(kOpenFxSize));
  image.depth = "OfxBitDepthHalf";
  EXPECT_EQ(host->Run({.output = &image}), ofx::kFailed);
  image.depth = ofx::value::kByte;
  image.components = "OfxImageComponentAlpha";
  EXPECT_EQ(host->Run({.output = &image}), ofx::kFailed);
}

}  // namespace
}  // namespace kelto::test
