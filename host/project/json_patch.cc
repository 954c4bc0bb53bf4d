#include "host/project/json_patch.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "host/project/json_outline.h"
#include "host/project/json_text.h"
#include "host/project/layout.h"

namespace kelto::host {
namespace {

using nlohmann::ordered_json;

/// The bytes from `begin` to `end` become `with`.
struct Edit {
  size_t begin, end;
  std::string with;
};

/// A new entry of an object or array; no name in arrays.
struct NewEntry {
  std::string name;
  const ordered_json* value;
};

class Patch {
 public:
  explicit Patch(const std::string& text) : text_(text) {}

  void Compare(const JsonSpan& span, const ordered_json& current, const ordered_json& wanted) {
    if (current == wanted) return;
    if (current.is_object() && wanted.is_object()) {
      CompareObjects(span, current, wanted);
    } else if (current.is_array() && wanted.is_array()) {
      CompareArrays(span, current, wanted);
    } else {
      Replace(span, wanted);
    }
  }

  std::string Applied() {
    // From the end, so that places ahead stay where they are. What is inserted where a removal
    // begins comes before it.
    std::sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
      return a.begin != b.begin ? a.begin > b.begin : a.end > b.end;
    });
    std::string text = text_;
    for (const Edit& edit : edits_) text.replace(edit.begin, edit.end - edit.begin, edit.with);
    return text;
  }

 private:
  void CompareObjects(const JsonSpan& span, const ordered_json& current,
                      const ordered_json& wanted) {
    std::vector<bool> kept;
    size_t i = 0;
    for (const auto& [name, value] : current.items()) {
      kept.push_back(wanted.contains(name));
      if (kept.back()) Compare(span.entries[i].value, value, wanted[name]);
      ++i;
    }
    std::vector<NewEntry> added;
    for (const auto& [name, value] : wanted.items()) {
      if (!current.contains(name)) added.push_back({ordered_json(name).dump() + ": ", &value});
    }
    ChangeEntries(span, wanted, kept, added, kept.size());
  }

  void CompareArrays(const JsonSpan& span, const ordered_json& current,
                     const ordered_json& wanted) {
    const size_t before = current.size(), after = wanted.size(), common = std::min(before, after);
    size_t front = 0, back = 0;
    while (front < common && current[front] == wanted[front]) ++front;
    while (back < common - front && current[before - 1 - back] == wanted[after - 1 - back]) ++back;
    const size_t changed = common - front - back;
    for (size_t i = front; i < front + changed; ++i) {
      Compare(span.entries[i].value, current[i], wanted[i]);
    }
    std::vector<bool> kept(before, true);
    std::vector<NewEntry> added;
    const size_t place = front + changed;
    for (size_t i = place; i < before - back; ++i) kept[i] = false;
    for (size_t i = place; i < after - back; ++i) added.push_back({"", &wanted[i]});
    ChangeEntries(span, wanted, kept, added, place);
  }

  /// Removes what is not `kept` and puts `added` in front of entry `place`.
  void ChangeEntries(const JsonSpan& span, const ordered_json& wanted,
                     const std::vector<bool>& kept, const std::vector<NewEntry>& added,
                     size_t place) {
    const bool removes = std::find(kept.begin(), kept.end(), false) != kept.end();
    if (!removes && added.empty()) return;
    const bool anyKept = std::find(kept.begin(), kept.end(), true) != kept.end();
    if (!anyKept || (!added.empty() && IsCramped(span, added))) return Replace(span, wanted);
    RemoveRuns(span, kept);
    if (!added.empty()) Insert(span, kept, added, place);
  }

  void RemoveRuns(const JsonSpan& span, const std::vector<bool>& kept) {
    for (size_t i = 0; i < kept.size(); ++i) {
      if (kept[i]) continue;
      size_t next = i;
      while (next < kept.size() && !kept[next]) ++next;
      // Each entry goes with the comma in front of it, and the first ones with that behind them.
      if (i > 0) {
        edits_.push_back({span.entries[i - 1].value.end, span.entries[next - 1].value.end, ""});
      } else {
        edits_.push_back({span.entries[0].begin, span.entries[next].begin, ""});
      }
      i = next;
    }
  }

  void Insert(const JsonSpan& span, const std::vector<bool>& kept,
              const std::vector<NewEntry>& added, size_t place) {
    const std::string margin = Margin(span);
    std::string texts;
    while (place > 0 && !kept[place - 1]) --place;
    for (const NewEntry& entry : added) {
      const size_t indent = margin.empty() ? 0 : margin.size() - 1;
      const std::string separator = margin.empty() ? ", " : "," + margin;
      const std::string text =
          entry.name + LaidOut(*entry.value, indent, indent + entry.name.size() + 1);
      texts += place > 0 ? separator + text : text + separator;
    }
    const size_t at = place > 0 ? span.entries[place - 1].value.end : span.entries[0].begin;
    edits_.push_back({at, at, texts});
  }

  void Replace(const JsonSpan& span, const ordered_json& wanted) {
    std::erase_if(edits_, [&](const Edit& edit) {  // of what is within it
      return edit.begin >= span.begin && edit.end <= span.end;
    });
    const size_t line = LineOf(span.begin);
    const size_t first = std::min(text_.find_first_not_of(" \t", line), span.begin);
    edits_.push_back({span.begin, span.end, LaidOut(wanted, first - line, span.begin - line + 1)});
  }

  size_t LineOf(size_t at) const {
    const size_t end = at == 0 ? text_.npos : text_.rfind('\n', at - 1);
    return end == text_.npos ? 0 : end + 1;
  }

  /// The line end and the spaces in front of an entry; empty where entries stand in one line.
  std::string Margin(const JsonSpan& span) const {
    const size_t line = LineOf(span.entries[0].begin);
    if (line <= span.begin) return "";
    return text_.substr(line - 1, span.entries[0].begin - line + 1);
  }

  /// Whether the entries stand in one line that would become too long.
  bool IsCramped(const JsonSpan& span, const std::vector<NewEntry>& added) const {
    if (!Margin(span).empty()) return false;
    size_t length = span.end - LineOf(span.begin);
    for (const NewEntry& entry : added) length += entry.name.size() + entry.value->dump().size();
    return length >= kMaxLine;
  }

  const std::string& text_;
  std::vector<Edit> edits_;
};

}  // namespace

std::string PatchedJson(const std::string& text, const ordered_json& wanted) {
  ParseJson(text);
  return PatchedJson(text, ordered_json::parse(text), wanted);
}

std::string PatchedJson(const std::string& text, const ordered_json& current,
                        const ordered_json& wanted) {
  Patch patch(text);
  patch.Compare(OutlineOf(text), current, wanted);
  return patch.Applied();
}

}  // namespace kelto::host
