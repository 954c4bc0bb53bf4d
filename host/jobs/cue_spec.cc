#include "host/jobs/cue_spec.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <regex>

#include "host/base/error.h"
#include "host/base/shown_text.h"

namespace kelto::host {
namespace {

/// Layers of a job, and bytes of a layer's command, that OpenCue's server and database hold.
constexpr size_t kMostLayers = 1000, kMostCommandBytes = 4000;

std::string FromEnvironment(const char* name, const char* usual) {
  const char* value = std::getenv(name);
  return value == nullptr || *value == 0 ? usual : value;
}

/// Throws for a name that is not of three letters, digits, points, dashes and underscores or more.
void CheckCueName(const char* variable, const std::string& name) {
  const bool plain = std::all_of(name.begin(), name.end(), [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) != 0 || c == '.' || c == '-' || c == '_');
  });
  if (plain && name.size() >= 3) return;
  throw UsageError("--plan-as opencue: " + std::string(variable) + " is \"" + ShownText(name) +
                   "\"; set it to a name of three letters, digits, points, dashes and underscores "
                   "or more");
}

[[noreturn]] void RefuseLine(const std::string& line, const std::string& why) {
  constexpr size_t kShownBytes = 200;
  throw Error(ShownText(line.substr(0, kShownBytes)) + ": " + why +
              ", which no job of OpenCue can hold; use --plan-as shell");
}

std::string XmlText(const std::string& line) {
  static const std::regex token("#[A-Z_]+#");
  if (line.size() > kMostCommandBytes) {
    RefuseLine(line, "is longer than " + std::to_string(kMostCommandBytes) + " bytes");
  }
  if (std::regex_search(line, token)) RefuseLine(line, "has a word between #, which is replaced");
  // ShownText replaces control characters, and what is not UTF-8.
  if (ShownText(line) != line) RefuseLine(line, "has control characters, or is not UTF-8");
  std::string text;
  for (const char c : line) {
    text += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
  }
  return text;
}

}  // namespace

CueSite CueSiteOfEnvironment() {
  CueSite site{FromEnvironment("SHOW", "testing"), FromEnvironment("SHOT", "default"),
               FromEnvironment("USER", "")};
  CheckCueName("SHOW", site.show);
  CheckCueName("SHOT", site.shot);
  if (site.user == "root") {
    throw UsageError(
        "--plan-as opencue: OpenCue runs no jobs of root; set USER to whose job it is");
  }
  CheckCueName("USER", site.user);
  return site;
}

std::string CueSpec(const CueSite& site, std::span<const std::string> lines) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE spec PUBLIC \"SPI Cue Specification Language\" "
      "\"http://localhost:8080/spcue/dtd/cjsl-1.12.dtd\">\n"
      "<spec>\n"
      "  <show>" +
      site.show + "</show>\n  <shot>" + site.shot + "</shot>\n  <user>" + site.user + "</user>\n";
  for (size_t first = 0; first < lines.size(); first += kMostLayers) {
    const size_t end = std::min(lines.size(), first + kMostLayers);
    text +=
        "  <job name=\"kelto_" + std::to_string(first / kMostLayers + 1) + "\">\n    <layers>\n";
    for (size_t i = first; i < end; ++i) {
      text += "      <layer name=\"film_" + std::to_string(i + 1) + "\" type=\"Render\">\n" +
              "        <cmd>" + XmlText(lines[i]) + "</cmd>\n" +
              "        <range>1</range>\n"
              "        <chunk>1</chunk>\n"
              "      </layer>\n";
    }
    text += "    </layers>\n  </job>\n";
  }
  return text + "</spec>\n";
}

}  // namespace kelto::host
