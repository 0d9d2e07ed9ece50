#include "app/treemap_view.h"

#include <utility>

#include "app/cushion_shading.h"

namespace app {

namespace {
constexpr ui::Colour kOpaque = 0xFF000000;
}

void TreemapView::show(const sizewalk::FileTree* tree, sizewalk::NodeId focus) {
  tree_ = tree;
  focus_ = focus;
  dirty_ = true;
  if (!tree) rendered_ = {};
}

void TreemapView::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  dirty_ = true;
}

bool TreemapView::update() {
  if (!tree_ || rect_.w < 1 || rect_.h < 1) return false;
  if (!dirty_ && rendered_.width == rect_.w && rendered_.height == rect_.h) return false;
  dirty_ = false;
  rendered_ =
      renderTreemap(*tree_, focus_, rect_.w, rect_.h, colours_, {}, measure_, std::move(rendered_));
  return true;
}

void TreemapView::paint(ui::Canvas& canvas) const {
  if (rendered_.pixels.empty() || rendered_.width != rect_.w || rendered_.height != rect_.h) {
    canvas.fillRect(rect_, kOpaque | kMapBackground);
    return;
  }
  canvas.putPixels(rect_.x, rect_.y, rendered_.pixels, rendered_.width, rendered_.height);
}

}  // namespace app
