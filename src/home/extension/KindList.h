// Distinct kinds of widgets in an order, and quick to ask whether it has one. A plain value.
#pragma once

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpad::home {

class KindList {
 public:
  auto begin() const { return order_.begin(); }
  auto end() const { return order_.end(); }
  bool empty() const { return order_.empty(); }
  bool has(std::string_view kind) const { return kinds_.contains(kind); }
  const std::vector<std::string>& inOrder() const { return order_; }

  // Puts it in behind so many others; false for one that is there.
  bool insert(std::size_t place, std::string kind) {
    if (!kinds_.insert(kind).second) {
      return false;
    }
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(place), std::move(kind));
    return true;
  }

  bool append(std::string kind) { return insert(order_.size(), std::move(kind)); }

  // False for one that is not there.
  bool erase(std::string_view kind) {
    const auto found = kinds_.find(kind);
    if (found == kinds_.end()) {
      return false;
    }
    std::erase(order_, kind);
    kinds_.erase(found);
    return true;
  }

  // Puts it before another one, behind all where that is empty; false where either is not there.
  bool move(std::string_view kind, std::string_view before) {
    if (!has(kind) || (!has(before) && !before.empty())) {
      return false;
    }
    const auto moved = std::ranges::find(order_, kind);
    const auto next = std::ranges::find(order_, before);
    if (next <= moved) {
      std::rotate(next, moved, std::next(moved));
    } else {
      std::rotate(moved, std::next(moved), next);
    }
    return true;
  }

 private:
  std::vector<std::string> order_;
  std::set<std::string, std::less<>> kinds_;
};

}  // namespace quillpad::home
