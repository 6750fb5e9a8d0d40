// A visitor for std::visit that is put together from one function per alternative.
#pragma once

namespace quillpad {

template <class... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace quillpad
