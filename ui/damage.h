#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ui/geometry.h"

namespace ui {

/// What of a window is to be painted again: everything, or a few rectangles. Each rectangle takes a
/// pass of its own over what is shown, so those that are near each other become one that holds
/// them both; no pixel that was added is ever left out. They may overlap.
class Damage {
 public:
  /// There are never more rectangles.
  static constexpr std::size_t kMost = 8;
  /// What a pass costs, as the number of pixels that are painted in that time: two rectangles
  /// become one where that takes no more pixels than these in addition.
  static constexpr std::int64_t kPassPixels = 40'000;

  /// An empty rectangle adds nothing.
  void add(const Rect& rect);
  void add(const Damage& other);
  /// Of the window whatever its size is by then.
  void addAll();
  bool empty() const { return !all_ && rects_.empty(); }

  /// The rectangles as far as they lie in `window`, none of them empty; `window` itself, even an
  /// empty one, where that is everything.
  std::vector<Rect> within(const Rect& window) const;

 private:
  bool joinNearest(Rect* rect);

  bool all_ = false;
  std::vector<Rect> rects_;
};

}  // namespace ui
