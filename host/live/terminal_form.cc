#include "host/live/terminal_form.h"

#include <chafa.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <string>
#include <string_view>

namespace kelto::host {
namespace {

using namespace std::chrono_literals;

constexpr auto kAnswerTime = 1s;
/// No terminal has more to say.
constexpr size_t kLongestAnswer = 256;

std::string_view ValueOf(char** environment, std::string_view name) {
  for (; *environment != nullptr; ++environment) {
    const std::string_view entry = *environment;
    if (entry.starts_with(name) && entry.substr(name.size()).starts_with('=')) {
      return entry.substr(name.size() + 1);
    }
  }
  return "";
}

bool HasInput(int terminal, std::chrono::milliseconds wait) {
  pollfd ready{terminal, POLLIN, 0};
  return poll(&ready, 1, static_cast<int>(wait.count())) > 0 && (ready.revents & POLLIN) != 0;
}

/// Has a terminal hand on what is typed at once and unseen, until its end.
class Unbuffered {
 public:
  explicit Unbuffered(int terminal) : terminal_(terminal) {
    good_ = tcgetattr(terminal_, &before_) == 0;
    if (!good_) return;
    termios changed = before_;
    changed.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    changed.c_cc[VMIN] = 0;
    changed.c_cc[VTIME] = 0;
    good_ = tcsetattr(terminal_, TCSANOW, &changed) == 0;
  }
  ~Unbuffered() {
    if (good_) tcsetattr(terminal_, TCSANOW, &before_);
  }
  Unbuffered(const Unbuffered&) = delete;
  Unbuffered& operator=(const Unbuffered&) = delete;
  bool IsGood() const { return good_; }

 private:
  int terminal_;
  termios before_{};
  bool good_;
};

/// What comes up to the letter that ends an answer; empty when it does not come in time.
std::string AnswerFrom(int terminal) {
  const auto end = std::chrono::steady_clock::now() + kAnswerTime;
  std::string answer;
  while (answer.size() < kLongestAnswer) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    char letter = 0;
    if (left <= 0ms || !HasInput(terminal, left) || read(terminal, &letter, 1) != 1) return "";
    answer += letter;
    if (letter == 'c') return answer;
  }
  return "";
}

/// Whether "\033[?62;4;22c" has a 4 behind the first number, which names a model.
bool SaysSixel(const std::string& answer) {
  constexpr std::string_view kBegin = "\033[?";
  const size_t begin = answer.find(kBegin);
  if (begin == answer.npos) return false;
  std::istringstream numbers(answer.substr(begin + kBegin.size()));
  std::string number;
  std::getline(numbers, number, ';');
  while (std::getline(numbers, number, ';')) {
    if (number == "4" || number == "4c") return true;
  }
  return false;
}

}  // namespace

TerminalForm FormByEnvironment(char** environment) {
  const std::string_view name = ValueOf(environment, "TERM");
  if (name.starts_with("screen") || name.starts_with("tmux") ||
      !ValueOf(environment, "TMUX").empty()) {
    return TerminalForm::kNone;
  }
  ChafaTermInfo* terminal = chafa_term_db_detect(chafa_term_db_get_default(), environment);
  TerminalForm form = TerminalForm::kNone;
  if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_BEGIN_KITTY_IMMEDIATE_IMAGE_V1)) {
    form = TerminalForm::kKitty;
  } else if (chafa_term_info_have_seq(terminal, CHAFA_TERM_SEQ_BEGIN_SIXELS)) {
    form = TerminalForm::kSixel;
  }
  chafa_term_info_unref(terminal);
  return form;
}

TerminalForm FormByAnswer(int terminal) {
  const int mode = fcntl(terminal, F_GETFL);
  // Changing the settings from the background would stop the process.
  if (mode < 0 || (mode & O_ACCMODE) != O_RDWR || tcgetpgrp(terminal) != getpgrp()) {
    return TerminalForm::kNone;
  }
  const Unbuffered unbuffered(terminal);
  constexpr std::string_view kQuestion = "\033[c";
  if (!unbuffered.IsGood() || HasInput(terminal, 0ms) ||
      write(terminal, kQuestion.data(), kQuestion.size()) !=
          static_cast<ssize_t>(kQuestion.size())) {
    return TerminalForm::kNone;
  }
  return SaysSixel(AnswerFrom(terminal)) ? TerminalForm::kSixel : TerminalForm::kNone;
}

}  // namespace kelto::host
