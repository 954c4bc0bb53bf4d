// Films with sound.
#include "host/film/sound_track.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "host/base/error.h"
#include "host/film/encoder.h"
#include "tests/host/support/effect_frames.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/sounds.h"

namespace kelto::host {
namespace {

using test::DecodedFilm;
using test::DecodedSound;
using testing::HasSubstr;

constexpr FrameSize kSize{64, 64};

class SoundTracks : public testing::Test {
 protected:
  /// A film of 25 frames a second with the sound of `audio`.
  std::string Film(const std::string& name, const std::string& audio, int32_t frames = 50) {
    std::string path = folder_ / name;
    const FilmRequest request{path, {kSize, {25, 1}}, frames, "", audio};
    const FilmKind& kind = KindFor(path, "");
    CheckRequest(kind, request);
    const auto film = kind.open(request);
    const auto frame = test::MakeYCbYCr(kSize, [](int, int) { return test::Rgb{9, 99, 9}; });
    for (int i = 0; i < frames; ++i) film->Write(frame.View());
    film->Finish();
    return path;
  }

  std::string Wav(double seconds, int rate = 48000, int channels = 2) {
    std::string path = folder_ / "sound.wav";
    test::WriteWav(path, seconds, rate, channels, test::Clicks({0.5, 1.25, 1.9}, rate));
    return path;
  }

  static void ExpectClicks(const DecodedSound& sound) {
    EXPECT_NEAR(sound.LoudestBetween(0.3, 0.8), 0.5, 0.001);
    EXPECT_NEAR(sound.LoudestBetween(1.0, 1.6), 1.25, 0.001);
    EXPECT_NEAR(sound.LoudestBetween(1.7, 2.0), 1.9, 0.001);
  }

  template <typename Step>
  static std::string ErrorOf(Step step) {
    try {
      step();
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }

  test::TempFolder folder_;
};

TEST_F(SoundTracks, ArePlainSoundCodedForTheContainer) {
  struct {
    const char* name;
    const char* codec;
  } films[] = {
      {"a.mp4", "aac"}, {"a.mov", "pcm_s16le"}, {"a.mkv", "pcm_s16le"}, {"a.webm", "opus"}};
  for (const auto& film : films) {
    const std::string path = Film(film.name, Wav(2.0));
    const DecodedSound sound = test::ReadSound(path);
    EXPECT_EQ(sound.codec, film.codec) << film.name;
    EXPECT_EQ(sound.rate, 48000);
    EXPECT_EQ(sound.channels, 2);
    ExpectClicks(sound);
    const DecodedFilm pictures = test::ReadFilm(path);
    EXPECT_EQ(pictures.streams, 2);
    EXPECT_EQ(pictures.frames.size(), 50u);
    EXPECT_NEAR(pictures.frames.at(0).seconds, 0.0, 1e-9) << film.name;
  }
}

TEST_F(SoundTracks, AreCopiedWhereTheContainerTakesThem) {
  const std::string aac = Film("aac.mp4", Wav(2.0));
  const std::string opus = Film("opus.webm", Wav(2.0));
  const DecodedSound aacSound = test::ReadSound(aac);
  for (const char* name : {"b.mp4", "b.mov", "b.mkv"}) {
    const DecodedSound sound = test::ReadSound(Film(name, aac));
    EXPECT_EQ(sound.codec, "aac") << name;
    ExpectClicks(sound);
    // A second generation of lossy coding would not agree so well.
    double greatest = 0.0;
    for (int sample = 4800; sample < 91200; ++sample) {
      const double time = sample / 48000.0;
      greatest = std::max(greatest, std::abs(sound.LevelAt(time) - aacSound.LevelAt(time)));
    }
    EXPECT_LT(greatest, 1e-6) << name;
  }
  for (const char* name : {"c.webm", "c.mkv", "c.mp4"}) {
    const DecodedSound sound = test::ReadSound(Film(name, opus));
    EXPECT_EQ(sound.codec, "opus") << name;
    ExpectClicks(sound);
  }
  EXPECT_EQ(test::ReadSound(Film("d.webm", aac)).codec, "opus");
}

TEST_F(SoundTracks, AreCodedAnewWhereACopyCouldNotBePlayed) {
  const std::string wav = Wav(2.0), flac = folder_ / "a.flac", opus = folder_ / "a.opus";
  for (const std::string& coded : {flac, opus}) {
    std::string command = "ffmpeg -v error -y -i ";
    command.append(wav).append(" ").append(coded);
    ASSERT_EQ(std::system(command.c_str()), 0);
  }
  for (const auto& [name, sound] : {std::pair{"f.mp4", flac}, {"f.mov", flac}, {"o.mov", opus}}) {
    const DecodedSound heard = test::ReadSound(Film(name, sound));
    EXPECT_EQ(heard.codec, "aac") << name;
    ExpectClicks(heard);
  }
  EXPECT_EQ(test::ReadSound(Film("f.mkv", flac)).codec, "flac");
}

TEST_F(SoundTracks, LongerThanTheFilmEndWithIt) {
  const std::string wav = Wav(5.0);
  for (const char* name : {"a.mp4", "a.mov", "a.mkv", "a.webm"}) {
    const std::string path = Film(name, wav, 37);
    EXPECT_NEAR(test::ReadFilm(path).seconds, 37 / 25.0, 0.003) << name;
    const DecodedSound sound = test::ReadSound(path);
    // WebM counts 6.5 ms of Opus before the film as its time, which are then missing at the end.
    EXPECT_NEAR(sound.end, 37 / 25.0, 0.008) << name;
    EXPECT_GT(sound.samples.size(), 37 / 25.0 * 48000 - 400);
  }
}

TEST_F(SoundTracks, ShorterThanTheFilmLeaveItsLength) {
  for (const char* name : {"a.mp4", "a.mov", "a.mkv", "a.webm"}) {
    const std::string path = Film(name, Wav(0.7));
    EXPECT_NEAR(test::ReadFilm(path).seconds, 2.0, 0.003) << name;
    EXPECT_EQ(test::ReadFilm(path).frames.size(), 50u) << name;
    EXPECT_NEAR(test::ReadSound(path).end, 0.7, 0.03) << name;
  }
}

TEST_F(SoundTracks, OfOtherRatesAndChannelsAreMadeToFit) {
  const DecodedSound mono = test::ReadSound(Film("a.mp4", Wav(2.0, 44100, 1)));
  EXPECT_EQ(mono.rate, 44100);
  EXPECT_EQ(mono.channels, 1);
  ExpectClicks(mono);
  const DecodedSound opus = test::ReadSound(Film("a.webm", Wav(2.0, 16000, 1)));
  EXPECT_EQ(opus.rate, 48000);
  ExpectClicks(opus);
  const DecodedSound many = test::ReadSound(Film("b.mp4", Wav(2.0, 48000, 6)));
  EXPECT_EQ(many.channels, 2);
  ExpectClicks(many);
}

TEST_F(SoundTracks, BeginWithThePicturesOfTheirFile) {
  // Pictures that begin half a second after the sound, as cameras write them.
  const std::string late = folder_ / "late.mkv";
  const std::string make = "ffmpeg -v error -i " + Film("v.mkv", "") + " -i " + Wav(3.0) +
                           " -filter:v setpts=PTS+0.24/TB -c:v ffv1 -c:a copy " + late;
  ASSERT_EQ(std::system(make.c_str()), 0);
  for (const char* name : {"a.mkv", "a.mp4"}) {
    const DecodedSound sound = test::ReadSound(Film(name, late, 40));
    EXPECT_NEAR(sound.LoudestBetween(0.1, 0.5), 0.26, 0.001) << name;
    EXPECT_NEAR(sound.LoudestBetween(0.7, 1.4), 1.01, 0.001) << name;
  }
}

TEST_F(SoundTracks, ThatBeganEarlierLeaveThePicturesAtTheirTime) {
  // Opus is copied, with the packets before the pictures that its decoder needs.
  const std::string early = folder_ / "early.mkv";
  const std::string make = "ffmpeg -v error -i " + Film("v.mkv", "") + " -i " + Wav(3.0) +
                           " -filter:v setpts=PTS+0.24/TB -c:v ffv1 -c:a libopus " + early;
  ASSERT_EQ(std::system(make.c_str()), 0);
  const double click =
      test::ReadSound(early).LoudestBetween(0.3, 0.8) - test::ReadFilm(early).frames.at(0).seconds;
  EXPECT_NEAR(click, 0.26, 0.01);
  for (const char* name : {"a.webm", "a.mkv", "a.mp4"}) {
    const std::string path = Film(name, early, 40);
    EXPECT_NEAR(test::ReadFilm(path).frames.at(0).seconds, 0.0, 1e-9) << name;
    EXPECT_NEAR(test::ReadSound(path).LoudestBetween(0.1, 0.5), click, 0.0015) << name;
  }
}

TEST_F(SoundTracks, AreTheSameEveryTime) {
  const auto bytes = [&](const char* name, const std::string& wav) {
    std::ifstream file(Film(name, wav), std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(file), {}};
  };
  const std::string wav = Wav(2.0);
  EXPECT_TRUE(bytes("a.mp4", wav) == bytes("b.mp4", wav));
  EXPECT_TRUE(bytes("a.webm", wav) == bytes("b.webm", wav));
}

TEST_F(SoundTracks, MissingOrUnreadableAreToldByName) {
  const auto error = [&](const std::string& audio) {
    return ErrorOf([&] { Film("film.mp4", audio); });
  };
  EXPECT_EQ(error(folder_ / "no.wav"), folder_ / "no.wav: there is no such file");
  EXPECT_EQ(error(folder_ / ""), folder_ / ": is a folder, not sound");
  const std::string silent = Film("silent.mp4", "");
  EXPECT_EQ(error(silent), silent + ": has no sound");
  std::ofstream(folder_ / "text.mp3") << "This is no sound. ";
  EXPECT_THAT(error(folder_ / "text.mp3"),
              testing::StartsWith(folder_ / "text.mp3: cannot be read as sound: "));
  std::ofstream(folder_ / "notes.txt") << "Nor is this.\n";
  EXPECT_THAT(error(folder_ / "notes.txt"), testing::StartsWith(folder_ / "notes.txt: cannot be"));
  EXPECT_FALSE(std::ifstream(folder_ / "film.mp4").good());
}

TEST_F(SoundTracks, DoNotGoIntoPicturesOrRawFrames) {
  for (const char* name : {"f%d.png", "f%d.tiff", "f%d.jpeg", "film.y4m", "film.yuyv"}) {
    EXPECT_THAT(ErrorOf([&] { Film(name, Wav(1.0)); }),
                HasSubstr("films have no sound; use one of mp4, mkv, mov, webm"));
  }
}

TEST_F(SoundTracks, NoPlaylistLeadsToTheNetworkOrAnotherFile) {
  const std::string list = folder_ / "list.m3u8";
  std::ofstream(list) << "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nhttp://localhost:9/a.ts\n";
  EXPECT_THAT(ErrorOf([&] { Film("film.mp4", list); }), HasSubstr(list));
}

}  // namespace
}  // namespace kelto::host
