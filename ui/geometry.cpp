#include "ui/geometry.h"

#include <algorithm>
#include <cstdint>

namespace ui {

Rect intersect(const Rect& a, const Rect& b) {
  // Right and bottom edges are taken in 64 bits: views place rows of long lists far outside the
  // window, where x + w may not fit an int.
  const std::int64_t left = std::max(a.x, b.x);
  const std::int64_t top = std::max(a.y, b.y);
  const std::int64_t right = std::min(std::int64_t{a.x} + a.w, std::int64_t{b.x} + b.w);
  const std::int64_t bottom = std::min(std::int64_t{a.y} + a.h, std::int64_t{b.y} + b.h);
  if (left >= right || top >= bottom) return {};
  return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
          static_cast<int>(bottom - top)};
}

}  // namespace ui
