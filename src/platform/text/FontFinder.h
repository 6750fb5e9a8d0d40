// Looks installed fonts up by the characters that they must have. Reads the system's font caches
// when first asked. Belongs to one thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ui/Font.h"

namespace quillpad::drawing {

struct FontFile {
  std::string path;
  int index = 0;  // of the face in its file
  friend bool operator==(const FontFile&, const FontFile&) = default;
};

// A UScriptCode of ICU.
using Script = int;

class FontFinder {
 public:
  FontFinder();
  ~FontFinder();
  FontFinder(const FontFinder&) = delete;
  FontFinder& operator=(const FontFinder&) = delete;

  // The best upright sans-serif font for the script that has all the characters, in colour for
  // USCRIPT_SYMBOLS_EMOJI; nothing if none is installed. The language decides between the faces
  // that Han characters have in several countries. Depends on nothing else, above all not on what
  // was asked before.
  std::optional<FontFile> find(
      std::u32string_view characters,
      Script script,
      ui::Weight weight,
      const std::string& language);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillpad::drawing
