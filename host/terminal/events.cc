#include "host/terminal/events.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "host/base/shown_text.h"
#include "host/terminal/library_text.h"
#include "host/terminal/text_stream.h"

namespace kelto::host {

void PrintEvent(const std::string& name,
                std::initializer_list<std::pair<const char*, EventValue>> fields) {
  using Json = nlohmann::ordered_json;
  Json event{{"event", name}};
  for (const auto& [key, value] : fields) {
    std::visit([&, field = key](const auto& plain) { event[field] = plain; }, value);
  }
  const std::string line = event.dump(-1, ' ', false, Json::error_handler_t::replace);
  WriteText(ErrorStream(), ShownJson(line) + "\n");
}

}  // namespace kelto::host
