#include "adapters/openfx/suites.h"

namespace kelto::openfx {

Suites& TheSuites() {
  static Suites suites;
  return suites;
}

bool FetchSuites(const ofx::Host* host) {
  Suites& suites = TheSuites();
  suites = {};
  if (host == nullptr || host->fetchSuite == nullptr) return false;
  const auto fetch = [&](const char* name, int version) {
    return host->fetchSuite(host->host, name, version);
  };
  suites.properties = static_cast<const ofx::PropertySuite*>(fetch(ofx::kPropertySuite, 1));
  suites.effects = static_cast<const ofx::EffectSuite*>(fetch(ofx::kEffectSuite, 1));
  suites.parameters = static_cast<const ofx::ParameterSuite*>(fetch(ofx::kParameterSuite, 1));
  // Of both versions the first function alone is called.
  const void* messages = fetch(ofx::kMessageSuite, 2);
  if (messages == nullptr) messages = fetch(ofx::kMessageSuite, 1);
  suites.messages = static_cast<const ofx::MessageSuite*>(messages);
  suites.memory = static_cast<const ofx::MemorySuite*>(fetch(ofx::kMemorySuite, 1));
  suites.draw = static_cast<const ofx::DrawSuite*>(fetch(ofx::kDrawSuite, 1));
  return suites.properties != nullptr && suites.effects != nullptr && suites.parameters != nullptr;
}

int Reader::Int(const char* name, int otherwise, int index) const {
  int value = 0;
  if (properties_ == nullptr) return otherwise;
  return TheSuites().properties->getInt(properties_, name, index, &value) == ofx::kOk ? value
                                                                                      : otherwise;
}

double Reader::Double(const char* name, double otherwise, int index) const {
  double value = 0.0;
  if (properties_ == nullptr) return otherwise;
  return TheSuites().properties->getDouble(properties_, name, index, &value) == ofx::kOk
             ? value
             : otherwise;
}

std::string Reader::String(const char* name, const char* otherwise) const {
  char* value = nullptr;
  if (properties_ == nullptr ||
      TheSuites().properties->getString(properties_, name, 0, &value) != ofx::kOk ||
      value == nullptr) {
    return otherwise;
  }
  return value;
}

void* Reader::Pointer(const char* name) const {
  void* value = nullptr;
  if (properties_ == nullptr ||
      TheSuites().properties->getPointer(properties_, name, 0, &value) != ofx::kOk) {
    return nullptr;
  }
  return value;
}

bool Reader::Rect(const char* name, ofx::RectI& rect) const {
  int sides[4] = {};
  if (properties_ == nullptr ||
      TheSuites().properties->getIntN(properties_, name, 4, sides) != ofx::kOk) {
    return false;
  }
  rect = {sides[0], sides[1], sides[2], sides[3]};
  return true;
}

const Writer& Writer::Int(const char* name, int value, int index) const {
  if (properties_ != nullptr) TheSuites().properties->setInt(properties_, name, index, value);
  return *this;
}

const Writer& Writer::Double(const char* name, double value, int index) const {
  if (properties_ != nullptr) TheSuites().properties->setDouble(properties_, name, index, value);
  return *this;
}

const Writer& Writer::String(const char* name, const char* value, int index) const {
  if (properties_ != nullptr) TheSuites().properties->setString(properties_, name, index, value);
  return *this;
}

const Writer& Writer::Pointer(const char* name, void* value) const {
  if (properties_ != nullptr) TheSuites().properties->setPointer(properties_, name, 0, value);
  return *this;
}

void ShowError(ofx::Effect effect, const std::string& text) {
  const Suites& suites = TheSuites();
  if (suites.messages == nullptr || suites.messages->message == nullptr) return;
  suites.messages->message(effect, ofx::value::kErrorMessage, "kelto", "%s", text.c_str());
}

}  // namespace kelto::openfx
