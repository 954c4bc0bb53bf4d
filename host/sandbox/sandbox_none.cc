// Systems without a sandbox that a process can enter by itself.
#include "host/base/error.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {
namespace {

SandboxUse use = SandboxUse::kAvailable;

}  // namespace

void SetSandboxUse(SandboxUse wanted) { use = wanted; }
SandboxUse CurrentSandboxUse() { return use; }

void EnterSandbox(const SandboxAccess&) {
  if (use == SandboxUse::kRequired) {
    throw Error("--sandbox: this system has none; leave --sandbox out to go without");
  }
}

void CheckNotReplaced(const std::string&) {}

std::vector<SandboxCheck> TrySandbox() { return {}; }

}  // namespace kelto::host
