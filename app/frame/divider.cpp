#include "app/frame/divider.h"

#include <algorithm>

namespace app {

void Divider::setPanes(Direction direction, const ui::Rect& before, const ui::Rect& after) {
  direction_ = direction;
  before_ = before;
  after_ = after;
}

void Divider::moveTo(std::optional<double> share) const {
  if (onMoved) onMoved(share);
}

void Divider::press(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton) return;
  if (event.clicks == 2) {
    grabbedAt_.reset();
    moveTo(std::nullopt);
  } else {
    grabbedAt_ = along(event.x, event.y) - start(rect());
  }
}

void Divider::motion(const ui::MouseEvent& event) {
  const int usable = length(before_) + length(after_);
  if (!grabbedAt_ || usable < 1) return;
  const int first = along(event.x, event.y) - *grabbedAt_ - start(before_);
  moveTo(std::clamp(static_cast<double>(first) / usable, 0.0, 1.0));
}

void Divider::release(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton) grabbedAt_.reset();
}

ui::PointerShape Divider::pointer() const {
  return direction_ == Direction::Across ? ui::PointerShape::ResizeHorizontal
                                         : ui::PointerShape::ResizeVertical;
}

void Divider::paint(ui::Canvas& canvas) const { canvas.fillRect(rect(), style_.palette().window); }

}  // namespace app
