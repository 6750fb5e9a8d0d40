// Cuts text into the stretches that a single font, script and direction can shape, and finds where
// lines may end. What it needs for that is loaded when first asked, as plain Latin texts on one
// line do without. Belongs to the thread of its FontBook.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/Shaper.h"
#include "platform/ui/Font.h"

namespace quillpad::drawing {

// What the shape of a text depends on, beside its characters.
struct TextStyle {
  ui::Weight weight = ui::Weight::regular;
  std::string language{};    // for example "en" or "zh-Hans"
  bool rightToLeft = false;  // the direction where the text itself has none
  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

class Itemizer {
 public:
  explicit Itemizer(FontBook& fonts);
  ~Itemizer();
  Itemizer(const Itemizer&) = delete;
  Itemizer& operator=(const Itemizer&) = delete;

  struct Items {
    std::vector<Stretch> stretches;  // in the order of reading
    bool rightToLeft = false;        // the direction of the paragraph
  };

  // The stretches of [begin, end) of the text, which is UTF-8 without line feeds. A direction is
  // given where the paragraph began before `begin`.
  Items itemize(
      std::string_view text,
      std::size_t begin,
      std::size_t end,
      const TextStyle& style,
      std::optional<bool> rightToLeft);

  // The places in the text, in bytes, where a line may end.
  std::vector<std::size_t> lineBreaks(std::string_view text, const std::string& language);

 private:
  class Tools;
  FontBook& fonts_;
  std::unique_ptr<Tools> tools_;
};

}  // namespace quillpad::drawing
