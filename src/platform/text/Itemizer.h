// Cuts text into the runs that a single font, script and direction can shape, and finds where lines
// may end. What it needs for that is loaded when first asked, as plain Latin texts on one line do
// without. Belongs to the thread of its FontBook.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
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

// Something that holds up to a place in a text, in bytes, from where the one before ends.
template <class Value>
struct RunUpTo {
  std::size_t end = 0;
  Value value{};
  friend bool operator==(const RunUpTo&, const RunUpTo&) = default;
};
using ScriptRun = RunUpTo<Script>;
using FontRun = RunUpTo<FontId>;
using LevelRun = RunUpTo<std::uint8_t>;

// The scripts of the text, whose grapheme clusters end at the given places; each run has another
// than the one before. What belongs to no script goes with what is before it, or else behind it.
std::vector<ScriptRun> scriptRuns(std::string_view text, std::span<const std::size_t> clusterEnds);

// The fonts of the same text: the system font where it has a cluster's characters, otherwise one
// made for the script. A cluster is never split.
std::vector<FontRun> fontRuns(
    std::string_view text,
    std::span<const std::size_t> clusterEnds,
    std::span<const ScriptRun> scripts,
    const TextStyle& style,
    FontBook& fonts);

// The runs in which nothing changes. All of them cover the same text.
std::vector<TextRun> merged(
    std::span<const ScriptRun> scripts,
    std::span<const FontRun> fonts,
    std::span<const LevelRun> levels);

class Itemizer {
 public:
  explicit Itemizer(FontBook& fonts);
  ~Itemizer();
  Itemizer(const Itemizer&) = delete;
  Itemizer& operator=(const Itemizer&) = delete;

  struct Items {
    std::vector<TextRun> runs;  // in the order of reading
    bool rightToLeft = false;   // the direction of the paragraph
  };

  // The runs of [begin, end) of the text, which is UTF-8 without line feeds. A direction is given
  // where the paragraph began before `begin`.
  Items itemize(
      std::string_view text,
      std::size_t begin,
      std::size_t end,
      const TextStyle& style,
      std::optional<bool> rightToLeft);

  // The places in the text, in bytes, where a line may end.
  std::vector<std::size_t> lineBreaks(std::string_view text, const std::string& language);

 private:
  struct Impl;
  FontBook& fonts_;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillpad::drawing
