#pragma once

namespace ui {

/// A rectangle in device pixels. With `w` or `h` not greater than 0 it is empty.
struct Rect {
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;

  bool empty() const { return w <= 0 || h <= 0; }
  bool contains(int px, int py) const { return px >= x && px < x + w && py >= y && py < y + h; }

  bool operator==(const Rect&) const = default;
};

/// What lies in both; (0, 0, 0, 0) when nothing does.
Rect intersect(const Rect& a, const Rect& b);

/// The smallest rectangle that holds both, neither of which is empty. Sides that do not fit an int
/// are cut off at the right and below.
Rect bounds(const Rect& a, const Rect& b);

/// `logical` pixels in device pixels, rounded half up (toward zero for negative sizes). `scale` is
/// that of the connection.
constexpr int scaled(double logical, double scale) {
  return static_cast<int>(logical * scale + 0.5);
}

}  // namespace ui
