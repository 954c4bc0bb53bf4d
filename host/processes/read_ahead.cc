#include "host/processes/read_ahead.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include "host/base/error.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

enum class AnswerKind : char { kResult, kMessage, kFailed, kMisused };

/// What is being kept; null where nothing is.
std::string* kept = nullptr;
bool isReading = false;
/// What is left of the answers that are being given.
std::string_view answersLeft;

void Keep(AnswerKind kind, const std::string& file, const std::string& text) {
  if (kept == nullptr) return;
  *kept += static_cast<char>(kind);
  for (const std::string* part : {&file, &text}) {
    const auto size = static_cast<uint64_t>(part->size());
    kept->append(reinterpret_cast<const char*>(&size), sizeof size);
    *kept += *part;
  }
}

/// The next answer taken from what is left. What a process sent that a file has taken over may be
/// cut anywhere: false then.
bool Take(AnswerKind& kind, std::string& file, std::string& text) {
  std::string_view rest = answersLeft;
  if (rest.empty()) return false;
  kind = static_cast<AnswerKind>(rest.front());
  rest.remove_prefix(1);
  for (std::string* part : {&file, &text}) {
    uint64_t size = 0;
    if (rest.size() < sizeof size) return false;
    std::memcpy(&size, rest.data(), sizeof size);
    rest.remove_prefix(sizeof size);
    if (rest.size() < size) return false;
    *part = rest.substr(0, size);
    rest.remove_prefix(size);
  }
  answersLeft = rest;
  return true;
}

}  // namespace

std::string AnswersDuring(const std::function<void()>& work) {
  std::string answers;
  kept = &answers;
  SetMessageSink([](const std::string& text) {
    if (isReading) Keep(AnswerKind::kMessage, "", text);
  });
  try {
    work();
  } catch (const Error&) {
    // The one who asks again will meet the same.
  }
  kept = nullptr;
  return answers;
}

void WithAnswers(const std::string& answers, const std::function<void()>& work) {
  struct Given {
    explicit Given(std::string_view given) { answersLeft = given; }
    ~Given() { answersLeft = {}; }
  };
  const Given given(answers);
  work();
}

bool IsAnswered(const std::string& file, std::string& text) {
  AnswerKind kind{};
  std::string of;
  while (Take(kind, of, text)) {
    if (kind == AnswerKind::kMessage) {
      PrintMessage(text);
      continue;
    }
    if (of != file) break;
    if (kind == AnswerKind::kFailed) throw Error(text);
    if (kind == AnswerKind::kMisused) throw UsageError(text);
    return true;
  }
  answersLeft = {};
  return false;
}

std::string KeptAnswer(const std::string& file, const std::function<std::string()>& read) {
  if (kept == nullptr) return read();
  isReading = true;
  try {
    std::string text = read();
    isReading = false;
    Keep(AnswerKind::kResult, file, text);
    return text;
  } catch (const UsageError& error) {
    isReading = false;
    Keep(AnswerKind::kMisused, file, error.what());
    throw;
  } catch (const Error& error) {
    isReading = false;
    Keep(AnswerKind::kFailed, file, error.what());
    throw;
  }
}

}  // namespace kelto::host
