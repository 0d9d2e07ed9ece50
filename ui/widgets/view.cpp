#include "ui/widgets/view.h"

namespace ui {

std::uint64_t View::nextSerial() {
  static std::uint64_t last = 0;
  return ++last;
}

void View::setRect(const Rect& rect) {
  if (rect_ == rect) return;
  rect_ = rect;
  layOut();
  changed();
}

void View::setFocused(bool focused) {
  if (focused_ == focused) return;
  focused_ = focused;
  changed();
}

bool View::prepare() {
  preparing_ = true;
  const bool costly = bringUpToDate();
  preparing_ = false;
  return costly;
}

}  // namespace ui
