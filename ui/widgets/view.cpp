#include "ui/widgets/view.h"

#include <utility>

namespace ui {

std::uint64_t View::nextSerial() {
  static std::uint64_t last = 0;
  return ++last;
}

void View::setRect(const Rect& rect) {
  if (rect_ == rect) return;
  damage_.add(rect_);  // what lay below it is seen there now
  rect_ = rect;
  layOut();
  changed();
}

void View::setFocused(bool focused) {
  if (focused_ == focused) return;
  focused_ = focused;
  changed();
}

void View::changed(const Rect& part) {
  damage_.add(part);
  needsFrame();
}

void View::collectDamage(Damage* damage) { damage->add(std::exchange(damage_, {})); }

bool View::prepare() {
  preparing_ = true;
  const bool costly = bringUpToDate();
  preparing_ = false;
  return costly;
}

}  // namespace ui
