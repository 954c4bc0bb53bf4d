#include "tests/host/project/check_project_text.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "host/base/error.h"
#include "host/project/project_file.h"
#include "host/project/show_project.h"

namespace kelto::test {
namespace {

constexpr const char* kName = "some.json";

void Demand(bool holds, const char* what, const std::string& text) {
  if (holds) return;
  std::fprintf(stderr, "%s:\n%s\n", what, text.c_str());
  std::abort();
}

}  // namespace

/// Reads the text by `parse`; what `write` writes of that must be read and written the same.
template <typename Parse, typename Write>
void CheckAs(const std::string& text, Parse parse, Write write) {
  std::optional<decltype(parse(text, kName))> read;
  try {
    read = parse(text, kName);
  } catch (const host::Error& error) {
    const std::string line = error.what();
    Demand(line.starts_with("some.json: ") && line.size() > 12, "says nothing", line);
    Demand(line.find('\n') == std::string::npos, "takes more than one line", line);
    return;
  }
  const std::string saved = write(kName, *read);
  const std::string again = write(kName, parse(saved, kName));
  Demand(saved == again, "changes when it is saved again", saved);
}

int CheckProjectText(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  CheckAs(text, host::ParseProject, host::ProjectText);
  CheckAs(text, host::ParseShow, host::ShowText);
  return 0;
}

}  // namespace kelto::test
