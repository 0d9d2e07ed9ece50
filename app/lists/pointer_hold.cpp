#include "app/lists/pointer_hold.h"

#include <cstdlib>
#include <utility>

namespace app {

void PointerHold::restart(int slack) {
  *this = {};
  slack_ = slack;
}

void PointerHold::motion(const Place& now, bool onRow) {
  covered_ = false;
  if (!rest_) rest_ = now;
  if (isFarFrom(*rest_, now)) moved_ = true;
  onList_ = moved_;
  held_ = moved_ && onRow ? std::optional(now) : std::nullopt;
}

bool PointerHold::seenElsewhere() {
  moved_ = true;
  return std::exchange(covered_, false) && leave();
}

bool PointerHold::leave() {
  if (covered_) return false;
  held_.reset();
  onList_ = false;
  return true;
}

bool PointerHold::isFarFrom(const Place& rest, const Place& now) const {
  return std::abs(now.x - rest.x) > slack_ || std::abs(now.y - rest.y) > slack_;
}

}  // namespace app
