#pragma once

#include <optional>

#include "ui/geometry.h"

namespace ui {

/// Where a long column of content stands behind its view, and the bar that shows and moves it. All
/// lengths are device pixels. Holds no window: views ask it where to draw and tell it what the
/// pointer does.
class Scroller {
 public:
  /// Width of the bar at every scale.
  static constexpr int kBarWidth = 10;

  /// The part of the window that the content shows in, bar included.
  void setView(const Rect& view);
  void setContentHeight(int height);

  int offset() const { return offset_; }
  int contentHeight() const { return contentHeight_; }
  const Rect& view() const { return view_; }
  /// Moves the content, as far as there is any.
  void scrollTo(int offset);
  void scrollBy(int distance) { scrollTo(offset_ + distance); }
  /// Moves the content as little as possible so that the band of `height` from `top` on is seen;
  /// its top when it is higher than the view.
  void reveal(int top, int height);

  /// There is a bar when the view has a height and the content is higher.
  bool hasBar() const { return view_.h >= 1 && contentHeight_ > view_.h; }
  /// 0 without a bar.
  int barWidth() const { return hasBar() ? kBarWidth : 0; }
  /// At the right of the view; empty without a bar.
  Rect bar() const;
  /// The part of the bar that stands for what is seen.
  Rect thumb() const;

  /// A press at (x, y): on the thumb it begins a drag, beside it it pages towards the press. True
  /// when it was on the bar.
  bool press(int x, int y);
  /// The pointer is at `y` now. True while a drag goes on.
  bool drag(int y);
  void release() { grabbedAt_.reset(); }

 private:
  int furthest() const;

  Rect view_;
  int contentHeight_ = 0;
  int offset_ = 0;
  /// How far below the thumb's top it was taken hold of.
  std::optional<int> grabbedAt_;
};

}  // namespace ui
