// The host's functions, and properties read and written through them.
#pragma once

#include <string>

#include "platform/openfx.h"

namespace kelto::openfx {

struct Suites {
  const ofx::PropertySuite* properties = nullptr;
  const ofx::EffectSuite* effects = nullptr;
  const ofx::ParameterSuite* parameters = nullptr;
  // These may be null, and their functions, too.
  const ofx::MessageSuite* messages = nullptr;
  const ofx::MemorySuite* memory = nullptr;
  const ofx::DrawSuite* draw = nullptr;
};

/// Those of the host that loaded the plug-in last.
Suites& TheSuites();

/// Fetches them from a host; false where one is missing that nothing can be done without.
bool FetchSuites(const ofx::Host* host);

/// What a property set holds. A property that it lacks, or a set that is null, gives `otherwise`:
/// hosts leave out what they do not know.
class Reader {
 public:
  explicit Reader(ofx::Properties properties) : properties_(properties) {}
  int Int(const char* name, int otherwise, int index = 0) const;
  double Double(const char* name, double otherwise, int index = 0) const;
  std::string String(const char* name, const char* otherwise) const;
  void* Pointer(const char* name) const;
  /// Four integers; false where there are none.
  bool Rect(const char* name, ofx::RectI& rect) const;

 private:
  ofx::Properties properties_;
};

/// Sets properties. One that the host refuses is left: older hosts know fewer.
class Writer {
 public:
  explicit Writer(ofx::Properties properties) : properties_(properties) {}
  const Writer& Int(const char* name, int value, int index = 0) const;
  const Writer& Double(const char* name, double value, int index = 0) const;
  const Writer& String(const char* name, const char* value, int index = 0) const;
  const Writer& Pointer(const char* name, void* value) const;

 private:
  ofx::Properties properties_;
};

/// Shows the user a line, where the host can.
void ShowError(ofx::Effect effect, const std::string& text);

}  // namespace kelto::openfx
