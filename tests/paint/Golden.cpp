#include "paint/Golden.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>

#include "fixtures/Program.h"
#include "platform/paint/Comparison.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

namespace quillpad::drawing {
namespace {

constexpr Tolerance rounding{.channel = 8, .pixels = 20};

std::string textOf(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

void save(const std::filesystem::path& file, const std::string& bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

// How the golden differs from what is there; nothing where it does not.
using Differences = std::function<std::optional<std::string>(const std::string& golden)>;

::testing::AssertionResult compareWithGolden(
    const std::filesystem::path& golden,
    const std::filesystem::path& left,
    const std::string& actual,
    const Differences& differences) {
  if (!std::filesystem::exists(golden)) {
    save(golden, actual);
    return ::testing::AssertionFailure() << "recorded " << golden << ": look, then run again";
  }
  const auto found = differences(fixtures::contentsOf(golden));
  if (!found) {
    return ::testing::AssertionSuccess();
  }
  save(left, actual);
  if (std::getenv("QUILLPAD_RECORD_GOLDENS") != nullptr) {
    save(golden, actual);
  }
  return ::testing::AssertionFailure() << left << " differs from its golden: " << *found;
}

// The first line in which the texts differ, of either.
std::optional<std::string> differingLine(const std::string& expected, const std::string& actual) {
  std::istringstream expectedLines(expected);
  std::istringstream actualLines(actual);
  std::string one;
  std::string other;
  for (int number = 1; expected != actual; ++number) {
    std::getline(expectedLines, one);
    std::getline(actualLines, other);
    if (one != other || !expectedLines || !actualLines) {
      return "\nline " + std::to_string(number) + "\nexpected: " + one + "\nactual:   " + other;
    }
  }
  return std::nullopt;
}

}  // namespace

::testing::AssertionResult matchesGolden(const std::string& name, const std::string& actual) {
  const GoldenFolders folders;
  return compareWithGolden(
      folders.goldens / name, folders.left / name, actual, [&](const std::string& golden) {
        return differingLine(golden, actual);
      });
}

::testing::AssertionResult showsGolden(
    const std::string& name,
    const std::vector<std::uint8_t>& actual,
    const GoldenFolders& folders) {
  const auto left = [&](const char* which) { return folders.left / (name + which + ".png"); };
  const auto differences = [&](const std::string& golden) -> std::optional<std::string> {
    const Bitmap expected =
        readPng(std::vector<std::uint8_t>(golden.begin(), golden.end())).value();
    const Comparison comparison = compare(expected, readPng(actual).value(), rounding);
    if (comparison.result != CompareResult::different) {
      return std::nullopt;
    }
    save(left(".expected"), golden);
    if (!comparison.difference.pixels.empty()) {
      save(left(".difference"), textOf(writePng(comparison.difference)));
    }
    return std::to_string(comparison.differingPixels) + " pixels, by up to " +
           std::to_string(comparison.largestDifference);
  };
  return compareWithGolden(
      folders.goldens / (name + ".png"), left(".actual"), textOf(actual), differences);
}

}  // namespace quillpad::drawing
