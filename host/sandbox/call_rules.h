// seccomp: which system calls this process can make.
#pragma once

namespace kelto::host {

/// Whether the kernel filters system calls.
bool FiltersCalls();

/// Refuses with EPERM, in all threads of this process and in what they begin, the system calls that
/// start programs, open connections, reach other processes or the kernel's insides, or change files
/// in ways that Landlock does not see. Returns 0, or the error number. Done once, it stays done.
int RestrictCalls();

}  // namespace kelto::host
