// The end of a request that a provider was given: called at most once, from any thread. A
// completion that is destroyed without having been called tells its maker so, which is how a
// dropped request is known at once.
#pragma once

#include <functional>
#include <optional>
#include <utility>

namespace quillpad::widgets {

template <class Answer>
class Completion {
 public:
  // `end` is called once: with the answer, or with nothing where there was none.
  explicit Completion(std::move_only_function<void(std::optional<Answer>)> end)
      : end_(std::move(end)) {}

  Completion(Completion&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  Completion& operator=(Completion&&) = delete;

  ~Completion() { finish(std::nullopt); }

  // Delivers the answer; later calls do nothing.
  void operator()(Answer answer) { finish(std::move(answer)); }

 private:
  void finish(std::optional<Answer> answer) {
    if (auto end = std::exchange(end_, nullptr)) {
      end(std::move(answer));
    }
  }

  std::move_only_function<void(std::optional<Answer>)> end_;
};

}  // namespace quillpad::widgets
