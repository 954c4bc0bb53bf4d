#include "host/project/json_outline.h"

#include <string_view>

namespace kelto::host {
namespace {

class Scanner {
 public:
  explicit Scanner(const std::string& text) : text_(text) {}

  JsonSpan Value() {
    SkipSpace();
    JsonSpan span;
    span.begin = at_;
    switch (Peek()) {
      case '{':
      case '[':
        Entries(span);
        break;
      case '"':
        SkipString();
        break;
      default:  // a number, true, false or null
        while (at_ < text_.size() && !IsOneOf(Peek(), " \t\r\n,]}")) ++at_;
    }
    span.end = at_;
    return span;
  }

 private:
  static bool IsOneOf(char c, std::string_view set) { return set.find(c) != set.npos; }
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  void SkipSpace() {
    while (at_ < text_.size() && IsOneOf(Peek(), " \t\r\n")) ++at_;
  }
  void SkipString() {
    for (++at_; at_ < text_.size() && Peek() != '"'; ++at_) {
      if (Peek() == '\\') ++at_;
    }
    ++at_;
  }

  void Entries(JsonSpan& span) {
    const bool named = Peek() == '{';
    const char close = named ? '}' : ']';
    for (++at_; at_ < text_.size();) {
      SkipSpace();
      if (Peek() == close) break;
      if (Peek() == ',') {
        ++at_;
        continue;
      }
      JsonSpan::Entry entry;
      entry.begin = at_;
      if (named) {
        SkipString();
        SkipSpace();
        ++at_;  // the colon
      }
      entry.value = Value();
      span.entries.push_back(std::move(entry));
    }
    ++at_;
  }

  const std::string& text_;
  size_t at_ = 0;
};

}  // namespace

JsonSpan OutlineOf(const std::string& text) { return Scanner(text).Value(); }

}  // namespace kelto::host
