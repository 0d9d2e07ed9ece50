#include "tests/ui/widgets/views_on_window.h"

#include <string>

namespace test {

ViewsOnWindow::ViewsOnWindow(const ui::Palette& palette, double scale)
    : WindowOnServer({.width = 2600,
                      .height = 1700,
                      .resources = "Xft.dpi:\t" + std::to_string(scale * 96) + "\n"}),
      style(*connection, palette) {}

Picture ViewsOnWindow::picture(int width, int height,
                               const std::function<void(ui::Canvas&)>& paintViews) {
  if (window.xid() == 0) show(width, height);
  return paint([&](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, width, height}, kNothingDrawn);
    paintViews(canvas);
  });
}

ui::MouseEvent at(const ui::Rect& rect, int button) {
  return {.x = rect.x + rect.w / 2, .y = rect.y + rect.h / 2, .button = button};
}

}  // namespace test
