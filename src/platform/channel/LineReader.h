// Cuts a stream of bytes into lines. A line over the cap is reported once, as soon as it is known
// to be too long, and skipped to its end. A value of one thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillpad::channel {

struct Line {
  std::string text;  // without its line feed; empty where the line was too long
  bool tooLong = false;
};

class LineReader {
 public:
  explicit LineReader(std::size_t longestLine) : longestLine_(longestLine) {}

  void append(std::string_view bytes);

  // The next whole line, or nothing until more bytes come.
  std::optional<Line> next();

  // What came after the last line feed, to be asked for at the end of the stream.
  std::string takeRest();

 private:
  std::size_t longestLine_;
  std::string buffer_;
  std::size_t start_ = 0;     // of the line under way, in the buffer
  std::size_t searched_ = 0;  // no line feed stands before this place
  bool skipping_ = false;
};

}  // namespace quillpad::channel
