#include "host/sandbox/call_rules.h"

#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>

#include <cerrno>
#include <memory>
#include <type_traits>

// The sanitizers look for leaks by ptrace().
#if defined(__SANITIZE_ADDRESS__)
#define KELTO_TRACES_ITSELF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KELTO_TRACES_ITSELF 1
#endif
#endif

namespace kelto::host {
namespace {

constexpr int kRefused[] = {
    // Programs.
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    // Connections. Pairs of sockets, which the processes of a command speak through, are none.
    SCMP_SYS(socket),
    SCMP_SYS(connect),
    SCMP_SYS(bind),
    SCMP_SYS(listen),
    SCMP_SYS(accept),
    SCMP_SYS(accept4),
#if !defined(KELTO_TRACES_ITSELF)
    SCMP_SYS(ptrace),
#endif
    // Other processes.
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(process_madvise),
    SCMP_SYS(pidfd_getfd),
    SCMP_SYS(kcmp),
    // Work that the kernel would do past this filter.
    SCMP_SYS(io_uring_setup),
    SCMP_SYS(io_uring_enter),
    SCMP_SYS(io_uring_register),
    // Files by other ways than their names, or changed in ways that Landlock leaves alone.
    SCMP_SYS(open_by_handle_at),
    SCMP_SYS(name_to_handle_at),
    SCMP_SYS(chmod),
    SCMP_SYS(fchmodat),
    SCMP_SYS(chown),
    SCMP_SYS(lchown),
    SCMP_SYS(fchownat),
    SCMP_SYS(setxattr),
    SCMP_SYS(lsetxattr),
    SCMP_SYS(removexattr),
    SCMP_SYS(lremovexattr),
    SCMP_SYS(utime),
    SCMP_SYS(utimes),
    SCMP_SYS(futimesat),
    SCMP_SYS(truncate),
    // Other views of the system.
    SCMP_SYS(mount),
    SCMP_SYS(umount2),
    SCMP_SYS(move_mount),
    SCMP_SYS(open_tree),
    SCMP_SYS(fsopen),
    SCMP_SYS(fsconfig),
    SCMP_SYS(fsmount),
    SCMP_SYS(fspick),
    SCMP_SYS(mount_setattr),
    SCMP_SYS(pivot_root),
    SCMP_SYS(chroot),
    SCMP_SYS(setns),
    SCMP_SYS(unshare),
    // The kernel's insides, where its own faults lie.
    SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd),
    SCMP_SYS(keyctl),
    SCMP_SYS(add_key),
    SCMP_SYS(request_key),
    SCMP_SYS(init_module),
    SCMP_SYS(finit_module),
    SCMP_SYS(delete_module),
    SCMP_SYS(kexec_load),
    SCMP_SYS(kexec_file_load),
    SCMP_SYS(reboot),
    SCMP_SYS(swapon),
    SCMP_SYS(swapoff),
    SCMP_SYS(acct),
    SCMP_SYS(syslog),
    SCMP_SYS(quotactl),
    SCMP_SYS(modify_ldt),
    SCMP_SYS(iopl),
    SCMP_SYS(ioperm),
};

/// Typing into the terminal, whose shell would run it.
constexpr unsigned kTyping[] = {TIOCSTI, TIOCLINUX};

struct Release {
  void operator()(scmp_filter_ctx filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, Release>;

/// Calls of the library return 0 or a negative error number.
int Load() {
  const Filter filter(seccomp_init(SCMP_ACT_ALLOW));
  if (!filter) return ENOMEM;
  const uint32_t refuse = SCMP_ACT_ERRNO(EPERM);
  int code = seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1);
  // A search by halves, since the calls of every frame pass through it.
  if (code == 0) code = seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2);
  for (const int call : kRefused) {
    if (code == 0) code = seccomp_rule_add(filter.get(), refuse, call, 0);
    if (code == -EDOM) code = 0;  // no call of this machine
  }
  for (const unsigned control : kTyping) {
    // The kernel looks at the lower half only.
    if (code == 0) {
      code = seccomp_rule_add(filter.get(), refuse, SCMP_SYS(ioctl), 1,
                              SCMP_A1(SCMP_CMP_MASKED_EQ, 0xffffffffu, control));
    }
  }
  return code == 0 ? -seccomp_load(filter.get()) : -code;
}

}  // namespace

bool FiltersCalls() {
  // Asked for a filter at no address, a kernel that has filters refuses the address.
  return prctl(PR_SET_SECCOMP, 2 /* a filter */, nullptr, 0, 0) != 0 && errno == EFAULT;
}

int RestrictCalls() {
  static bool done = false;
  if (done) return 0;
  const int error = Load();
  done = error == 0;
  return error;
}

}  // namespace kelto::host
