// The frei0r plug-in interface, version 1.2, as far as these plug-ins use it.
//
// Declared here from its binary form (names, layouts and numbers), so that building and shipping
// the plug-ins needs no header of another licence. The tests run them in three hosts.
#pragma once

#include <cstdint>

namespace kelto::frei0r {

constexpr int kInterfaceMajor = 1;

enum PluginType : int { kTypeFilter = 0, kTypeSource = 1 };
/// Bytes B, G, R, A; rows without padding.
enum ColourModel : int { kModelBGRA8888 = 0 };
enum ValueType : int { kValueDouble = 1, kValueString = 4 };

struct PluginInfo {
  const char* name;
  const char* author;
  int pluginType;
  int colourModel;
  int interfaceMajor;
  int majorVersion, minorVersion;
  int parameterCount;
  const char* explanation;
};

struct ParameterInfo {
  const char* name;
  int type;  ///< a ValueType; its value passes as double* or char**
  const char* explanation;
};

}  // namespace kelto::frei0r
