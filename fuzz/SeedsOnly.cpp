// In place of a fuzzing engine: gives the target every file of the folder that is named.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Target.h"

int main(int count, char** arguments) {
  int seeds = 0;
  for (const auto& entry : std::filesystem::directory_iterator(count > 1 ? arguments[1] : ".")) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::puts(entry.path().c_str());
    quillpad::tryInput(std::string(std::istreambuf_iterator<char>(file), {}));
    ++seeds;
  }
  return seeds > 0 ? 0 : 1;
}
