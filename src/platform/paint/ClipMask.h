// The clips of an item that is being painted, as a mask for its rows. Belongs to one thread.
#pragma once

#include <span>
#include <vector>

#include "platform/paint/RoundShape.h"

namespace quillpad::drawing {

class ClipMask {
 public:
  explicit ClipMask(RoundShapes& shapes) : shapes_(shapes) {}

  void clear() { clips_.clear(); }
  void add(const RoundShape& clip) { clips_.push_back(clip); }
  bool empty() const { return clips_.empty(); }

  // What is left of a row of coverage that begins at (x, y); good until the next call.
  std::span<const Coverage> applied(int x, int y, std::span<const Coverage> row);

 private:
  RoundShapes& shapes_;
  std::vector<RoundShape> clips_;
  std::vector<Coverage> left_, clip_;
};

}  // namespace quillpad::drawing
