// Landlock: which files this process can open.
#pragma once

#include <string>
#include <vector>

#include "host/sandbox/sandbox.h"

namespace kelto::host {

/// The version of Landlock that the kernel has, 0 for none. 3 adds what keeps files from being cut
/// short by name, 6 what keeps other processes from being sent signals.
int LandlockVersion();

/// Leaves this thread, and what it begins, `access` and `always`, which is only read. Returns 0, or
/// the error number.
int RestrictFiles(const SandboxAccess& access, const std::vector<std::string>& always);

}  // namespace kelto::host
