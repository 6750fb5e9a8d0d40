#include "home/extension/MemoryUse.h"

#include <fstream>
#include <string>

namespace quillpad::home {

std::size_t privateMemory(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  std::size_t kilobytes = 0;
  for (std::string name; file >> name;) {
    if (name == "RssAnon:" || name == "RssShmem:") {
      std::size_t count = 0;
      file >> count;
      kilobytes += count;
    }
    std::getline(file, name);
  }
  return kilobytes * 1024;
}

}  // namespace quillpad::home
