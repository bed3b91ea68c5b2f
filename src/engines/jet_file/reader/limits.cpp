#include "engines/jet_file/reader/limits.h"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace voxa::jet {

namespace {

// The sanitizers need terabytes of addresses, and calls of their own.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#elif defined(__has_feature)
constexpr bool sanitized = __has_feature(address_sanitizer);
#else
constexpr bool sanitized = false;
#endif

#if defined(__x86_64__)
constexpr std::uint32_t machine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t machine = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t machine = 0;
#endif

void limit(decltype(RLIMIT_AS) resource, std::uint64_t most, std::uint64_t more = 0) {
  const rlimit both{most, most + more};
  if (::setrlimit(resource, &both) != 0) ::_exit(1);
}

}  // namespace

void limitResources(std::uint64_t memoryBytes, std::uint64_t seconds) {
  if (!sanitized) limit(RLIMIT_AS, memoryBytes);
  limit(RLIMIT_CPU, seconds, 1);  // ended by a signal that tells why, and a second later in any case
  limit(RLIMIT_FSIZE, 0);
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_NOFILE, 32);
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) ::_exit(1);
}

void limitCalls() {
  if (sanitized || machine == 0) return;
  constexpr auto allow = static_cast<std::uint32_t>(SECCOMP_RET_ALLOW);
  constexpr auto refuse = static_cast<std::uint32_t>(SECCOMP_RET_ERRNO | EPERM);
  const std::vector<int> allowed{SYS_read,   SYS_pread64,      SYS_write,          SYS_lseek,
                                 SYS_close,  SYS_mmap,         SYS_munmap,         SYS_mremap,
                                 SYS_brk,    SYS_exit,         SYS_futex,          SYS_madvise,
                                 SYS_fstat,  SYS_rt_sigreturn, SYS_exit_group,     SYS_getpid,
                                 SYS_gettid, SYS_tgkill,       SYS_rt_sigprocmask, SYS_newfstatat};
  const auto instruction = [](unsigned code, std::uint32_t k, std::uint8_t yes = 0, std::uint8_t no = 0) {
    return sock_filter{static_cast<std::uint16_t>(code), yes, no, k};
  };
  std::vector<sock_filter> program{
      instruction(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
      instruction(BPF_JMP | BPF_JEQ | BPF_K, machine, 1, 0),
      instruction(BPF_RET | BPF_K, refuse),
      instruction(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
  };
  for (const int call : allowed) {
    program.push_back(instruction(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1));
    program.push_back(instruction(BPF_RET | BPF_K, allow));
  }
  program.push_back(instruction(BPF_RET | BPF_K, refuse));
  const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
  // A system without it has the other limits.
  (void)::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0);
}

}  // namespace voxa::jet
