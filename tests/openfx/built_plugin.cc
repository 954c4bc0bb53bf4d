#include <dlfcn.h>

#include <cstdlib>
#include <stdexcept>

#include "tests/openfx/strict_host.h"

namespace kelto::test {

const ofx::Plugin& BuiltPlugin() {
  static const ofx::Plugin* plugin = [] {
    const char* tested = std::getenv("KELTO_OPENFX_TESTED");
    void* library = dlopen(tested != nullptr ? tested : KELTO_OPENFX_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    const auto count = reinterpret_cast<int (*)()>(dlsym(library, "OfxGetNumberOfPlugins"));
    const auto get = reinterpret_cast<ofx::Plugin* (*)(int)>(dlsym(library, "OfxGetPlugin"));
    if (count == nullptr || get == nullptr || count() != 1 || get(1) != nullptr) {
      throw std::runtime_error("the plug-in's functions");
    }
    return get(0);
  }();
  return *plugin;
}

}  // namespace kelto::test
