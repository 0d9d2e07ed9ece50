#include "app/treemap_picture.h"

#include <utility>

#include "app/cushion_shading.h"
#include "app/kind_highlight.h"

namespace app {

namespace {
constexpr ui::Colour kOpaque = 0xFF000000;
}

void TreemapPicture::show(const sizewalk::FileTree* tree, sizewalk::NodeId focus) {
  focus_ = focus;
  dirty_ = true;
  if (tree == std::exchange(tree_, tree)) return;
  rendered_ = {};  // its blocks name nodes of the other tree
  image_.clear();
}

void TreemapPicture::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  dirty_ = true;
}

void TreemapPicture::setExtraBlocks(std::vector<ExtraBlock> blocks) {
  if (extraBlocks_ == blocks) return;
  extraBlocks_ = std::move(blocks);
  dirty_ = true;
}

void TreemapPicture::setHighlight(std::optional<int> kind) {
  if (highlight_ == kind) return;
  highlight_ = kind;
  unsent_ = true;
}

bool TreemapPicture::fits() const {
  return rendered_.width == rect_.w && rendered_.height == rect_.h;
}

bool TreemapPicture::update() {
  if (!tree_ || rect_.empty()) return false;
  const bool due = dirty_ || !fits();
  if (due) {
    // The last picture is given up for the new one: until that is there, one is due.
    dirty_ = true;
    rendered_ = renderTreemap(*tree_, focus_, rect_.w, rect_.h, colours_, extraBlocks_, measure_,
                              std::move(rendered_));
    dirty_ = false;
    unsent_ = true;
  }
  if (!std::exchange(unsent_, false)) return false;
  send();
  return true;
}

void TreemapPicture::send() {
  if (!highlight_) {
    image_.set(rendered_.pixels, rendered_.width, rendered_.height);
    return;
  }
  highlightKind(rendered_, *tree_, *highlight_, measure_, &dimmed_);
  image_.set(dimmed_, rendered_.width, rendered_.height);
}

void TreemapPicture::paint(ui::Canvas& canvas) const {
  if (image_.width() != rect_.w || image_.height() != rect_.h) {
    canvas.fillRect(rect_, kOpaque | kMapBackground);
    return;
  }
  image_.draw(canvas, rect_.x, rect_.y);
}

}  // namespace app
