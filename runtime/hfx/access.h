// The host library's way into the private parts of the interface's classes.
#pragma once

#include <memory>

#include "platform/hfx.h"

// Keeps a private record of an exported class from being exported with it.
#if defined(_WIN32)
#define HFX_INTERNAL
#else
#define HFX_INTERNAL __attribute__((visibility("hidden")))
#endif

struct hfxHostAccess {
  static hfxParameter::Impl& Of(const hfxParameter& parameter) { return *parameter.impl_; }
  static hfxInstance_v1::Impl& Of(const hfxInstance_v1& instance) { return *instance.impl_; }
  static hfxModel_v1::Impl& Of(const hfxModel_v1& model) { return *model.impl_; }

  static void Delete(hfxParamKey* key) { delete key; }
};

namespace hfx {

struct DeleteKey {
  void operator()(hfxParamKey* key) const { hfxHostAccess::Delete(key); }
};
using OwnedKey = std::unique_ptr<hfxParamKey, DeleteKey>;

inline const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

}  // namespace hfx
