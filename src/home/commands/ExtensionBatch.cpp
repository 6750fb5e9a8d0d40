#include "home/commands/ExtensionBatch.h"

#include <cstddef>
#include <ranges>

namespace quillpad::home {

using Answer = ExtensionClient::Answer;

std::vector<Answer> ExtensionBatch::ask(std::span<const channel::Request> requests) {
  auto together = askTogether(requests);
  std::vector<Answer> answers;
  answers.reserve(requests.size());
  for (std::size_t i = 0; i < requests.size(); ++i) {
    auto& answer = together[i];
    if (!answer) {
      answer = std::move(askTogether(requests.subspan(i, 1)).front());
    }
    answers.push_back(answer ? *std::move(answer) : std::unexpected(lastEnd_));
  }
  return answers;
}

std::vector<std::optional<Answer>> ExtensionBatch::askTogether(
    std::span<const channel::Request> requests) {
  if (!client_) {
    auto started = ExtensionClient::start(program_);
    if (!started) {
      lastEnd_ = started.error();
      return std::vector<std::optional<Answer>>(requests.size());
    }
    client_.emplace(std::move(*started));
  }
  const auto known = static_cast<std::ptrdiff_t>(client_->transfers().size());
  auto answers = client_->answersTo(requests);
  const auto added = client_->transfers() | std::views::drop(known);
  transfers_.insert(transfers_.end(), added.begin(), added.end());
  if (const std::optional<Failure>& over = client_->over()) {
    lastEnd_ = *over;
    client_.reset();
  }
  return answers;
}

}  // namespace quillpad::home
