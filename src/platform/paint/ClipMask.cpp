#include "platform/paint/ClipMask.h"

#include <algorithm>

namespace quillpad::drawing {

std::span<const Coverage> ClipMask::applied(int x, int y, std::span<const Coverage> row) {
  if (clips_.empty()) {
    return row;
  }
  left_.assign(row.begin(), row.end());
  clip_.resize(row.size());
  for (const RoundShape& clip : clips_) {
    shapes_.cover(clip, x, y, clip_);
    std::ranges::transform(left_, clip_, left_.begin(), masked);
  }
  return left_;
}

}  // namespace quillpad::drawing
