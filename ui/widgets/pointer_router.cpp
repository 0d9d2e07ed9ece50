#include "ui/widgets/pointer_router.h"

#include <algorithm>
#include <utility>

namespace ui {

namespace {
constexpr MouseEvent kBesideEverything = {.x = -1, .y = -1, .button = 1};
}  // namespace

PointerRouter::Index PointerRouter::add(Target target) {
  parts_.push_back({std::move(target), {}});
  return parts_.size() - 1;
}

std::optional<PointerRouter::Index> PointerRouter::partAt(int x, int y) const {
  const auto found =
      std::ranges::find_if(parts_, [&](const Part& part) { return part.rect.contains(x, y); });
  if (found == parts_.end()) return std::nullopt;
  return static_cast<Index>(found - parts_.begin());
}

void PointerRouter::enter(std::optional<Index> part) {
  if (part == entered_) return;
  const std::optional<Index> left = std::exchange(entered_, part);
  if (left && parts_[*left].target.leave) parts_[*left].target.leave();
}

std::optional<PointerRouter::Index> PointerRouter::press(const MouseEvent& event) {
  // A button that goes down twice has come up where nobody told: another client had the pointer.
  if (buttonsDown_.contains(event.button)) reset();
  if (!held_) {
    held_ = partAt(event.x, event.y);
    buttonsDown_.clear();
    enter(held_);
  }
  buttonsDown_.insert(event.button);
  const std::optional<Index> pressed = held_;
  if (pressed && parts_[*pressed].target.press) parts_[*pressed].target.press(event);
  return pressed;
}

void PointerRouter::motion(const MouseEvent& event) {
  if (!held_) enter(partAt(event.x, event.y));
  const std::optional<Index> part = owner();
  if (part && parts_[*part].target.motion) parts_[*part].target.motion(event);
}

void PointerRouter::release(const MouseEvent& event) {
  const std::optional<Index> part = held_;
  buttonsDown_.erase(event.button);
  if (buttonsDown_.empty()) held_.reset();
  if (part && parts_[*part].target.release) parts_[*part].target.release(event);
}

void PointerRouter::leave() {
  if (!held_) enter(std::nullopt);
}

void PointerRouter::wheel(const MouseEvent& event, int dy) {
  const std::optional<Index> part = partAt(event.x, event.y);
  if (part && parts_[*part].target.wheel) parts_[*part].target.wheel(event, dy);
}

void PointerRouter::reset() {
  const std::optional<Index> held = std::exchange(held_, std::nullopt);
  buttonsDown_.clear();
  if (held && parts_[*held].target.release) parts_[*held].target.release(kBesideEverything);
  enter(std::nullopt);
}

}  // namespace ui
