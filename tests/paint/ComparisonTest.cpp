#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "fixtures/TemporaryHome.h"
#include "platform/paint/Comparison.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

namespace quillpad::drawing {
namespace {

Bitmap grey(int width, int height, std::uint8_t value = 100) {
  return {
      .width = width,
      .height = height,
      .pixels =
          std::vector<ui::Rgba>(static_cast<std::size_t>(width * height), {value, value, value})};
}

TEST(Comparison, CountsWhatIsBeyondTheTolerance) {
  const Bitmap expected = grey(4, 4);
  Bitmap actual = expected;
  EXPECT_EQ(compare(expected, actual).result, CompareResult::identical);
  actual.pixels[5].green = 102;
  actual.pixels[6].alpha = 245;
  const Comparison strict = compare(expected, actual);
  EXPECT_EQ(strict.result, CompareResult::different);
  EXPECT_EQ(strict.differingPixels, 2);
  EXPECT_EQ(strict.largestDifference, 10);
  const Comparison lenient = compare(expected, actual, {.channel = 2, .pixels = 1});
  EXPECT_EQ(lenient.result, CompareResult::similar);
  EXPECT_EQ(lenient.differingPixels, 1);
  const ui::Rgba marked = lenient.difference.pixels[6];
  EXPECT_GT(marked.red - marked.green, 100);
  const ui::Rgba tolerated = lenient.difference.pixels[5];
  EXPECT_EQ(tolerated.red, tolerated.green);
}

TEST(Comparison, SizesMustBeEqual) {
  const Comparison comparison = compare(grey(4, 4), grey(3, 5), {.channel = 255, .pixels = 99});
  EXPECT_EQ(comparison.result, CompareResult::different);
  EXPECT_EQ(comparison.differingPixels, 8);
  const Bitmap& difference = comparison.difference;
  EXPECT_EQ(difference.pixels.size(), 20U);
  EXPECT_NE(difference.row(4)[0], difference.row(0)[0]);
  EXPECT_EQ(difference.row(4)[0], difference.row(0)[3]);
  const Bitmap wide = grey(1 << 20, 1);
  const Bitmap high = grey(1, 1 << 20);
  EXPECT_TRUE(compare(wide, high).difference.pixels.empty());
}

TEST(Comparison, UnseenPixelsHaveNoColour) {
  const Bitmap one{.width = 1, .height = 1, .pixels = {{10, 20, 30, 0}}};
  const Bitmap other{.width = 1, .height = 1, .pixels = {{200, 0, 0, 0}}};
  EXPECT_EQ(compare(one, other).result, CompareResult::identical);
}

TEST(Bitmap, BadFilesAreErrors) {
  const fixtures::TemporaryHome home;
  const std::vector<std::uint8_t> good = writePng(grey(30, 30));
  for (const std::size_t length :
       {std::size_t{0}, std::size_t{8}, std::size_t{33}, good.size() - 20}) {
    EXPECT_FALSE(readPng(std::span(good).first(length)).has_value()) << length;
  }
  std::vector<std::uint8_t> flipped = good;
  flipped[good.size() / 2] ^= 0x40;
  EXPECT_FALSE(readPng(flipped).has_value());

  const std::filesystem::path file = home.path() / "note.png";
  std::ofstream(file) << "not a picture";
  for (const auto& path : {file, home.path() / "missing.png", home.path()}) {
    const auto picture = readPngFile(path);
    ASSERT_FALSE(picture.has_value());
    EXPECT_NE(picture.error().find(path.string()), std::string::npos) << picture.error();
  }
}

TEST(Bitmap, ScalingKeepsTheMean) {
  Bitmap checks{.width = 8, .height = 8, .pixels = {}};
  for (int i = 0; i < 64; ++i) {
    const bool on = (i % 8 + i / 8) % 2 == 0;
    checks.pixels.push_back(on ? ui::Rgba{255, 0, 0, 255} : ui::Rgba{0, 255, 0, 0});
  }
  const Bitmap half = scaled(checks, 4, 4);
  ASSERT_EQ(half.pixels.size(), 16U);
  for (const ui::Rgba pixel : half.pixels) {
    EXPECT_EQ(pixel, (ui::Rgba{255, 0, 0, 128}));
  }
  EXPECT_EQ(scaled(grey(7, 5), 3, 11).pixels, grey(3, 11).pixels);
}

}  // namespace
}  // namespace quillpad::drawing
