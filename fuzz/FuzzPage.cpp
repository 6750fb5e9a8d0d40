// Any head of a request is answered or refused, and what the engineer's view makes of its query
// stands in addresses that need no escaping. A line each: method, path, six headers, then names and
// values of the query by turns.
#include <algorithm>
#include <vector>

#include "Target.h"
#include "home/page/PreviewQuery.h"
#include "home/server/RequestPolicy.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  std::vector<std::string> lines(1);
  for (const char character : input) {
    character == '\n' ? static_cast<void>(lines.emplace_back()) : lines.back().push_back(character);
  }
  constexpr std::size_t headLines = 8;
  lines.resize(std::max(lines.size(), headLines));

  const home::RequestHead head{
      .method = lines[0],
      .path = lines[1],
      .hasQuery = lines.size() > headLines,
      .host = lines[2],
      .origin = lines[3],
      .fetchSite = lines[4],
      .fetchMode = lines[5],
      .fetchDest = lines[6],
      .contentLength = lines[7],
      .transferEncoding = {}};
  home::RequestPolicy::refusalOfBody(head);
  const bool refused = home::RequestPolicy(8480).refusal(head).has_value();
  const bool foreign = lines[4] == "cross-site" && lines[1] != "/";
  expect(refused || (!lines[2].empty() && !foreign));

  home::WebRequest request{.method = lines[0], .path = lines[1]};
  for (std::size_t i = headLines; i + 1 < lines.size(); i += 2) {
    request.parameters.emplace(lines[i], lines[i + 1]);
  }
  const auto query = home::PreviewQuery::parse(request);
  expect(std::ranges::none_of(query.toUrl("/"), [](char c) {
    return c <= ' ' || c == '"' || c == '\'' || c == '<' || c == '>' || c == '#' || c == '\x7F' ||
           static_cast<unsigned char>(c) >= 0x80;
  }));
}
