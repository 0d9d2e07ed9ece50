#include "app/frame/divider.h"

#include <algorithm>
#include <utility>

namespace app {

void Divider::setPanes(Direction direction, const ui::Rect& before, const ui::Rect& after,
                       std::optional<double> place) {
  direction_ = direction;
  before_ = before;
  after_ = after;
  place_ = place;
}

void Divider::moveTo(std::optional<double> share) const {
  if (onMoved) onMoved(share);
}

bool Divider::takeBack() {
  const auto drag = std::exchange(drag_, std::nullopt);
  if (drag && drag->moved) moveTo(drag->from);
  return drag.has_value();
}

void Divider::press(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton) {
    takeBack();
  } else if (event.clicks == 2) {
    drag_.reset();
    moveTo(std::nullopt);
  } else {
    drag_ = Drag{along(event.x, event.y) - start(rect()), place_};
  }
}

void Divider::motion(const ui::MouseEvent& event) {
  if (!drag_ || usable() < 1) return;
  const int first = along(event.x, event.y) - drag_->grabbedAt - start(before_);
  drag_->moved = true;
  moveTo(std::clamp(static_cast<double>(first) / usable(), 0.0, 1.0));
}

/// Where the pointer went further than the divider, the place that is seen counts.
void Divider::release(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton) return;
  const auto drag = std::exchange(drag_, std::nullopt);
  if (drag && drag->moved && usable() > 0) {
    moveTo(static_cast<double>(length(before_)) / usable());
  }
}

ui::PointerShape Divider::pointer() const {
  return direction_ == Direction::Across ? ui::PointerShape::ResizeHorizontal
                                         : ui::PointerShape::ResizeVertical;
}

void Divider::paint(ui::Canvas& canvas) const { canvas.fillRect(rect(), style_.palette().window); }

}  // namespace app
