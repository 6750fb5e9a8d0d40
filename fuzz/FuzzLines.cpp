// A stream is cut into the same lines however its bytes come. The first byte says in what portions.
#include <string>
#include <vector>

#include "Target.h"
#include "home/extension/PrintedLine.h"
#include "platform/channel/LineReader.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

namespace {

constexpr std::size_t maxLength = 16;

std::vector<std::string> linesOf(std::string_view bytes, std::size_t portion) {
  channel::LineReader reader(maxLength);
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    reader.append(bytes.substr(0, portion));
    bytes.remove_prefix(std::min(portion, bytes.size()));
    while (const auto line = reader.next()) {
      expect(line->text.size() <= maxLength && !line->text.contains('\n'));
      lines.push_back(line->tooLong ? "(too long)\n" : line->text);
    }
  }
  lines.push_back(reader.takeRest());
  return lines;
}

}  // namespace

void quillpad::tryInput(std::string_view input) {
  const std::size_t portion = 1 + takeChoice(input) % 40U;
  expect(linesOf(input, portion) == linesOf(input, input.size()));
  expect(isUtf8(home::printableText(input)));
}
