#include "platform/os/SystemCallFilters.h"

#include <cstdint>
#include <linux/seccomp.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillpad {

bool kernelHasSystemCallFilters() {
  const std::uint32_t action = SECCOMP_RET_ERRNO;
  return ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
}

}  // namespace quillpad
