#include "host/film/filter_library.h"

#include <dlfcn.h>

#include <string>

#include "host/base/error.h"

namespace kelto::host {
namespace {

FilterLibrary Open() {
  const std::string name = "libavfilter.so." AV_STRINGIFY(LIBAVFILTER_VERSION_MAJOR);
  void* file = ::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (file == nullptr) {
    throw Error(name +
                ", which chooses the colours of a gif, is not installed; write .webp or "
                ".apng");
  }
  FilterLibrary library;
#define KELTO_FIND(function)                                                                 \
  library.function = reinterpret_cast<decltype(library.function)>(::dlsym(file, #function)); \
  if (library.function == nullptr) throw Error(name + ": has no " #function);
  KELTO_FILTER_FUNCTIONS(KELTO_FIND)
#undef KELTO_FIND
  return library;
}

}  // namespace

const FilterLibrary& Filters() {
  static const FilterLibrary library = Open();
  return library;
}

}  // namespace kelto::host
