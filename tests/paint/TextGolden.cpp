#include "paint/TextGolden.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

namespace quillpad::drawing {
namespace {

std::optional<std::string> contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return std::nullopt;
  }
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

// The lines that only one of the texts has at their place.
std::string differences(const std::string& expected, const std::string& actual) {
  std::istringstream expectedLines(expected);
  std::istringstream actualLines(actual);
  std::string differing;
  for (int number = 1; expectedLines || actualLines; ++number) {
    std::string one;
    std::string other;
    std::getline(expectedLines, one);
    std::getline(actualLines, other);
    if (one != other) {
      differing += std::to_string(number) + " expected: " + one + "\n";
      differing += std::to_string(number) + " actual:   " + other + "\n";
    }
  }
  return differing;
}

}  // namespace

::testing::AssertionResult matchesGolden(const std::string& name, const std::string& actual) {
  const std::filesystem::path golden = std::filesystem::path(GOLDENS_FOLDER) / name;
  const auto expected = contents(golden);
  const bool recordsAll = std::getenv("QUILLPAD_RECORD_GOLDENS") != nullptr;
  if (!expected || (recordsAll && *expected != actual)) {
    write(golden, actual);
    return ::testing::AssertionFailure() << "recorded " << name << ": look at it, then run again";
  }
  if (*expected == actual) {
    return ::testing::AssertionSuccess();
  }
  const std::filesystem::path left = std::filesystem::path(ACTUAL_FOLDER) / name;
  write(left, actual);
  return ::testing::AssertionFailure() << name << " differs, see " << left.string() << "\n"
                                       << differences(*expected, actual);
}

}  // namespace quillpad::drawing
