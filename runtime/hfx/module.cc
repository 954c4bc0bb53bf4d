#include <filesystem>

#include "runtime/hfx/dynamic_library.h"
#include "runtime/hfx/failure.h"
#include "runtime/hfx/host.h"

namespace hfx {
namespace {

/// Looks entry points up and remembers which are missing.
class EntryPoints {
 public:
  explicit EntryPoints(void* library) : library_(library) {}

  template <typename Function>
  void Find(const char* name, Function& function) {
    function = reinterpret_cast<Function>(FindSymbol(library_, name));
    if (function == nullptr) missing_ += (missing_.empty() ? "" : ", ") + std::string(name);
  }

  const std::string& missing() const { return missing_; }

 private:
  void* library_;
  std::string missing_;
};

/// Says why `path` cannot be a module file; empty when it may be one.
std::string ReasonAgainst(const std::filesystem::path& path) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  if (status.type() == std::filesystem::file_type::not_found) return "no such file";
  if (failure) return failure.message();
  return std::filesystem::is_regular_file(status) ? "" : "not a file";
}

}  // namespace

std::unique_ptr<Module> Module::Load(const std::filesystem::path& path, std::string* error) {
  const auto refuse = [&](const std::string& reason) {
    Fail(error, "cannot load module '" + path.string() + "': " + reason);
    return nullptr;
  };
  if (const std::string reason = ReasonAgainst(path); !reason.empty()) return refuse(reason);

  std::unique_ptr<Module> module(new Module);
  std::string reason;
  // An absolute path, because a bare name would be looked for among the system's libraries.
  module->library_ = OpenLibrary(std::filesystem::absolute(path), &reason);
  if (module->library_ == nullptr) return refuse(reason);

  EntryPoints entries(module->library_);
  entries.Find("hfxStartUp_v1", module->startUp);
  entries.Find("hfxShutDown_v1", module->shutDown);
  entries.Find("hfxNumModels_v1", module->numModels);
  entries.Find("hfxNewModel_v1", module->newModel);
  entries.Find("hfxNewOverlay_v1", module->newOverlay);
  entries.Find("hfxGetModelAttributes_v1ext", module->getModelAttributes);
  entries.Find("hfxSetAttribute", module->setAttribute);
  if (!entries.missing().empty()) return refuse("missing entry points " + entries.missing());

  reason = "hfxStartUp_v1 reports failure";
  module->started_ = Guarded("hfxStartUp_v1", &reason, [&] { return module->startUp() != 0; });
  return module->started_ ? std::move(module) : refuse(reason);
}

Module::~Module() {
  std::string error;
  if (started_ && !Guarded("hfxShutDown_v1", &error, [&] { return shutDown(), true; })) {
    hfxGlobal::ConsolePrintf("hfx: %s\n", error.c_str());
  }
  if (library_ != nullptr) CloseLibrary(library_);
}

void Module::SetHostState(hfxHostStateCallback callback) {
  int32_t result = 0;
  setAttribute(/*reserved=*/0, /*attribute=*/0, reinterpret_cast<intptr_t>(callback), &result);
}

}  // namespace hfx
