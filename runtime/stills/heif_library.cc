#include "runtime/stills/heif_library.h"

#include <dlfcn.h>

#include <string>

#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

void* Find(void* library, const char* name, const char* function) {
  void* address = ::dlsym(library, function);
  if (address != nullptr) return address;
  ::dlclose(library);
  throw StillError(noCodecErr, std::string("a HEIF or AVIF picture, but ") + name + " has no " +
                                   function + " (it is too old)");
}

}  // namespace

std::unique_ptr<const HeifLibrary> OpenHeifLibrary(const char* name) {
  auto heif = std::make_unique<HeifLibrary>();
  void* library = ::dlopen(name, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw StillError(noCodecErr, std::string("a HEIF or AVIF picture, and ") + name +
                                     " that reads those is not installed");
  }
#define KELTO_FIND(function) \
  heif->function =           \
      reinterpret_cast<decltype(heif->function)>(Find(library, name, "heif_" #function));
  KELTO_HEIF_FUNCTIONS(KELTO_FIND)
#undef KELTO_FIND
  return heif;
}

const HeifLibrary& Heif() {
  static const std::unique_ptr<const HeifLibrary> library = OpenHeifLibrary("libheif.so.1");
  return *library;
}

}  // namespace kelto::stills
