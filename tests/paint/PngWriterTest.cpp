#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "fixtures/Program.h"
#include "paint/DrawnCard.h"
#include "platform/paint/Canvas.h"
#include "platform/paint/Comparison.h"
#include "platform/paint/PngEncoder.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"
#include "platform/paint/SvgWriter.h"

namespace quillpad::drawing {
namespace {

using Bytes = std::vector<std::uint8_t>;

void save(const std::filesystem::path& file, const Bytes& bytes) {
  std::ofstream(file, std::ios::binary)
      .write(
          reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

ui::Rgba at(const Bitmap& picture, int x, int y) { return picture.row(y)[x]; }

class PngWriterTest : public DrawingTest {
 protected:
  Bitmap draw(const DisplayList& list) {
    file_ = writer_.write(list, ui::Appearance::light).value();
    return readPng(file_).value();
  }

  bool lastHasPalette() const { return file_.at(25) == 3; }

  PngWriter writer_{fonts_, pictures_};
  Bytes file_;
};

TEST_F(PngWriterTest, CornersAreRoundAndClear) {
  for (const int scale : {1, 2, 3}) {
    const Bitmap picture = draw(card({158, 158}, scale, {}));
    ASSERT_EQ(picture.width, 158 * scale);
    EXPECT_TRUE(lastHasPalette());
    const int last = picture.width - 1;
    double clear = 0;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const int alpha = at(picture, x, y).alpha;
        EXPECT_EQ(alpha, at(picture, last - x, y).alpha);
        EXPECT_EQ(alpha, at(picture, x, last - y).alpha);
        clear += 1 - alpha / 255.0;
      }
    }
    const double radius = 22.0 * scale;
    EXPECT_NEAR(clear, (4 - std::numbers::pi) * radius * radius, 2.0 * scale);
    EXPECT_EQ(at(picture, 0, 0).alpha, 0);
    EXPECT_EQ(at(picture, last / 2, last / 2), white);
  }
}

TEST_F(PngWriterTest, EdgesBetweenPixelsCoverThemInPart) {
  const Rect hairline{16, 50, 100, 0.5};
  const Bitmap coarse = draw(card({158, 158}, 1, {fill(hairline, black)}));
  EXPECT_NEAR(at(coarse, 60, 50).red, 127, 3);
  EXPECT_EQ(at(coarse, 60, 51), white);
  const Bitmap fine = draw(card({158, 158}, 2, {fill(hairline, black)}));
  EXPECT_EQ(at(fine, 120, 100), black);
  EXPECT_EQ(at(fine, 120, 101), white);
}

TEST_F(PngWriterTest, ClipMasks) {
  const Rect disc{20, 20, 32, 32};
  const Bitmap clipped =
      draw(card({80, 80}, 3, {fill({0, 0, 80, 80}, green, 0, {Clip{disc, 16}})}));
  const Bitmap round = draw(card({80, 80}, 3, {fill(disc, green, 16)}));
  EXPECT_EQ(compare(round, clipped).differingPixels, 0);
}

// The same content on either canvas: three hundred colours in a corner leave no room for a palette.
TEST_F(PngWriterTest, PaletteAndFullColourLookAlike) {
  const ui::View view = ui::Text::verbatim("Quick figures 1,234.56")
                            .font({15, ui::Weight::medium})
                            .foregroundColor(ui::Rgba{34, 114, 255});
  DisplayList list = composed(view, {.size = {338, 158}, .scale = 3});
  list.items.push_back(fill({20.25, 20.25, 40, 40}, ui::Rgba{255, 161, 29, 120}));
  list.items.push_back(fill({40, 30, 40, 40}, green, 16));
  const Bitmap few = draw(list);
  EXPECT_TRUE(lastHasPalette());
  const Rect corner{300, 130, 1.0 / 3, 1.0 / 3};
  for (int i = 0; i < 300; ++i) {
    list.items.push_back(fill(
        corner,
        ui::Rgba{static_cast<std::uint8_t>(i % 256), static_cast<std::uint8_t>(i / 256), 7}));
  }
  const Bitmap many = draw(list);
  EXPECT_FALSE(lastHasPalette());
  const Comparison comparison = compare(few, many, {.channel = 3, .pixels = 1});
  EXPECT_LE(comparison.differingPixels, 1);
}

TEST_F(PngWriterTest, EmojiAreDrawnInColour) {
  const ui::View face = ui::Text::verbatim("\U0001F600").font({20, ui::Weight::regular});
  const DisplayList list = composed(face, {.scale = 2});
  const GlyphRun& run = std::get<TextItem>(list.items.at(1).content).runs.at(0);
  if (!fonts_.hasColorBitmaps(run.font)) {
    GTEST_SKIP() << "no emoji font";
  }
  int yellow = 0;
  for (const ui::Rgba pixel : draw(list).pixels) {
    if (pixel.red > 200 && pixel.green > 150 && pixel.blue < 100) {
      ++yellow;
    }
  }
  EXPECT_GT(yellow, 400);
  EXPECT_FALSE(lastHasPalette());
}

TEST_F(PngWriterTest, MissingAndDamagedPicturesLeaveTheDisc) {
  const DisplayList bare = card({80, 80}, 2, {fill({20, 20, 32, 32}, green, 16)});
  DisplayList list = bare;
  list.items.push_back({ImageItem{"Graph", {26, 26, 20, 20}}, {Clip{{20, 20, 32, 32}, 16}}});
  EXPECT_EQ(compare(draw(bare), draw(list)).result, CompareResult::identical);

  const Bitmap bar{.width = 40, .height = 40, .pixels = std::vector<ui::Rgba>(1600, white)};
  Bytes damaged = writePng(bar);
  damaged.resize(damaged.size() / 2);
  save(home_.path() / "Graph@2x.png", damaged);
  Pictures broken(bundle_);
  EXPECT_EQ(file_, PngWriter(fonts_, broken).write(list, ui::Appearance::light).value());

  save(home_.path() / "Graph@2x.png", writePng(bar));
  Pictures whole(bundle_);
  file_ = PngWriter(fonts_, whole).write(list, ui::Appearance::light).value();
  const Bitmap picture = readPng(file_).value();
  EXPECT_EQ(at(picture, 52, 52), white);
  EXPECT_EQ(at(picture, 91, 91), white);
  EXPECT_EQ(at(picture, 50, 72), green);
  EXPECT_EQ(whole.naturalSize("Graph"), (Size{20, 20}));
}

TEST_F(PngWriterTest, WhatReachesBeyondTheCardIsCut) {
  const Bitmap picture = draw(card(
      {40, 40},
      3,
      {fill({-100, -100, 150, 115}, green),
       fill({30, 30, 500, 500}, black, 4),
       fill({-1e12, 5, 2e12, 1}, green),
       fill({10, 10, -5, 3}, green)},
      0));
  EXPECT_EQ(at(picture, 0, 0), green);
  EXPECT_EQ(at(picture, 119, 119), black);
  EXPECT_EQ(at(picture, 0, 119), white);
}

// Its left edge runs through the card as a straight line would; its corners are far outside.
TEST_F(PngWriterTest, ShapesFarLargerThanTheCardAreDrawnWhereTheyShow) {
  const Rect huge{20, -1e6, 2e6, 2e6};
  const Clip clip{huge, 1e6};
  for (const Item& item : {fill(huge, green, 1e6), fill({0, 0, 40, 40}, green, 4, {clip})}) {
    const Bitmap picture = draw(card({40, 40}, 3, {item}, 0));
    EXPECT_EQ(at(picture, 59, 60), white);
    EXPECT_EQ(at(picture, 61, 60), green);
    EXPECT_EQ(at(picture, 100, 115), green);
  }
}

TEST_F(PngWriterTest, TheGroundDoesNotShowThroughColouredCorners) {
  constexpr ui::Rgba half{17, 184, 38, 128};
  const Rect all{0, 0, 60, 60};
  const Clip corners{all, 22};
  const std::tuple<const char*, Item, ui::Rgba> cases[] = {
      {"clipped by the card", fill(all, green, 0, {corners}), green},
      {"round as the card", fill(all, green, 22, {corners}), green},
      {"larger than the card", fill({-9, -9, 90, 90}, green, 0, {corners}), green},
      {"translucent", fill(all, half, 0, {corners}), over(white, half, fullCoverage)},
      {"upper half alone", fill({0, 0, 60, 30}, green, 0, {corners}), green},
  };
  for (const auto& [what, item, color] : cases) {
    const Bitmap picture = draw(card({60, 60}, 2, {item}));
    for (int y = 0; y < 60; ++y) {
      for (int x = 0; x < 120; ++x) {
        const ui::Rgba pixel = at(picture, x, y);
        ASSERT_TRUE(pixel.alpha == 0 || (pixel.red == color.red && pixel.blue == color.blue))
            << what << ": " << x << ", " << y;
      }
    }
  }
}

TEST_F(PngWriterTest, GlyphsStandAtQuarterPixelsInBothDirections) {
  const ui::View view = ui::Text::verbatim("n").font({40, ui::Weight::regular});
  const DisplayList list = composed(view, {.scale = 1});
  const auto shifted = [&](double x, double y) {
    DisplayList copy = list;
    Point& origin = std::get<TextItem>(copy.items.at(1).content).runs.at(0).glyphs.at(0).origin;
    origin = {std::round(origin.x) + x, std::round(origin.y) + y};
    return draw(copy);
  };
  // How far down and to the right the ink lies, in pixels.
  const auto centre = [](const Bitmap& picture) {
    Point sum;
    double ink = 0;
    for (int y = 30; y < 130; ++y) {
      for (int x = 30; x < 130; ++x) {
        const double dark = 255 - at(picture, x, y).red;
        sum = {sum.x + dark * x, sum.y + dark * y};
        ink += dark;
      }
    }
    return Point{sum.x / ink, sum.y / ink};
  };
  const Point start = centre(shifted(0, 0));
  for (const double part : {0.25, 0.5, 0.75}) {
    EXPECT_NEAR(centre(shifted(part, 0)).x - start.x, part, 0.03);
    EXPECT_NEAR(centre(shifted(0, part)).y - start.y, part, 0.03);
  }
}

TEST_F(PngWriterTest, APictureOfAnotherScaleIsBroughtToSize) {
  for (const char* suffix : {"", "@2x", "@3x"}) {
    const fixtures::TemporaryHome home;
    const Bundle bundle(home.path());
    const Bitmap disc{.width = 12, .height = 12, .pixels = std::vector<ui::Rgba>(144, green)};
    save(home.path() / (std::string("Dot") + suffix + ".png"), writePng(disc));
    Pictures pictures(bundle);
    for (const int scale : {1, 2, 3}) {
      const DisplayList list = card({40, 40}, scale, {{ImageItem{"Dot", {10, 10, 6, 6}}, {}}});
      const auto file = PngWriter(fonts_, pictures).write(list, ui::Appearance::light).value();
      EXPECT_EQ(at(readPng(file).value(), 13 * scale, 13 * scale), green) << suffix << scale;
      const std::string svg = writeSvg(list, {}, fonts_, pictures, "w").value();
      EXPECT_NE(svg.find("<image"), std::string::npos) << suffix;
    }
  }
}

TEST_F(PngWriterTest, FilesSayThatTheirColoursAreSrgb) {
  draw(card({9, 9}, 1, {}));
  const std::string file(file_.begin(), file_.end());
  const std::size_t chunk = file.find("sRGB");
  EXPECT_LT(chunk, file.find("PLTE"));
  EXPECT_EQ(file.substr(chunk - 4, 4), std::string("\0\0\0\1", 4));
}

// In all formats that paint; each would take minutes or gigabytes.
TEST_F(PngWriterTest, TooMuchWorkIsRefused) {
  const auto many = [](std::size_t count, const Item& item) {
    return card({3000, 3000}, 1, std::vector<Item>(count, item));
  };
  const Rect all{0, 0, 3000, 3000};
  const Clip clip{{1, 1, 2998, 2998}, 5};
  const GlyphRun huge{.font = {}, .size = 1e6, .glyphs = std::vector<Glyph>(17)};
  for (const DisplayList& list :
       {many(40, fill(all, green)),
        many(4, {Fill{all, green, 0}, std::vector<Clip>(9, clip)}),
        many(20'000, fill({-5, -5, 1, 1}, green)),
        many(9, {ImageItem{"Graph", {0, 0, 5000, 6000}}, {}}),
        many(1, {TextItem{.text = "", .frame = all, .font = {}, .runs = {huge}}, {}})}) {
    const auto file = writer_.write(list, ui::Appearance::light);
    ASSERT_FALSE(file.has_value());
    EXPECT_TRUE(file.error().starts_with("the card has too much to draw: "));
  }
  EXPECT_TRUE(writer_.write(many(20, fill(all, green)), ui::Appearance::light).has_value());
}

TEST_F(PngWriterTest, ImpossibleSizesAreRefused) {
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::pair<Size, int>> impossible{
      {{0, 158}, 2},
      {{158, -1}, 2},
      {{notANumber, 158}, 2},
      {{10000, 10000}, 3},
      {{1e300, 1e300}, 1},
      {{158, 158}, 0},
      {{158, 158}, 4}};
  for (const auto& [size, scale] : impossible) {
    const auto file = writer_.write(card(size, scale, {}), ui::Appearance::light);
    ASSERT_FALSE(file.has_value()) << size.width << " x " << size.height;
    EXPECT_NE(file.error().find("cannot be drawn"), std::string::npos);
    EXPECT_FALSE(writeSvg(card(size, scale, {}), {}, fonts_, pictures_, "w").has_value());
  }
  EXPECT_EQ(draw(card({1, 1}, 1, {})).pixels.size(), 1U);
  EXPECT_EQ(draw(card({40000, 2}, 1, {fill({35000, 0, 10, 2}, green)}, 0)).width, 40000);
}

// Whatever the pixels, what is read back is what was written.
TEST(Png, KeepsEveryPixel) {
  std::mt19937 random(7);
  for (const int width :
       {1, 2, 3, 4, 5, 63, 64, 65, 66, 129, 256, 257, 258, 259, 8191, 8193, 40000}) {
    for (const int noise : {0, 1, 20, 100}) {  // per cent of pixels that are not their left one's
      Bitmap picture{.width = width, .height = width > 1000 ? 3 : 9, .pixels = {}};
      ui::Rgba color = white;
      for (int i = 0; i < width * picture.height; ++i) {
        if (static_cast<int>(random() % 100) < noise) {
          const auto component = [&] { return static_cast<std::uint8_t>(random()); };
          color = {component(), component(), component(), component()};
        }
        picture.pixels.push_back(color);
      }
      const auto back = readPng(writePng(picture));
      ASSERT_TRUE(back.has_value()) << back.error();
      EXPECT_TRUE(back->pixels == picture.pixels) << width << ", noise " << noise;
    }
  }
}

// Wherever in memory the encoder lies: those of one thread and of several draw the same files.
TEST(Png, TheBytesAreAFunctionOfThePixels) {
  std::mt19937 random(1);
  std::vector<Bitmap> pictures(16, Bitmap{.width = 64, .height = 64, .pixels = {}});
  for (Bitmap& picture : pictures) {
    for (int i = 0; i < 64 * 64; ++i) {
      picture.pixels.push_back(random() % 8 < 6 ? white : green);
    }
  }
  std::vector<std::unique_ptr<PngEncoder>> alive;  // each at an address of its own
  std::vector<Bytes> first;
  for (int i = 0; i < 300; ++i) {
    alive.push_back(std::make_unique<PngEncoder>());
    for (std::size_t k = 0; k < pictures.size(); ++k) {
      const Bytes file = alive.back()->encode(
          {.width = 64,
           .height = 63,  // rows with the first pixel's red for their filter
           .data = reinterpret_cast<const std::uint8_t*>(pictures[k].pixels.data()),
           .palette = {}});
      if (i == 0) {
        first.push_back(file);
      }
      ASSERT_TRUE(file == first[k]) << "encoder " << i << ", picture " << k;
    }
  }
}

TEST_F(PngWriterTest, PngcheckAcceptsTheFiles) {
  const auto check = [&](const Bytes& bytes) {
    const std::filesystem::path file = home_.path() / "card.png";
    save(file, bytes);
    const auto checked = fixtures::Program("pngcheck", {"-q", file}).wait();
    EXPECT_EQ(checked.status, 0) << checked.out;
  };
  draw(card({158, 158}, 3, {fill({110, 110, 32, 32}, green, 16)}));
  check(file_);
  check(writePng({.width = 2, .height = 1, .pixels = {white, {1, 2, 3, 4}}}));
}

}  // namespace
}  // namespace quillpad::drawing
