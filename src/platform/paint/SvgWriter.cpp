#include "platform/paint/SvgWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "platform/foundation/Base64.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Xml.h"
#include "platform/paint/Background.h"
#include "platform/paint/PngWriter.h"
#include "platform/text/GlyphMasks.h"
#include "platform/text/GlyphOutline.h"

namespace quillpad::drawing {

namespace {

constexpr int pictureScale = 3;
constexpr std::size_t maxBytes = std::size_t{8} << 20;

// Three decimals at most, none where they are zeros.
std::string number(double value) {
  if (!std::isfinite(value)) {
    return "0";
  }
  std::array<char, 400> digits{};
  auto* end = std::to_chars(
                  digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 3)
                  .ptr;
  while (end[-1] == '0') {
    --end;
  }
  if (end[-1] == '.') {
    --end;
  }
  const std::string text(digits.data(), end);
  return text == "-0" ? "0" : text;
}

std::string attribute(std::string_view name, std::string_view value) {
  return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

std::string frameAttributes(const Rect& frame) {
  return attribute("x", number(frame.x)) + attribute("y", number(frame.y)) +
         attribute("width", number(frame.width)) + attribute("height", number(frame.height));
}

// The attributes of a rectangle whose corners are round as far as its shorter side allows.
std::string roundAttributes(const Rect& frame, double cornerRadius) {
  const double radius = std::min({cornerRadius, frame.width / 2, frame.height / 2});
  return frameAttributes(frame) + (radius > 0 ? attribute("rx", number(radius)) : "");
}

std::string fillAttributes(ui::Rgba color) {
  const std::string opaque = hexName({color.red, color.green, color.blue});
  return attribute("fill", opaque) +
         (color.alpha == 255 ? "" : attribute("fill-opacity", number(color.alpha / 255.0)));
}

// A fill that follows the color scheme of the page.
std::string fillAttributes(const ui::Color& color) {
  return color.light == color.dark
             ? fillAttributes(color.light)
             : attribute(
                   "fill", "light-dark(" + hexName(color.light) + "," + hexName(color.dark) + ")");
}

std::string dataUri(const Bitmap& picture) {
  const std::vector<std::uint8_t> file = writePng(picture);
  return "data:image/png;base64," +
         base64({reinterpret_cast<const char*>(file.data()), file.size()});
}

class SvgDocument {
 public:
  SvgDocument(
      std::optional<ui::Appearance> appearance,
      FontBook& fonts,
      Pictures& pictures,
      std::string_view idPrefix)
      : appearance_(appearance), fonts_(fonts), pictures_(pictures), prefix_(idPrefix) {}

  // False where it would become too large.
  bool paint(const DisplayList& list) {
    const Background background = backgroundOf(list);
    if (background.items > 0) {
      paint(Fill{
          {0, 0, list.size.width, list.size.height}, background.color, background.cornerRadius});
    }
    for (const Item& item : std::span(list.items).subspan(background.items)) {
      for (const Clip& clip : item.clips) {
        body_ += "<g" + attribute("clip-path", "url(#" + clipId(clip) + ")") + ">\n";
      }
      std::visit([&](const auto& content) { paint(content); }, item.content);
      for (std::size_t i = 0; i < item.clips.size(); ++i) {
        body_ += "</g>\n";
      }
      if (body_.size() + definitions_.size() > maxBytes) {
        return false;
      }
    }
    return true;
  }

  std::string finished(const DisplayList& list) const {
    const std::string label = escapedXml(accessibilityLabel(list));
    std::string document =
        R"(<svg xmlns="http://www.w3.org/2000/svg")" + attribute("width", number(list.size.width)) +
        attribute("height", number(list.size.height)) +
        attribute("viewBox", "0 0 " + number(list.size.width) + " " + number(list.size.height)) +
        attribute("role", "img") + attribute("aria-label", label) + ">\n";
    document += "<title>" + label + "</title>\n";
    if (!definitions_.empty()) {
      document += "<defs>\n" + definitions_ + "</defs>\n";
    }
    return document + body_ + "</svg>\n";
  }

 private:
  std::string filledWith(const ui::Color& color) const {
    return appearance_ ? fillAttributes(color.resolved(*appearance_)) : fillAttributes(color);
  }

  void paint(const Fill& fill) {
    body_ +=
        "<rect" + roundAttributes(fill.frame, fill.cornerRadius) + filledWith(fill.color) + "/>\n";
  }

  void paint(const TextItem& text) {
    body_ += "<g" + filledWith(text.color) + ">\n";
    for (const GlyphRun& run : text.runs) {
      if (fonts_.hasColorBitmaps(run.font)) {
        paintPictures(run);
      } else {
        paintOutlines(run);
      }
    }
    body_ += "</g>\n";
  }

  void paintPictures(const GlyphRun& run) {
    for (const Glyph& glyph : run.glyphs) {
      if (const Definition& shape = colorGlyph(run, glyph.id); !shape.id.empty()) {
        const double scale = run.size / shape.unitsPerSize;
        body_ += "<use" + attribute("href", "#" + shape.id) +
                 attribute("transform", placed(glyph.origin, scale, scale)) + "/>\n";
      }
    }
  }

  // In the font's units, which are a hundredth of a point or less, from the run's first glyph on.
  void paintOutlines(const GlyphRun& run) {
    if (run.glyphs.empty()) {
      return;
    }
    const Point start = run.glyphs.front().origin;
    const double scale = run.size / fonts_.unitsPerEm(run.font);
    const auto units = [&](double length) { return std::to_string(std::lround(length / scale)); };
    body_ += "<g" + attribute("transform", placed(start, scale, -scale)) + ">\n";
    for (const Glyph& glyph : run.glyphs) {
      if (const std::string& id = outline(run.font, glyph.id); !id.empty()) {
        body_ += "<use" + attribute("href", "#" + id);
        body_ += attribute("x", units(glyph.origin.x - start.x));
        if (glyph.origin.y != start.y) {
          body_ += attribute("y", units(start.y - glyph.origin.y));
        }
        body_ += "/>\n";
      }
    }
    body_ += "</g>\n";
  }

  void paint(const ImageItem& image) {
    const Bitmap* picture = pictures_.find(image.name, pictureScale);
    if (picture == nullptr) {
      return;
    }
    body_ += "<image" + frameAttributes(image.frame) + attribute("preserveAspectRatio", "none") +
             attribute("href", dataUri(*picture)) + "/>\n";
  }

  // Something that is drawn by reference; no id where there is nothing to draw.
  struct Definition {
    std::string id;
    double unitsPerSize = 1;
  };

  // Empty where there is nothing to draw.
  const std::string& outline(FontId font, std::uint32_t glyph) {
    const auto [entry, isNew] = glyphs_.try_emplace({font, glyph});
    Definition& shape = entry->second;
    if (!isNew) {
      return shape.id;
    }
    if (const std::string path = glyphPath(fonts_, font, glyph); !path.empty()) {
      shape.id = newId();
      definitions_ += "<path" + attribute("id", shape.id) + attribute("d", path) + "/>\n";
    }
    return shape.id;
  }

  const Definition& colorGlyph(const GlyphRun& run, std::uint32_t glyph) {
    const auto [entry, isNew] = glyphs_.try_emplace({run.font, glyph});
    Definition& shape = entry->second;
    if (!isNew) {
      return shape;
    }
    const StrikeGlyph strike = strikeGlyph(fonts_, run.font, glyph);
    if (strike.size <= 0 || strike.picture.pixels.empty()) {
      return shape;
    }
    const double shrink = std::min(1.0, pictureScale * run.size / strike.size);
    const auto shrunk = [&](int length) {
      return std::max(1, static_cast<int>(std::lround(length * shrink)));
    };
    const Bitmap picture =
        scaled(strike.picture, shrunk(strike.picture.width), shrunk(strike.picture.height));
    shape = {.id = newId(), .unitsPerSize = strike.size};
    const Rect frame{
        .x = static_cast<double>(strike.left),
        .y = -static_cast<double>(strike.top),
        .width = static_cast<double>(strike.picture.width),
        .height = static_cast<double>(strike.picture.height)};
    definitions_ += "<image" + attribute("id", shape.id) + frameAttributes(frame) +
                    attribute("preserveAspectRatio", "none") + attribute("href", dataUri(picture)) +
                    "/>\n";
    return shape;
  }

  const std::string& clipId(const Clip& clip) {
    const auto known = std::ranges::find(clips_, clip, &std::pair<Clip, std::string>::first);
    if (known != clips_.end()) {
      return known->second;
    }
    const std::string id = newId();
    definitions_ += "<clipPath" + attribute("id", id) + "><rect" +
                    roundAttributes(clip.frame, clip.cornerRadius) + "/></clipPath>\n";
    return clips_.emplace_back(clip, id).second;
  }

  std::string newId() { return prefix_ + std::to_string(++ids_); }

  // Glyphs are defined around their origins; outlines point upwards, pictures down as the page
  // does.
  static std::string placed(Point origin, double scaleX, double scaleY) {
    std::string matrix = "matrix(" + significant(scaleX);
    matrix += " 0 0 " + significant(scaleY);
    matrix += " " + number(origin.x);
    matrix += " " + number(origin.y) + ")";
    return matrix;
  }

  // A scale is a small number: six digits wherever they begin.
  static std::string significant(double value) {
    std::array<char, 40> digits{};
    char* end =
        std::to_chars(
            digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 6)
            .ptr;
    return {digits.data(), end};
  }

  std::optional<ui::Appearance> appearance_;
  FontBook& fonts_;
  Pictures& pictures_;
  std::string prefix_;
  int ids_ = 0;
  std::string definitions_;
  std::string body_;
  std::map<std::pair<FontId, std::uint32_t>, Definition> glyphs_;
  std::vector<std::pair<Clip, std::string>> clips_;
};

}  // namespace

std::expected<std::string, std::string> writeSvg(
    const DisplayList& list,
    std::optional<ui::Appearance> appearance,
    FontBook& fonts,
    Pictures& pictures,
    std::string_view idPrefix) {
  if (auto error = drawingError(list)) {
    return std::unexpected(*std::move(error));
  }
  SvgDocument document(appearance, fonts, pictures, idPrefix);
  if (!document.paint(list)) {
    return std::unexpected(
        "the card has too much to draw: more than " + bytesText(maxBytes) + " of SVG");
  }
  return document.finished(list);
}

}  // namespace quillpad::drawing
