// How the children of a stack share its length. Pure.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

namespace quillpad::drawing {

// A child, and how much longer it gets when offered everything instead of nothing; not NaN.
struct Flexible {
  std::size_t child = 0;
  double flexibility = 0;
};

// Offers each child an equal share of the room that is left, the least flexible first and equals in
// their order. `take(child, share)` returns the length that the child takes; nobody is shrunk
// again. Returns what is left, which is below zero where they took too much.
template <class Take>
double share(double room, std::span<Flexible> children, const Take& take) {
  std::ranges::sort(
      children, {}, [](const Flexible& one) { return std::pair(one.flexibility, one.child); });
  auto waiting = static_cast<double>(children.size());
  for (const Flexible& next : children) {
    const double length = take(next.child, std::max(room / waiting, 0.0));
    room -= std::isfinite(room) ? length : 0;
    --waiting;
  }
  return room;
}

}  // namespace quillpad::drawing
