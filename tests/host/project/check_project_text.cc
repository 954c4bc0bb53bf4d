#include "tests/host/project/check_project_text.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/base/error.h"
#include "host/project/project_file.h"

namespace kelto::test {
namespace {

constexpr const char* kName = "some.json";

void Demand(bool holds, const char* what, const std::string& text) {
  if (holds) return;
  std::fprintf(stderr, "%s:\n%s\n", what, text.c_str());
  std::abort();
}

}  // namespace

int CheckProjectText(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  host::RenderPlan plan;
  try {
    plan = host::ParseProject(text, kName);
  } catch (const host::Error& error) {
    const std::string line = error.what();
    Demand(line.starts_with("some.json: ") && line.size() > 12, "says nothing", line);
    Demand(line.find('\n') == std::string::npos, "takes more than one line", line);
    return 0;
  }
  const std::string saved = host::ProjectText(kName, plan);
  const std::string again = host::ProjectText(kName, host::ParseProject(saved, kName));
  Demand(saved == again, "changes when it is saved again", saved);
  return 0;
}

}  // namespace kelto::test
