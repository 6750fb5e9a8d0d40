#include <cerrno>
#include <cstdio>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/os/Landlock.h"
#include "platform/widgets/Sandbox.h"

namespace quillpad {
namespace {

using testing::ExitedWithCode;

[[noreturn]] void enterAndTell() {
  const auto entered = widgets::enterSandbox({});
  std::fputs(entered ? "entered" : entered.error().c_str(), stderr);
  ::_exit(entered ? 0 : 1);
}

[[noreturn]] void enterWithoutDescriptors() {
  constexpr rlimit none{0, 0};
  ::setrlimit(RLIMIT_NOFILE, &none);
  enterAndTell();
}

// The kernel has filters and takes no more.
[[noreturn]] void enterWithoutMemoryForFilters() {
  sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_seccomp, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SECCOMP_SET_MODE_FILTER, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOMEM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{std::size(program), program};
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
  enterAndTell();
}

TEST(Sandbox, WhatCouldBeClosedAndIsNotIsTold) {
  if (LandlockRuleset::kernelVersion() >= 4) {
    EXPECT_EXIT(
        enterWithoutDescriptors(), ExitedWithCode(1), "the network cannot be closed to it: ");
  }
  EXPECT_EXIT(
      enterWithoutMemoryForFilters(),
      ExitedWithCode(1),
      "the kernel cannot be closed to it: Cannot allocate memory; end other programs and try");
}

}  // namespace
}  // namespace quillpad
