// A frei0r host in a few lines: a loaded plug-in and its instances.
#pragma once

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "adapters/frei0r/frei0r_interface.h"
#include "adapters/frei0r/parameters.h"

namespace kelto::test {

/// A plug-in by its file's name. Stays loaded.
class Plugin {
 public:
  Plugin(const std::string& folder, const std::string& name) {
    const std::string path = folder + "/" + name + ".so";
    library_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) throw std::runtime_error(dlerror());
    Find(init, "f0r_init");
    Find(getInfo, "f0r_get_plugin_info");
    Find(getParameterInfo, "f0r_get_param_info");
    Find(construct, "f0r_construct");
    Find(destruct, "f0r_destruct");
    Find(set, "f0r_set_param_value");
    Find(get, "f0r_get_param_value");
    Find(update, "f0r_update");
  }

  int (*init)() = nullptr;
  void (*getInfo)(frei0r::PluginInfo*) = nullptr;
  void (*getParameterInfo)(frei0r::ParameterInfo*, int) = nullptr;
  void* (*construct)(unsigned, unsigned) = nullptr;
  void (*destruct)(void*) = nullptr;
  void (*set)(void*, void*, int) = nullptr;
  void (*get)(void*, void*, int) = nullptr;
  void (*update)(void*, double, const uint32_t*, uint32_t*) = nullptr;

 private:
  template <typename Function>
  void Find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    if (function == nullptr) throw std::runtime_error(name);
  }
  void* library_ = nullptr;
};

/// An instance with frames of its size; the input is grey.
class Instance {
 public:
  static constexpr uint32_t kGrey = 0xff808080, kUntouched = 0x12345678;

  Instance(const Plugin& plugin, uint32_t width, uint32_t height)
      : input(size_t{width} * height, kGrey),
        output(size_t{width} * height, kUntouched),
        plugin_(plugin),
        handle_(plugin.construct(width, height)) {}
  ~Instance() { plugin_.destruct(handle_); }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  void Set(int index, std::string text) {
    char* value = text.data();
    plugin_.set(handle_, &value, index);
  }
  void Set(int index, double number) { plugin_.set(handle_, &number, index); }
  std::string Text(int index) {
    char* value = nullptr;
    plugin_.get(handle_, &value, index);
    return value;
  }
  double Number(int index) {
    double value = -1.0;
    plugin_.get(handle_, &value, index);
    return value;
  }
  /// Renders into `output` and returns it.
  const std::vector<uint32_t>& Render(double time = 0.0) {
    plugin_.update(handle_, time, input.data(), output.data());
    return output;
  }
  bool IsAll(uint32_t pixel) const {
    return std::all_of(output.begin(), output.end(), [=](uint32_t p) { return p == pixel; });
  }
  void* handle() { return handle_; }

  std::vector<uint32_t> input, output;

 private:
  const Plugin& plugin_;
  void* handle_;
};

}  // namespace kelto::test
