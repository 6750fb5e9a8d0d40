// Cuts a stream of bytes into lines. Of a line over the limit nothing is kept: it is reported once,
// as soon as it is known to be too long. A value of one thread.
#pragma once

#include <cstddef>
#include <deque>
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
  explicit LineReader(std::size_t maxLength) : maxLength_(maxLength) {}

  void append(std::string_view bytes);

  // The next whole line, or nothing until more bytes come.
  std::optional<Line> next();

  // What came after the last line feed, to be asked for at the end of the stream.
  std::string takeRest();

 private:
  std::size_t maxLength_;
  std::deque<Line> lines_;
  std::string rest_;       // of the line under way
  bool skipping_ = false;  // the line under way is too long
};

}  // namespace quillpad::channel
