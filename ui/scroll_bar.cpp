#include "ui/scroll_bar.h"

namespace ui {

namespace {
constexpr int kInset = 2;
}

void drawScrollBar(Canvas& canvas, const Scroller& scroller, Colour track, Colour thumb) {
  if (!scroller.hasBar()) return;
  canvas.fillRect(scroller.bar(), track);
  const Rect grip = scroller.thumb();
  const Rect shape = {grip.x + kInset, grip.y + kInset, grip.w - 2 * kInset, grip.h - 2 * kInset};
  canvas.fillRoundRect(shape, shape.w / 2, thumb);
}

}  // namespace ui
