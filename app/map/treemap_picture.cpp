#include "app/map/treemap_picture.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "app/map/cushion_shading.h"
#include "app/map/kind_highlight.h"
#include "base/detached_threads.h"

namespace app {

namespace {
/// With more of them changed than this the whole picture is sent.
constexpr std::size_t kMostBands = 100;
/// A megabyte, which is sent in about a millisecond. What has more goes in bands.
constexpr std::size_t kPixelsAtOnce = 262144;
/// After as many the picture is made on the spot, in the memory of the last one.
constexpr int kMostFailures = 3;
}  // namespace

using sizewalk::NodeId;

TreemapPicture::TreemapPicture(ui::Connection& connection, const KindColours& colours,
                               BackgroundRender::Post post)
    : colours_(colours),
      image_(connection),
      connection_(connection),
      post_(std::move(post)),
      background_(post_) {
  background_.onEnded = [this](auto picture, BackgroundRender::Duration processorTime) {
    if (preview_) budget_.spend(processorTime);
    if (!picture) return noteFailure();
    failures_ = 0;
    take(std::move(*picture));
  };
}

void TreemapPicture::show(std::shared_ptr<const sizewalk::FileTree> tree, sizewalk::NodeId focus) {
  focus_ = focus;
  dirty_ = true;
  if (tree == tree_) return;
  tree_ = std::move(tree);
  giveUpNext();
  budget_ = PreviewBudget(PreviewBudget::Clock::now());
  // Its blocks name nodes of the other tree.
  base::destroyElsewhere(std::exchange(spare_, std::exchange(rendered_, {})));
  image_.clear();
  ++version_;
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
  if (growing) {
    budget_ = PreviewBudget(PreviewBudget::Clock::now());
  } else if (nextBegun()) {
    giveUpNext();
    outdated_ = true;
  }
  growing_ = growing;
}

bool TreemapPicture::fits() const {
  return rendered_.width == rect_.w && rendered_.height == rect_.h;
}

const KindColours& TreemapPicture::shownColours() const {
  return !rect_.empty() && isSeen() ? rendered_.kindColours : colours_;
}

/// Where the place has another size than the picture, it is seen while the next one is on its way.
bool TreemapPicture::isSeen() const {
  return fits() || (!rendered_.pixels.empty() && makesInBackground() && !dirty_);
}

bool TreemapPicture::nextBegun() const { return background_.busy() || arriving_ || made_; }

bool TreemapPicture::behind() const {
  return tree_ && !rect_.empty() && (nextBegun() || outdated_);
}

bool TreemapPicture::due() const { return refused_ || renderDue(); }

bool TreemapPicture::renderDue() const {
  if (!tree_ || rect_.empty() || nextBegun()) return false;
  if (dirty_ || !fits()) return true;
  return outdated_ && (!growing_ || budget_.allows(PreviewBudget::Clock::now()));
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

bool TreemapPicture::makesInBackground() const { return growing_ && post_ && failures_ == 0; }

/// A scan has just begun: nothing is seen that the picture would come in place of, and what it
/// shows of the tree is next to nothing, so that the window need not wait for it. Nor for another
/// size of what is seen already.
bool TreemapPicture::canWait() const {
  return makesInBackground() && (rendered_.pixels.empty() || !dirty_);
}

bool TreemapPicture::makeAndSend() {
  const bool arrived = showArrived();
  if (dirty_ || !fits()) {
    if (canWait()) {
      beginInBackground();
    } else {
      renderNow();
    }
  } else if (renderDue()) {
    if (failures_ < kMostFailures) {
      renderInBackground();
    } else {
      renderNow();
    }
  }
  if (!std::exchange(unsent_, false) && !refused_) {
    if (selected_ != sentSelected_) sendWhereSelectionChanged();
    return arrived;
  }
  send();
  return true;
}

/// A picture of another size that is on its way comes first, so that the pictures follow an edge
/// that is dragged on and on.
void TreemapPicture::beginInBackground() {
  const bool onlyFollows = preview_ && !rendered_.pixels.empty();
  if (dirty_ || onlyFollows) giveUpNext();
  if (nextBegun()) return;
  dirty_ = false;
  renderInBackground();
}

void TreemapPicture::renderNow() {
  // The last picture is given up for the new one: until that is there, one is due.
  dirty_ = true;
  giveUpNext();
  RenderedTreemap recycled = std::exchange(rendered_, {});
  if (recycled.pixels.empty()) recycled = std::exchange(spare_, {});
  rendered_ = renderTreemap(*tree_, focus_, rect_.w, rect_.h, colours_, extraBlocks_, measure_,
                            std::move(recycled));
  if (!growing_) letGo(std::exchange(spare_, {}));
  dirty_ = false;
  outdated_ = false;
  failures_ = 0;
  unsent_ = true;
}

void TreemapPicture::renderInBackground() {
  outdated_ = false;
  const bool resized = !fits() && !rendered_.pixels.empty();
  preview_ = growing_ && !resized;
  const bool begun = post_ && background_.start({.tree = tree_,
                                                 .root = focus_,
                                                 .width = rect_.w,
                                                 .height = rect_.h,
                                                 .colours = colours_,
                                                 .extraBlocks = extraBlocks_,
                                                 .measure = measure_,
                                                 .recycled = std::exchange(spare_, {}),
                                                 .threads = preview_ ? 1 : hardwareThreads()});
  if (!begun) renderNow();
}

/// There was no memory for a picture in the background. Nothing says that the tree will change once
/// more, so that it is tried again: the next tick finds it due.
void TreemapPicture::noteFailure() {
  outdated_ = true;
  ++failures_;
}

/// A picture of the size before the last is made again in that which is there by now.
bool TreemapPicture::isWanted(const RenderedTreemap& picture) const {
  const bool sameSize = picture.width == rect_.w && picture.height == rect_.h;
  return !dirty_ && (sameSize || !fits());
}

/// Keeps a picture from the background until the next update. Until then the last one is on the
/// screen, and what the user presses is what lies there.
void TreemapPicture::take(RenderedTreemap picture) {
  if (picture.pixels.size() > kPixelsAtOnce && isWanted(picture)) {
    return unlessMemoryRunsOut([&] { sendInBands(std::move(picture)); });
  }
  made_ = std::move(picture);
  if (onRendered) onRendered();
}

/// While the tree grows there will soon be another.
void TreemapPicture::recycle(RenderedTreemap old) {
  letGo(growing_ ? std::exchange(spare_, std::move(old)) : std::move(old));
}

/// Giving a large one back takes milliseconds.
void TreemapPicture::letGo(RenderedTreemap old) {
  if (old.pixels.size() > kPixelsAtOnce) base::destroyElsewhere(std::move(old));
}

/// Takes a step on the way of a picture to the server. Without memory it is made again later.
void TreemapPicture::unlessMemoryRunsOut(const std::function<void()>& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    arriving_.reset();
    outdated_ = true;
  }
}

void TreemapPicture::sendInBands(RenderedTreemap picture) {
  arriving_ = std::make_shared<PictureInBands>(connection_, std::move(picture), selected_);
  if (arriving_->reserve()) return postNextBand();
  // Sent whole it has the memory of the last one, or is refused.
  made_ = std::move(arriving_->parts().map);
  arriving_.reset();
  if (onRendered) onRendered();
}

/// The window thread looks after its user before it comes to that.
void TreemapPicture::postNextBand() {
  post_([this, arriving = std::weak_ptr(arriving_)] {
    if (arriving.expired()) return;
    const auto begin = std::chrono::steady_clock::now();
    unlessMemoryRunsOut([this] { sendNextBand(); });
    if (onPartSent) onPartSent(std::chrono::steady_clock::now() - begin);
  });
}

void TreemapPicture::sendNextBand() {
  arriving_->sendNext(outlineStyle_);
  if (!arriving_->isThere()) return postNextBand();
  if (onRendered) onRendered();
}

/// Shows what has come from the background. True when that is a whole picture which the server has
/// already.
bool TreemapPicture::showArrived() {
  if (made_) {
    showMade();
  } else if (arriving_ && arriving_->isThere()) {
    return showSent();
  }
  return false;
}

/// Has `next` come in place of the last picture, unless that is not wanted any more.
bool TreemapPicture::replaceBy(RenderedTreemap next) {
  const bool wanted = isWanted(next);
  if (wanted) std::swap(rendered_, next);
  recycle(std::move(next));
  if (!wanted) outdated_ = true;
  return wanted;
}

void TreemapPicture::showMade() {
  if (replaceBy(std::move(*std::exchange(made_, std::nullopt)))) unsent_ = true;
}

bool TreemapPicture::showSent() {
  const auto arrived = std::exchange(arriving_, nullptr);
  PictureInBands::Parts& parts = arrived->parts();
  if (!replaceBy(std::move(parts.map))) return false;
  image_.takeFrom(parts.image);
  sentSelected_ = std::move(parts.selected);
  outlines_ = std::move(parts.outlines);
  refused_ = false;
  unsent_ = highlight_.has_value();  // as bands are sent nothing is dimmed
  ++version_;
  return true;
}

/// Gives up all that would come in place of the last picture.
void TreemapPicture::giveUpNext() {
  background_.drop();
  if (made_) recycle(std::move(*std::exchange(made_, std::nullopt)));
  if (arriving_) recycle(std::move(std::exchange(arriving_, nullptr)->parts().map));
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
  ++version_;
  refused_ = !pixels.empty() && image_.width() == 0;
}

std::span<const std::uint32_t> TreemapPicture::plainPixels() const {
  return highlight_ ? dimmed_ : rendered_.pixels;
}

void TreemapPicture::setSelected(std::span<const NodeId> nodes) {
  selected_.assign(nodes.begin(), nodes.end());
}

void TreemapPicture::findOutlines() {
  outlines_.clear();
  for (const NodeId node : selected_) outlines_.push_back(outlineOf(rendered_, node));
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
      next.push_back(outlineOf(rendered_, node));
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
  ++version_;
}

void TreemapPicture::paint(ui::Canvas& canvas) const {
  const bool whole = image_.width() == rect_.w && image_.height() == rect_.h;
  if (!whole) canvas.fillRect(rect_, ui::kOpaque | kMapBackground);
  if (!whole && !isSeen()) return;
  canvas.pushClip(rect_);
  image_.draw(canvas, rect_.x, rect_.y);
  canvas.popClip();
}

}  // namespace app
