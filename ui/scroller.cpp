#include "ui/scroller.h"

#include <algorithm>
#include <cstdint>

namespace ui {

namespace {

/// A thumb is never smaller than can be hit.
constexpr int kLeastThumb = 24;

/// `value` × `numerator` ÷ `denominator` without overflow: a list may be millions of pixels high.
int proportion(int value, int numerator, int denominator) {
  return static_cast<int>(std::int64_t{value} * numerator / denominator);
}

}  // namespace

void Scroller::setView(const Rect& view) {
  view_ = view;
  scrollTo(offset_);
}

void Scroller::setContentHeight(int height) {
  contentHeight_ = height;
  scrollTo(offset_);
}

int Scroller::furthest() const { return std::max(contentHeight_ - std::max(view_.h, 0), 0); }

void Scroller::scrollTo(int offset) { offset_ = std::clamp(offset, 0, furthest()); }

void Scroller::reveal(int top, int height) {
  const int highest = std::max(top + height - view_.h, 0);  // the whole band, just above the bottom
  if (offset_ > top || height > view_.h) {
    scrollTo(top);
  } else if (offset_ < highest) {
    scrollTo(highest);
  }
}

Rect Scroller::bar() const {
  if (!hasBar()) return {};
  return {view_.x + view_.w - kBarWidth, view_.y, kBarWidth, view_.h};
}

Rect Scroller::thumb() const {
  if (!hasBar()) return {};
  const Rect track = bar();
  const int height = std::clamp(proportion(track.h, view_.h, contentHeight_),
                                std::min(kLeastThumb, track.h), track.h);
  return {track.x, track.y + proportion(track.h - height, offset_, furthest()), track.w, height};
}

bool Scroller::press(int x, int y) {
  if (!bar().contains(x, y)) return false;
  const Rect grip = thumb();
  if (grip.contains(x, y)) {
    grabbedAt_ = y - grip.y;
  } else {
    scrollBy(y < grip.y ? -view_.h : view_.h);
  }
  return true;
}

bool Scroller::drag(int y) {
  if (!grabbedAt_) return false;
  const int room = view_.h - thumb().h;
  if (room > 0) scrollTo(proportion(y - *grabbedAt_ - view_.y, furthest(), room));
  return true;
}

}  // namespace ui
