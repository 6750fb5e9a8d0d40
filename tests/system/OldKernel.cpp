// Preloaded into the programs: a kernel whose Landlock is no newer than LANDLOCK_VERSION says.
#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <sys/syscall.h>

extern "C" long syscall(long number, long a, long b, long c, long d, long e, long f) {
  static const auto next = reinterpret_cast<decltype(&syscall)>(::dlsym(RTLD_NEXT, "syscall"));
  const long result = next(number, a, b, c, d, e, f);
  const bool asksForVersion = number == SYS_landlock_create_ruleset && a == 0;
  return asksForVersion ? std::min(result, std::atol(std::getenv("LANDLOCK_VERSION"))) : result;
}
