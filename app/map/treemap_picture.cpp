#include "app/map/treemap_picture.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "app/map/cushion_shading.h"
#include "app/map/kind_highlight.h"

namespace app {

namespace {
/// With more of them changed than this the whole picture is sent.
constexpr std::size_t kMostBands = 100;
/// After as many the picture is made on the spot, in the memory of the last one.
constexpr int kMostFailures = 3;
}  // namespace

using sizewalk::NodeId;

TreemapPicture::TreemapPicture(ui::Connection& connection, const KindColours& colours,
                               BackgroundRender::Post post)
    : colours_(colours),
      image_(connection),
      hasBackground_(static_cast<bool>(post)),
      background_(std::move(post)) {
  background_.onEnded = [this](auto picture, BackgroundRender::Duration processorTime) {
    budget_.spend(processorTime);
    if (!picture) return noteFailure();
    failures_ = 0;
    take(std::move(*picture));
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
  refused_ = false;
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

void TreemapPicture::setGrowing(bool growing) {
  if (growing == growing_) return;
  growing_ = growing;
  if (growing) {
    budget_ = PreviewBudget(PreviewBudget::Clock::now());
  } else if (background_.busy()) {
    background_.drop();
    outdated_ = true;
  }
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

bool TreemapPicture::due() const { return refused_ || renderDue(); }

bool TreemapPicture::renderDue() const {
  if (!behind() || background_.busy()) return false;
  return !growing_ || budget_.allows(PreviewBudget::Clock::now());
}

bool TreemapPicture::update() {
  if (!tree_ || rect_.empty()) return false;
  try {
    return makeAndSend();
  } catch (const std::bad_alloc&) {  // the next tick finds it due
    outdated_ = true;
    unsent_ = !rendered_.pixels.empty();
    return false;
  }
}

bool TreemapPicture::makeAndSend() {
  if (dirty_ || !fits()) {
    renderNow();
  } else if (renderDue()) {
    if (failures_ < kMostFailures) {
      renderInBackground();
    } else {
      renderNow();
    }
  }
  if (!std::exchange(unsent_, false) && !refused_) {
    if (selected_ != sentSelected_) sendWhereSelectionChanged();
    return false;
  }
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
  failures_ = 0;
  overtaken_ = background_.busy();
  unsent_ = true;
}

void TreemapPicture::renderInBackground() {
  outdated_ = false;
  overtaken_ = false;
  const bool begun =
      hasBackground_ && background_.start({.tree = tree_,
                                           .root = focus_,
                                           .width = rect_.w,
                                           .height = rect_.h,
                                           .colours = colours_,
                                           .extraBlocks = extraBlocks_,
                                           .measure = measure_,
                                           .recycled = std::exchange(spare_, {}),
                                           .threads = growing_ ? 1 : hardwareThreads()});
  if (!begun) renderNow();
}

/// There was no memory for a picture in the background. Nothing says that the tree will change once
/// more, so that it is tried again: the next tick finds it due.
void TreemapPicture::noteFailure() {
  if (overtaken_) return;
  outdated_ = true;
  ++failures_;
}

/// Shows a picture from the background, unless something else is to be seen meanwhile.
void TreemapPicture::take(RenderedTreemap picture) {
  if (overtaken_ || dirty_) {
    spare_ = std::move(picture);
    return;
  }
  spare_ = std::exchange(rendered_, std::move(picture));
  unsent_ = true;
}

void TreemapPicture::send() {
  if (highlight_) highlightKind(rendered_, *highlight_, &dimmed_);
  findOutlines();
  std::span<const std::uint32_t> pixels = plainPixels();
  if (!outlines_.empty()) {
    outlined_.assign(pixels.begin(), pixels.end());
    drawOutlines(outlines_, outlineStyle_, {0, 0, rendered_.width, rendered_.height}, outlined_);
    pixels = outlined_;
  }
  image_.set(pixels, rendered_.width, rendered_.height);
  refused_ = !pixels.empty() && image_.width() == 0;
}

std::span<const std::uint32_t> TreemapPicture::plainPixels() const {
  return highlight_ ? dimmed_ : rendered_.pixels;
}

void TreemapPicture::setSelected(std::span<const NodeId> nodes) {
  selected_.assign(nodes.begin(), nodes.end());
}

ui::Rect TreemapPicture::outlineOf(NodeId node) const {
  const PixelSpan* rect = rendered_.outlineRect(node);
  const ui::Rect pixels = rect ? rect->rect() : ui::Rect();
  return pixels.w < kLeastOutlined || pixels.h < kLeastOutlined ? ui::Rect() : pixels;
}

void TreemapPicture::findOutlines() {
  outlines_.clear();
  for (const NodeId node : selected_) outlines_.push_back(outlineOf(node));
  sentSelected_ = selected_;
}

/// Brings the outlines from those that were sent to those of what is selected by now, and returns
/// where they differ. Looks up what has changed alone: of twenty thousand that takes milliseconds.
std::vector<ui::Rect> TreemapPicture::followSelection() {
  std::vector<ui::Rect> bands;
  std::vector<ui::Rect> next;
  next.reserve(selected_.size());
  std::size_t last = 0;
  const auto skipBefore = [&](NodeId node) {
    for (; last < sentSelected_.size() && sentSelected_[last] < node; ++last) {
      addOutlineBands(outlines_[last], outlineStyle_, &bands);
    }
  };
  for (const NodeId node : selected_) {
    skipBefore(node);
    if (last < sentSelected_.size() && sentSelected_[last] == node) {
      next.push_back(outlines_[last++]);
    } else {
      next.push_back(outlineOf(node));
      addOutlineBands(next.back(), outlineStyle_, &bands);
    }
  }
  skipBefore(std::numeric_limits<NodeId>::max());
  outlines_ = std::move(next);
  sentSelected_ = selected_;
  return bands;
}

void TreemapPicture::sendWhereSelectionChanged() {
  const std::vector<ui::Rect> bands = followSelection();
  // Each band looks at all outlines, and takes requests of its own.
  if (bands.size() > kMostBands) return send();
  for (const ui::Rect& band : bands) sendPart(band);
}

void TreemapPicture::sendPart(const ui::Rect& part) {
  const ui::Rect seen = ui::intersect(part, {0, 0, rendered_.width, rendered_.height});
  if (seen.empty()) return;
  const auto width = static_cast<std::size_t>(seen.w);
  outlined_.clear();
  for (int y = seen.y; y < seen.y + seen.h; ++y) {
    const auto row = plainPixels().subspan(
        static_cast<std::size_t>(y) * static_cast<std::size_t>(rendered_.width) +
            static_cast<std::size_t>(seen.x),
        width);
    outlined_.insert(outlined_.end(), row.begin(), row.end());
  }
  drawOutlines(outlines_, outlineStyle_, seen, outlined_);
  image_.replace(seen, outlined_);
}

void TreemapPicture::paint(ui::Canvas& canvas) const {
  if (image_.width() != rect_.w || image_.height() != rect_.h) {
    canvas.fillRect(rect_, ui::kOpaque | kMapBackground);
    return;
  }
  image_.draw(canvas, rect_.x, rect_.y);
}

}  // namespace app
