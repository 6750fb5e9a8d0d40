// Looks installed fonts up by the characters that they must have. Reads the system's font caches
// when first asked. Belongs to one thread.
#pragma once

#include <cstdint>
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

// The four letters of a script in ISO 15924, the first one highest.
using Script = std::uint32_t;
inline constexpr Script latinScript = 0x4C61746E;  // "Latn"
inline constexpr Script hanScript = 0x48616E69;    // "Hani"
inline constexpr Script emojiScript = 0x5A737965;  // "Zsye": pictures in colour

class FontFinder {
 public:
  FontFinder();
  ~FontFinder();
  FontFinder(const FontFinder&) = delete;
  FontFinder& operator=(const FontFinder&) = delete;

  // The best upright sans-serif font for the script that has all the characters; nothing if none is
  // installed. The language decides between the faces that one script has in several countries.
  std::optional<FontFile> find(
      std::u32string_view characters,
      Script script,
      ui::Weight weight,
      const std::string& language);

 private:
  class Configuration;
  std::unique_ptr<Configuration> configuration_;
};

}  // namespace quillpad::drawing
