#include "host/facts/frame_list.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>

#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/effect/render_state.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

using Cell = std::variant<int32_t, double, bool, std::string>;

struct Column {
  const char* name;   ///< in CSV and JSON
  const char* title;  ///< in the table, whose second line is `unit`
  const char* unit;
  int width;     ///< of the table's column
  int decimals;  ///< in the table
  Cell (*cell)(const FrameFacts& facts);
};

/// The cache has places for smaller copies; the effect fills the first only.
constexpr int32_t kLevel = 0;

const Column kColumns[] = {
    {"frame", "frame", "", 6, 0, [](const FrameFacts& f) { return Cell(f.number); }},
    {"field", "field", "", 5, 0, [](const FrameFacts& f) { return Cell(f.field + 1); }},
    {"seconds", "seconds", "s", 9, 3, [](const FrameFacts& f) { return Cell(f.seconds); }},
    {"time", "time", "of 1", 7, 4, [](const FrameFacts& f) { return Cell(f.time); }},
    {"zoom", "zoom", "", 8, 4, [](const FrameFacts& f) { return Cell(f.view.zoom); }},
    {"x", "centre x", "widths", 9, 4, [](const FrameFacts& f) { return Cell(f.view.centreX); }},
    {"y", "centre y", "heights", 9, 4, [](const FrameFacts& f) { return Cell(f.view.centreY); }},
    {"left", "left", "photo px", 10, 2, [](const FrameFacts& f) { return Cell(f.area.left); }},
    {"top", "top", "photo px", 10, 2, [](const FrameFacts& f) { return Cell(f.area.top); }},
    {"width", "width", "photo px", 10, 2,
     [](const FrameFacts& f) { return Cell(f.area.right - f.area.left); }},
    {"height", "height", "photo px", 10, 2,
     [](const FrameFacts& f) { return Cell(f.area.bottom - f.area.top); }},
    {"scale_x", "scale x", "px/px", 8, 4, [](const FrameFacts& f) { return Cell(f.area.scaleX); }},
    {"scale_y", "scale y", "px/px", 8, 4, [](const FrameFacts& f) { return Cell(f.area.scaleY); }},
    {"filter", "filter", "", 24, 0, [](const FrameFacts& f) { return Cell(f.filter); }},
    {"level", "level", "", 5, 0, [](const FrameFacts&) { return Cell(kLevel); }},
    {"cached_width", "cached w", "px", 8, 0,
     [](const FrameFacts& f) { return Cell(f.area.cached.width); }},
    {"cached_height", "cached h", "px", 8, 0,
     [](const FrameFacts& f) { return Cell(f.area.cached.height); }},
    {"reduced", "reduced", "", 7, 0, [](const FrameFacts& f) { return Cell(f.area.reduced); }},
    {"pan_speed", "pan", "widths/s", 8, 4, [](const FrameFacts& f) { return Cell(f.speed.pan); }},
    {"zoom_rate", "zooms", "x2/s", 8, 4, [](const FrameFacts& f) { return Cell(f.speed.zoom); }},
    {"perceived_speed", "perceived", "1/s", 9, 4,
     [](const FrameFacts& f) { return Cell(f.speed.perceived); }},
};

/// Locale-independent: the shortest text that reads back the same, or with fixed decimals.
template <typename... Precision>
std::string NumberText(double value, Precision... precision) {
  char text[400];  // holds every double written out
  const auto end = std::to_chars(text, text + sizeof text, value, precision...).ptr;
  return {text, end};
}

std::string TextOf(const Cell& cell, const Column& column, ListForm form) {
  if (const auto* number = std::get_if<double>(&cell)) {
    return form == ListForm::kTable ? NumberText(*number, std::chars_format::fixed, column.decimals)
                                    : NumberText(*number);
  }
  if (const auto* whole = std::get_if<int32_t>(&cell)) return std::to_string(*whole);
  const auto* yes = std::get_if<bool>(&cell);
  if (form == ListForm::kTable && yes != nullptr) return *yes ? "yes" : "no";
  if (yes != nullptr) return *yes ? "true" : "false";
  return std::get<std::string>(cell);
}

class FrameList {
 public:
  FrameList(bool interlaced, ListForm form, const std::function<void(const std::string&)>& write)
      : form_(form), write_(write), interlaced_(interlaced) {}

  void Begin(const RenderPlan& plan, const Photo& photo);
  void Add(const FrameFacts& facts);
  void End();

 private:
  bool Shows(const Column& column) const {
    return interlaced_ || std::string_view(column.name) != "field";
  }
  /// A line of one text a column.
  template <typename Text>
  std::string Line(Text text) const;
  std::string Object(const FrameFacts& facts) const;

  ListForm form_;
  const std::function<void(const std::string&)>& write_;
  bool interlaced_;
  bool first_ = true;
};

template <typename Text>
std::string FrameList::Line(Text text) const {
  std::string line;
  for (const Column& column : kColumns) {
    if (!Shows(column)) continue;
    const std::string cell = text(column);
    if (!line.empty()) line += form_ == ListForm::kCsv ? "," : "  ";
    if (form_ == ListForm::kTable) {
      const auto width = static_cast<size_t>(column.width);
      line.append(width - std::min(width, cell.size()), ' ');
    }
    line += cell;
  }
  return line + "\n";
}

std::string FrameList::Object(const FrameFacts& facts) const {
  nlohmann::ordered_json object;
  for (const Column& column : kColumns) {
    if (!Shows(column)) continue;
    std::visit([&](const auto& value) { object[column.name] = value; }, column.cell(facts));
  }
  return object.dump();
}

void FrameList::Begin(const RenderPlan& plan, const Photo& photo) {
  if (form_ == ListForm::kJson) {
    const nlohmann::ordered_json film = {
        {"photo", photo.given},
        {"photo_width", photo.width},
        {"photo_height", photo.height},
        {"width", plan.format.size.width},
        {"height", plan.format.size.height},
        {"rate", {plan.format.rate.numerator, plan.format.rate.denominator}}};
    // The path's bytes need not be UTF-8.
    std::string head = film.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    head.back() = ',';
    write_(ShownJson(head) + "\"frames\":[\n");
    return;
  }
  if (form_ == ListForm::kCsv) {
    write_(Line([](const Column& column) { return std::string(column.name); }));
    return;
  }
  write_(Line([](const Column& column) { return std::string(column.title); }));
  write_(Line([](const Column& column) { return std::string(column.unit); }));
}

void FrameList::Add(const FrameFacts& facts) {
  if (form_ == ListForm::kJson) {
    write_((first_ ? "" : ",\n") + Object(facts));
    first_ = false;
    return;
  }
  write_(Line([&](const Column& column) { return TextOf(column.cell(facts), column, form_); }));
}

void FrameList::End() {
  if (form_ == ListForm::kJson) write_("\n]}\n");
}

}  // namespace

void WriteFrameList(FrameInspector& inspector, const Photo& photo, ListForm form,
                    const std::function<void(const std::string&)>& write) {
  const RenderPlan& plan = inspector.Plan();
  FrameList list(plan.format.Interlaced(), form, write);
  list.Begin(plan, photo);
  for (int32_t number = 0; number < plan.frames; ++number) {
    CheckInterrupt();
    for (int32_t field = 0; field < FieldsOf(plan); ++field) list.Add(inspector.Of(number, field));
  }
  list.End();
}

}  // namespace kelto::host
