#include "home/extension/MemoryUse.h"

#include <fstream>
#include <string>
#include <unistd.h>

namespace quillpad::home {

std::size_t privateMemory(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  std::size_t ofFiles = 0;
  if (!(file >> total >> resident >> ofFiles)) {
    return 0;
  }
  return (resident - ofFiles) * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace quillpad::home
