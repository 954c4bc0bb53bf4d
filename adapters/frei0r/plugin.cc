// The functions that a frei0r host looks up. Compiled once for each plug-in, with its role.
#include <cstring>
#include <new>

#include "adapters/frei0r/adapter.h"
#include "adapters/frei0r/frei0r_interface.h"
#include "adapters/frei0r/parameters.h"
#include "adapters/frei0r/row_length.h"

#define KELTO_FREI0R_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

using namespace kelto::frei0r;

constexpr Role kRole = KELTO_FREI0R_IS_SOURCE ? Role::kSource : Role::kFilter;

const Parameter* ParameterAt(int index) {
  const auto table = Parameters(kRole);
  if (index < 0 || static_cast<size_t>(index) >= table.size()) return nullptr;
  return &table[static_cast<size_t>(index)];
}

}  // namespace

// Nothing is done before the first frame: hosts look at every plug-in that they find, and make
// instances that never render. One of them takes an answer of 0 for failure.
KELTO_FREI0R_EXPORT int f0r_init() { return 1; }

KELTO_FREI0R_EXPORT void f0r_deinit() {}

KELTO_FREI0R_EXPORT void f0r_get_plugin_info(PluginInfo* info) {
  // Hosts name the effect after this name or after the file, so both are the same.
  *info = {NameOf(kRole),
           "Kelto",
           kRole == Role::kSource ? kTypeSource : kTypeFilter,
           kModelBGRA8888,
           kInterfaceMajor,
           KELTO_VERSION_MAJOR,
           KELTO_VERSION_MINOR,
           kParameterCount,
           kRole == Role::kSource ? "Pans and zooms over a photograph"
                                  : "Pans and zooms over a photograph, drawn over the video"};
}

KELTO_FREI0R_EXPORT void f0r_get_param_info(ParameterInfo* info, int index) {
  const Parameter* parameter = ParameterAt(index);
  if (parameter == nullptr) return;
  *info = {parameter->name, parameter->isText ? kValueString : kValueDouble,
           parameter->explanation.c_str()};
}

KELTO_FREI0R_EXPORT void* f0r_construct(unsigned int width, unsigned int height) {
  try {
    const void* caller = __builtin_return_address(0);
    return new Adapter(kRole, width, height, RowLength(caller, width), ClockOf(caller));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

KELTO_FREI0R_EXPORT void f0r_destruct(void* instance) { delete static_cast<Adapter*>(instance); }

KELTO_FREI0R_EXPORT void f0r_set_param_value(void* instance, void* value, int index) {
  const Parameter* parameter = ParameterAt(index);
  if (instance == nullptr || value == nullptr || parameter == nullptr) return;
  auto& adapter = *static_cast<Adapter*>(instance);
  if (parameter->isText) {
    adapter.SetText(index, *static_cast<char**>(value));
  } else {
    adapter.SetNumber(index, *static_cast<double*>(value));
  }
}

KELTO_FREI0R_EXPORT void f0r_get_param_value(void* instance, void* value, int index) {
  const Parameter* parameter = ParameterAt(index);
  if (instance == nullptr || value == nullptr || parameter == nullptr) return;
  const auto& adapter = *static_cast<Adapter*>(instance);
  if (parameter->isText) {
    *static_cast<const char**>(value) = adapter.Text(index);
  } else {
    *static_cast<double*>(value) = adapter.Number(index);
  }
}

KELTO_FREI0R_EXPORT void f0r_update(void* instance, double time, const uint32_t* inFrame,
                                    uint32_t* outFrame) {
  if (instance != nullptr) static_cast<Adapter*>(instance)->Render(time, inFrame, outFrame);
}
