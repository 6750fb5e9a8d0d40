#include "home/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace home {

Done print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    return failure(
        ExitStatus::notPossible,
        std::string("cannot write to standard output: ") + std::strerror(errno));
  }
  return {};
}

}  // namespace home
