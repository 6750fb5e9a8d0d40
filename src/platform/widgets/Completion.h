// The end of a request that a provider was given: called at most once, from any thread. A
// completion that is destroyed without having been called tells its maker so, which is how a
// dropped request is known at once.
#pragma once

#include <functional>
#include <utility>

namespace quillpad::widgets {

template <class Answer>
class Completion {
 public:
  Completion(std::move_only_function<void(Answer)> deliver, std::move_only_function<void()> abandon)
      : deliver_(std::move(deliver)), abandon_(std::move(abandon)) {}

  Completion(Completion&& other) noexcept
      : deliver_(std::exchange(other.deliver_, nullptr)),
        abandon_(std::exchange(other.abandon_, nullptr)) {}
  Completion& operator=(Completion&&) = delete;

  ~Completion() {
    if (abandon_) {
      abandon_();
    }
  }

  // Delivers the answer; later calls do nothing.
  void operator()(Answer answer) {
    abandon_ = nullptr;
    if (auto deliver = std::exchange(deliver_, nullptr)) {
      deliver(std::move(answer));
    }
  }

 private:
  std::move_only_function<void(Answer)> deliver_;
  std::move_only_function<void()> abandon_;
};

// A completion that turns its answer into the answer of another, and is abandoned as that one is.
template <class Answer, class Outer, class Convert>
Completion<Answer> forwarding(Completion<Outer> outer, Convert convert) {
  return Completion<Answer>(
      [outer = std::move(outer), convert](const Answer& answer) mutable { outer(convert(answer)); },
      nullptr);
}

}  // namespace quillpad::widgets
