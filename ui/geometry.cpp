#include "ui/geometry.h"

#include <algorithm>
#include <cstdint>
#include <limits>

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

Rect bounds(const Rect& a, const Rect& b) {
  const int left = std::min(a.x, b.x);
  const int top = std::min(a.y, b.y);
  const auto length = [](std::int64_t from, std::int64_t to) {
    return static_cast<int>(std::min<std::int64_t>(to - from, std::numeric_limits<int>::max()));
  };
  return {left, top, length(left, std::max(std::int64_t{a.x} + a.w, std::int64_t{b.x} + b.w)),
          length(top, std::max(std::int64_t{a.y} + a.h, std::int64_t{b.y} + b.h))};
}

}  // namespace ui
