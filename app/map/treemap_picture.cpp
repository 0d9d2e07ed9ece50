#include "app/map/treemap_picture.h"

#include <utility>

#include "app/map/cushion_shading.h"
#include "app/map/kind_highlight.h"

namespace app {

namespace {
constexpr ui::Colour kOpaque = 0xFF000000;
}

TreemapPicture::TreemapPicture(ui::Connection& connection, const KindColours& colours,
                               BackgroundRender::Post post)
    : colours_(colours),
      image_(connection),
      hasBackground_(static_cast<bool>(post)),
      background_(std::move(post)) {
  background_.onEnded = [this](auto picture, BackgroundRender::Duration took) {
    pacer_.pauseAfter(took);
    take(std::move(picture));
    if (onRendered) onRendered();
  };
}

void TreemapPicture::show(std::shared_ptr<const sizewalk::FileTree> tree, sizewalk::NodeId focus) {
  focus_ = focus;
  dirty_ = true;
  if (tree == tree_) return;
  tree_ = std::move(tree);
  background_.drop();
  spare_ = std::exchange(rendered_, {});  // its blocks name nodes of the other tree
  image_.clear();
}

void TreemapPicture::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  dirty_ = true;
}

bool TreemapPicture::setExtraBlocks(std::vector<ExtraBlock> blocks) {
  if (extraBlocks_ == blocks) return false;
  extraBlocks_ = std::move(blocks);
  outdated_ = true;
  return true;
}

void TreemapPicture::setHighlight(std::optional<sizewalk::KindIndex> kind) {
  if (highlight_ == kind) return;
  highlight_ = kind;
  unsent_ = true;
}

bool TreemapPicture::fits() const {
  return rendered_.width == rect_.w && rendered_.height == rect_.h;
}

const KindColours& TreemapPicture::shownColours() const {
  return !rect_.empty() && fits() ? rendered_.kindColours : colours_;
}

bool TreemapPicture::behind() const {
  return background_.busy() || (outdated_ && tree_ && !rect_.empty());
}

bool TreemapPicture::due() const {
  if (!behind() || background_.busy()) return false;
  return !growing_ || pacer_.due(RefreshPacer::Clock::now());
}

bool TreemapPicture::update() {
  if (!tree_ || rect_.empty()) return false;
  if (dirty_ || !fits()) {
    renderNow();
  } else if (due()) {
    renderInBackground();
  }
  if (!std::exchange(unsent_, false)) return false;
  send();
  return true;
}

void TreemapPicture::renderNow() {
  // The last picture is given up for the new one: until that is there, one is due.
  dirty_ = true;
  RenderedTreemap recycled = std::exchange(rendered_, {});
  if (recycled.pixels.empty()) recycled = std::exchange(spare_, {});
  rendered_ = renderTreemap(*tree_, focus_, rect_.w, rect_.h, colours_, extraBlocks_, measure_,
                            std::move(recycled));
  dirty_ = false;
  outdated_ = false;
  overtaken_ = background_.busy();
  unsent_ = true;
}

void TreemapPicture::renderInBackground() {
  outdated_ = false;
  overtaken_ = false;
  const bool begun = hasBackground_ && background_.start({.tree = tree_,
                                                          .root = focus_,
                                                          .width = rect_.w,
                                                          .height = rect_.h,
                                                          .colours = colours_,
                                                          .extraBlocks = extraBlocks_,
                                                          .measure = measure_,
                                                          .recycled = std::exchange(spare_, {})});
  if (!begun) renderNow();
}

/// Shows a picture from the background, unless something else is to be seen meanwhile.
void TreemapPicture::take(std::optional<RenderedTreemap> picture) {
  if (!picture) return;
  if (overtaken_ || dirty_) {
    spare_ = std::move(*picture);
    return;
  }
  spare_ = std::exchange(rendered_, std::move(*picture));
  unsent_ = true;
}

void TreemapPicture::send() {
  if (!highlight_) {
    image_.set(rendered_.pixels, rendered_.width, rendered_.height);
    return;
  }
  highlightKind(rendered_, *highlight_, &dimmed_);
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
