#include "paint/PictureGolden.h"

#include <cstdlib>
#include <fstream>

#include "platform/paint/Comparison.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

namespace quillpad::drawing {
namespace {

constexpr Tolerance rounding{.channel = 8, .pixels = 20};

void save(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary)
      .write(
          reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

::testing::AssertionResult showsGolden(
    const GoldenFolders& folders,
    const std::string& name,
    const std::vector<std::uint8_t>& actual) {
  const auto shown = readPng(actual);
  if (!shown) {
    return ::testing::AssertionFailure() << name << ": " << shown.error();
  }

  const std::filesystem::path golden = folders.goldens / (name + ".png");
  const auto expected = readPngFile(golden);
  if (!expected) {
    save(golden, actual);
    return ::testing::AssertionFailure() << "recorded " << name << ": look at it, then run again";
  }
  const Comparison comparison = compare(*expected, *shown, rounding);
  if (comparison.result != CompareResult::different) {
    return ::testing::AssertionSuccess();
  }

  const auto besides = [&](const char* which) { return folders.left / (name + which + ".png"); };
  save(besides(".expected"), writePng(*expected));
  save(besides(".actual"), actual);
  if (!comparison.difference.pixels.empty()) {
    save(besides(".difference"), writePng(comparison.difference));
  }
  if (std::getenv("QUILLPAD_RECORD_GOLDENS") != nullptr) {
    save(golden, actual);
  }
  return ::testing::AssertionFailure()
         << name << " differs in " << comparison.differingPixels << " pixels, by up to "
         << comparison.largestDifference << "; see " << besides(".actual").string();
}

}  // namespace quillpad::drawing
