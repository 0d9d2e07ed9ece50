#include "app/frame/dividers.h"

#include <algorithm>

namespace app {

namespace {

int along(Dividers::Direction direction, int x, int y) {
  return direction == Dividers::Direction::Across ? x : y;
}

int start(Dividers::Direction direction, const ui::Rect& rect) {
  return along(direction, rect.x, rect.y);
}

int length(Dividers::Direction direction, const ui::Rect& rect) {
  return along(direction, rect.w, rect.h);
}

}  // namespace

void Dividers::follow(const FrameLayout& layout, bool listAboveMap) {
  using enum Direction;
  if (listAboveMap) {
    main_ = {layout.mainDivider, layout.list, layout.map, Down, &DividerPlaces::listHeight};
    kinds_ = {layout.kindsDivider, layout.map, layout.kinds, Across,
              &DividerPlaces::mapBesideKinds};
  } else {
    main_ = {layout.mainDivider, layout.list, layout.map, Across, &DividerPlaces::column};
    kinds_ = {layout.kindsDivider, layout.list, layout.kinds, Down, &DividerPlaces::listOverKinds};
  }
}

const Dividers::Divider* Dividers::dividerAt(int x, int y) const {
  if (main_.rect.contains(x, y)) return &main_;
  return kinds_.rect.contains(x, y) ? &kinds_ : nullptr;
}

std::optional<Dividers::Direction> Dividers::at(int x, int y) const {
  if (held_) return held_->direction;
  const Divider* divider = dividerAt(x, y);
  return divider ? std::optional(divider->direction) : std::nullopt;
}

void Dividers::moved() const {
  if (onMoved) onMoved();
}

bool Dividers::press(const ui::MouseEvent& event) {
  const Divider* divider = dividerAt(event.x, event.y);
  if (!divider) return false;
  if (event.button != 1) return true;
  if (event.clicks == 2) {
    places_.*divider->place = std::nullopt;
    held_.reset();
    moved();
    return true;
  }
  held_ = *divider;
  grabbedAt_ = along(held_->direction, event.x, event.y) - start(held_->direction, held_->rect);
  return true;
}

bool Dividers::drag(const ui::MouseEvent& event) {
  if (!held_) return false;
  const Direction direction = held_->direction;
  const int usable = length(direction, held_->before) + length(direction, held_->after);
  if (usable < 1) return true;
  const int first =
      along(direction, event.x, event.y) - grabbedAt_ - start(direction, held_->before);
  places_.*held_->place = std::clamp(static_cast<double>(first) / usable, 0.0, 1.0);
  moved();
  return true;
}

}  // namespace app
