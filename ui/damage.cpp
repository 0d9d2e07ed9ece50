#include "ui/damage.h"

#include <algorithm>

namespace ui {

namespace {

std::int64_t area(const Rect& rect) { return std::int64_t{rect.w} * rect.h; }

/// The pixels that painting both as one rectangle takes in addition; below 0 where they overlap by
/// more.
std::int64_t costOfJoining(const Rect& a, const Rect& b) {
  return area(bounds(a, b)) - area(a) - area(b);
}

}  // namespace

void Damage::add(const Rect& rect) {
  if (rect.empty() || all_) return;
  Rect joined = rect;
  while (joinNearest(&joined)) {
  }
  rects_.push_back(joined);
}

/// Takes the rectangle that is cheapest to join out of the list and adds it to `rect`. What comes
/// of that may be near another one.
bool Damage::joinNearest(Rect* rect) {
  if (rects_.empty()) return false;
  const auto nearest = std::ranges::min_element(
      rects_, {}, [&](const Rect& other) { return costOfJoining(*rect, other); });
  const bool full = rects_.size() == kMost;
  if (!full && costOfJoining(*rect, *nearest) > kPassPixels) return false;
  *rect = bounds(*rect, *nearest);
  rects_.erase(nearest);
  return true;
}

void Damage::add(const Damage& other) {
  if (other.all_) addAll();
  for (const Rect& rect : other.rects_) add(rect);
}

void Damage::addAll() {
  all_ = true;
  rects_.clear();
}

std::vector<Rect> Damage::within(const Rect& window) const {
  if (all_) return {window};
  std::vector<Rect> rects;
  for (const Rect& rect : rects_) {
    const Rect seen = intersect(rect, window);
    if (!seen.empty()) rects.push_back(seen);
  }
  return rects;
}

}  // namespace ui
