// A film seen on the terminal while it is made. The test is the terminal.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <sstream>
#include <vector>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

// The commands' sandbox keeps the sanitizer from its list of leaks that are others'.
[[maybe_unused]] const int kPreviewWithoutLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

using testing::HasSubstr;
using testing::Not;

constexpr const char* kQuestion = "\033[c";
constexpr int kFilmWidth = 384, kFilmHeight = 216;

/// A terminal: what it is called, and what it says when it is asked what it can do.
struct Played {
  std::string name;    ///< TERM
  std::string answer;  ///< empty: none
  std::string multiplexer{};
  int columns = 80, rows = 24;
  int width = 800, height = 480;  ///< pixels; 0: it does not say
};

struct Seen {
  std::string text;  ///< all that the command wrote
  int code = -1;
};

[[noreturn]] void Become(const Played& terminal, const Words& words) {
  setenv("TERM", terminal.name.c_str(), 1);
  for (const char* other : {"TMUX", "TERM_PROGRAM", "LC_TERMINAL", "COLORTERM"}) unsetenv(other);
  if (!terminal.multiplexer.empty()) setenv("TMUX", terminal.multiplexer.c_str(), 1);
  std::vector<char*> arguments{const_cast<char*>(KELTO_COMMAND)};
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execv(KELTO_COMMAND, arguments.data());
  _exit(126);
}

/// Runs `kelto` on the terminal to its end.
Seen RunOn(const Played& terminal, const Words& words) {
  winsize size{};
  size.ws_row = static_cast<unsigned short>(terminal.rows);
  size.ws_col = static_cast<unsigned short>(terminal.columns);
  size.ws_xpixel = static_cast<unsigned short>(terminal.width);
  size.ws_ypixel = static_cast<unsigned short>(terminal.height);
  int own = -1;
  const pid_t process = forkpty(&own, nullptr, nullptr, &size);
  if (process == 0) Become(terminal, words);
  Seen seen;
  bool answered = terminal.answer.empty();
  char bytes[65536];
  for (ssize_t count = 0; (count = read(own, bytes, sizeof bytes)) > 0;) {
    seen.text.append(bytes, static_cast<size_t>(count));
    if (!answered && seen.text.find(kQuestion) != std::string::npos) {
      answered = true;
      EXPECT_EQ(write(own, terminal.answer.data(), terminal.answer.size()),
                static_cast<ssize_t>(terminal.answer.size()));
    }
  }
  int status = 0;
  waitpid(process, &status, 0);
  close(own);
  if (WIFEXITED(status)) seen.code = WEXITSTATUS(status);
  return seen;
}

/// The first picture between these marks; empty where there is none.
std::string Between(const std::string& text, const std::string& begin, const std::string& end) {
  const size_t from = text.find(begin);
  if (from == text.npos) return "";
  return text.substr(from + begin.size(), text.find(end, from) - from - begin.size());
}

/// The first picture by kitty's protocol: raw pixels R, G, B, A, in pieces of base64.
Picture KittyPicture(const std::string& text) {
  const std::string head = Between(text, "\033_Ga=T,", "\033\\");
  std::map<std::string, int> fields;
  std::istringstream words(head);
  for (std::string word; std::getline(words, word, ',');) {
    fields[word.substr(0, word.find('='))] = std::atoi(word.c_str() + word.find('=') + 1);
  }
  Picture picture{fields["s"], fields["v"], {}};
  if (fields["f"] != 32) return {};
  const std::string body = text.substr(text.find("\033_Ga=T,"));
  constexpr std::string_view kPiece = "\033_Gm=1;",
                             kLetters =
                                 "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<uint8_t> samples;
  unsigned bits = 0;
  int held = 0;
  const size_t end = body.find("\033_Gm=0");
  for (size_t at = body.find(kPiece); at < end; at = body.find(kPiece, at)) {
    for (at += kPiece.size(); body[at] != '\033'; ++at) {
      const size_t letter = kLetters.find(body[at]);
      if (letter == kLetters.npos) held = 0;  // a piece's end is filled up
      if (letter == kLetters.npos) continue;
      bits = bits << 6 | static_cast<unsigned>(letter);
      held += 6;
      if (held < 8) continue;
      held -= 8;
      samples.push_back(static_cast<uint8_t>(bits >> held));
    }
  }
  for (size_t i = 0; i < samples.size(); ++i) {
    if (i % 4 != 3) picture.bytes.push_back(samples[i]);
  }
  return picture;
}

/// The first sixel picture.
Picture SixelPicture(const std::string& text) {
  const std::string begin = Between(text, "\033P", "q");
  if (begin.empty()) return {};
  const std::string body = Between(text, "\033P" + begin + "q", "\033\\");
  Picture picture;
  std::map<int, Rgb> palette;
  int colour = 0, x = 0, band = 0, times = 1;
  size_t at = 0;
  const auto numbers = [&] {
    std::vector<int> found{0};
    for (; at + 1 < body.size() && (std::isdigit(body[at + 1]) || body[at + 1] == ';'); ++at) {
      if (body[at + 1] == ';') {
        found.push_back(0);
      } else {
        found.back() = 10 * found.back() + body[at + 1] - '0';
      }
    }
    return found;
  };
  for (; at < body.size(); ++at) {
    const char letter = body[at];
    if (letter == '"') {
      const std::vector<int> sizes = numbers();
      picture = {sizes.at(2), sizes.at(3), std::vector<uint8_t>(size_t{3} * sizes[2] * sizes[3])};
    } else if (letter == '#') {
      const std::vector<int> said = numbers();
      colour = said[0];
      const auto level = [&](size_t i) { return static_cast<uint8_t>(said[i] * 255 / 100); };
      if (said.size() == 5) palette[colour] = {level(2), level(3), level(4)};
    } else if (letter == '!') {
      times = numbers()[0];
    } else if (letter == '$') {
      x = 0;
    } else if (letter == '-') {
      x = 0;
      band += 6;
    } else if (letter >= '?' && letter <= '~') {
      for (; times > 0; --times, ++x) {
        for (int bit = 0; bit < 6; ++bit) {
          const int y = band + bit;
          if (((letter - '?') >> bit & 1) == 0 || x >= picture.width || y >= picture.height)
            continue;
          uint8_t* pixel = &picture.bytes[(size_t(y) * picture.width + x) * 3];
          const Rgb painted = palette[colour];
          pixel[0] = painted.r;
          pixel[1] = painted.g;
          pixel[2] = painted.b;
        }
      }
      times = 1;
    }
  }
  return picture;
}

class Preview : public testing::Test {
 protected:
  Preview() { WritePng(photo_, MakePicture(kFilmWidth, kFilmHeight, ColourOfPhoto)); }

  /// Other in all four corners, so that a picture that is turned or cut does not pass.
  static Rgb ColourOfPhoto(int x, int y) {
    const bool marked = x > kFilmWidth * 3 / 4 && y < kFilmHeight / 4;
    return {static_cast<uint8_t>(x * 255 / kFilmWidth), static_cast<uint8_t>(y * 255 / kFilmHeight),
            static_cast<uint8_t>(marked ? 230 : 60)};
  }

  Words Film(const std::string& name, const Words& more = {}) const {
    Words words{"render", photo_,   "-o", folder_ / name, "--size", "384x216", "--move",
                "hold",   "--jobs", "1",  "--frames",     "4"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  /// How far the picture is from the film's frames, which show the photo from edge to edge: the
  /// mean difference of a channel, and with it all of the picture's pixels but those at the mark's
  /// edge.
  static double DifferenceFrom(const Picture& picture) {
    double sum = 0;
    int count = 0;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const Rgb wanted =
            ColourOfPhoto(x * kFilmWidth / picture.width, y * kFilmHeight / picture.height);
        const Rgb seen = picture.At(x, y);
        sum +=
            std::abs(seen.r - wanted.r) + std::abs(seen.g - wanted.g) + std::abs(seen.b - wanted.b);
        count += 3;
      }
    }
    return sum / count;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
  const Played kitty_{"xterm-kitty", ""}, foot_{"foot", ""};
};

TEST_F(Preview, OnKittyIsTheFilmsFrame) {
  // From the effect's 4:2:2, and from red, green and blue.
  for (const char* name : {"f.yuyv", "f.bgra", "f.rgba64"}) {
    const Seen seen = RunOn(kitty_, Film(name));
    ASSERT_EQ(seen.code, 0) << seen.text;
    const Picture picture = KittyPicture(seen.text);
    // Half of the rows, 20 pixels high, and as many columns as the film's shape asks for.
    EXPECT_EQ(picture.width, 430) << name;
    ASSERT_EQ(picture.height, 240) << name;
    ASSERT_EQ(picture.bytes.size(), size_t{3} * 430 * 240) << name;
    EXPECT_LT(DifferenceFrom(picture), 2.0) << name;
  }
}

TEST_F(Preview, OnATerminalWithSixelsIsTheFilmsFrame) {
  const Seen seen = RunOn(foot_, Film("f.bgra"));
  ASSERT_EQ(seen.code, 0) << seen.text;
  const Picture picture = SixelPicture(seen.text);
  EXPECT_EQ(picture.width, 430);
  ASSERT_EQ(picture.height, 240);
  EXPECT_LT(DifferenceFrom(picture), 8.0) << "256 colours";
  if (const char* kept = std::getenv("KELTO_KEEP_PREVIEW")) WritePng(kept, picture);
}

TEST_F(Preview, GoesAwayBeforeTheLastLine) {
  const Seen seen = RunOn(kitty_, Film("f.yuyv"));
  // Room is made by as many lines as the picture takes, and one; then it is drawn from there.
  EXPECT_THAT(seen.text, HasSubstr("\n\r\0337\033[13A"));
  EXPECT_THAT(seen.text,
              testing::ContainsRegex(
                  "\r\033\\[K\033\\[13A\033_Ga=d,d=C,q=2\033\\\\\033\\[Jkelto: .*f\\.yuyv: "));
  EXPECT_THAT(RunOn(foot_, Film("g.yuyv")).text,
              testing::ContainsRegex("\r\033\\[K\033\\[13A\033\\[Jkelto: .*g\\.yuyv: "));
}

TEST_F(Preview, IsSmallEnoughForEveryTerminal) {
  Played small = foot_;
  small.width = small.height = 0;
  Picture picture = SixelPicture(RunOn(small, Film("f.bgra")).text);
  EXPECT_EQ(picture.height, 144) << "12 rows of 12 pixels";
  small.rows = 5;
  EXPECT_THAT(RunOn(small, Film("f.bgra")).text, Not(HasSubstr("\033P"))) << "too few rows";
  Played large = foot_;
  large.columns = 1000;
  large.rows = 1000;
  large.width = large.height = 40000;
  picture = SixelPicture(RunOn(large, Film("f.bgra")).text);
  EXPECT_LE(picture.height, 360);
  EXPECT_GE(picture.height, 300);
}

TEST_F(Preview, IsNotOnATerminalOfWhichNothingIsKnown) {
  for (const char* name : {"xterm", "xterm-256color", "linux", "dumb", "vt100", ""}) {
    const Seen seen = RunOn({name, ""}, Film("f.yuyv"));
    EXPECT_EQ(seen.code, 0);
    for (const char* begin : {"\033P", "\033_", kQuestion}) {
      EXPECT_THAT(seen.text, Not(HasSubstr(begin))) << name;
    }
  }
}

TEST_F(Preview, AsksTheTerminalWhereItIsWanted) {
  const Words words = Film("f.yuyv", {"--preview"});
  const Seen able = RunOn({"xterm", "\033[?62;4;22c"}, words);
  EXPECT_EQ(able.code, 0) << able.text;
  EXPECT_LT(DifferenceFrom(SixelPicture(able.text)), 8.0);
  EXPECT_THAT(able.text, Not(HasSubstr("?62"))) << "the answer is not seen";
  // 4 as the first number is a terminal's model; 22 are colours; nothing is no answer.
  for (const char* answer : {"\033[?4;22c", "\033[?1;2c", "\033[?64;14c", "c", ""}) {
    const Seen unable = RunOn({"xterm", answer}, words);
    EXPECT_EQ(unable.code, 0) << answer;
    EXPECT_THAT(unable.text, HasSubstr(kQuestion));
    EXPECT_THAT(unable.text, Not(HasSubstr("\033P"))) << answer;
  }
  EXPECT_THAT(RunOn({"dumb", "\033[?62;4c"}, words).text, Not(HasSubstr("\033"))) << "never asked";
}

TEST_F(Preview, IsNotWhereNobodyLooks) {
  Played inTmux = kitty_;
  inTmux.multiplexer = "/tmp/tmux-0/default,1,0";
  EXPECT_THAT(RunOn(inTmux, Film("f.yuyv")).text, Not(HasSubstr("\033_")));
  for (const char* option : {"--no-preview", "--quiet", "--json"}) {
    const Seen seen = RunOn(kitty_, Film("f.yuyv", {option}));
    EXPECT_EQ(seen.code, 0);
    EXPECT_THAT(seen.text, Not(HasSubstr("\033_"))) << option;
  }
}

TEST_F(Preview, LeavesTheFilmAsItIsAndTheSandboxClosed) {
  ASSERT_EQ(RunOn(kitty_, Film("a.mkv", {"--sandbox"})).code, 0);
  ASSERT_EQ(RunOn(kitty_, Film("b.mkv", {"--no-preview", "--sandbox"})).code, 0);
  EXPECT_EQ(BytesOf(folder_ / "a.mkv"), BytesOf(folder_ / "b.mkv"));
}

TEST_F(Preview, IsOfSlideshowsToo) {
  const Seen seen = RunOn(foot_, {"slideshow", photo_, photo_, "-o", folder_ / "s.bgra", "--size",
                                  "384x216", "--move", "hold", "--each", "0.2"});
  ASSERT_EQ(seen.code, 0) << seen.text;
  EXPECT_LT(DifferenceFrom(SixelPicture(seen.text)), 8.0);
}

}  // namespace
}  // namespace kelto::test
