// Keeps a process that decodes files from strangers from what decoding does not need: other files,
// the network, other programs and processes. A fault in a codec then costs a film at most.
//
// The kernel does the keeping: Landlock, of Linux 5.13 and later, for files, and a seccomp filter
// for system calls. Neither can be lifted again, and both hold for every process and thread begun
// later.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// What a process may go on touching. Names of what does not exist are passed over.
struct SandboxAccess {
  std::vector<std::string> reads;   ///< files; or folders, with all that is below them
  std::vector<std::string> writes;  ///< folders, or files by their folders, to write, read and list
  std::vector<std::string> devices{};  ///< to be used in any way; or folders of them
};

enum class SandboxUse {
  kNone,       ///< nothing is kept from anything
  kAvailable,  ///< as much as the kernel has
  kRequired,   ///< all of it, or EnterSandbox throws
};

/// Settles what EnterSandbox does from now on; kAvailable at first.
void SetSandboxUse(SandboxUse use);
SandboxUse CurrentSandboxUse();

/// Keeps this process from all files but those of `access` and what the system's libraries read,
/// from connections, from starting programs and from other processes' memory; only files that are
/// open already stay open. Entered again, it allows what every `access` so far did. To be called
/// while this process has no thread that decodes. Throws Error where it is required and the kernel
/// has not all of it, or where the kernel has it and fails.
void EnterSandbox(const SandboxAccess& access);

/// Throws Error that says so where `file` is one that the sandbox keeps this process from, though
/// it may be read otherwise: what is allowed is the file that was there when the sandbox was
/// entered, and another one has its name now.
void CheckNotReplaced(const std::string& file);

/// A part of the sandbox, and why it does not hold; empty when it does.
struct SandboxCheck {
  std::string name;
  std::string fault;
};

/// Enters the sandbox in a process made for it, and tries there what the sandbox is to prevent.
std::vector<SandboxCheck> TrySandbox();

}  // namespace kelto::host
