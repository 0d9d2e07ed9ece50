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
/// 128 kB fit into the socket: more waits for the server, which may itself wait for a processor.
constexpr std::size_t kBandPixels = 32768;
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
    budget_.spend(processorTime);
    if (!picture) return noteFailure();
    failures_ = 0;
    take(std::move(*picture));
    if (!arriving_ && onRendered) onRendered();
  };
}

void TreemapPicture::show(std::shared_ptr<const sizewalk::FileTree> tree, sizewalk::NodeId focus) {
  focus_ = focus;
  dirty_ = true;
  if (tree == tree_) return;
  tree_ = std::move(tree);
  background_.drop();
  giveUpArriving();
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
  growing_ = growing;
  if (growing) {
    budget_ = PreviewBudget(PreviewBudget::Clock::now());
  } else if (background_.busy() || arriving_) {
    background_.drop();
    giveUpArriving();
    outdated_ = true;
  }
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

bool TreemapPicture::behind() const {
  return background_.busy() || arriving_ || (outdated_ && tree_ && !rect_.empty());
}

bool TreemapPicture::due() const { return refused_ || renderDue(); }

bool TreemapPicture::renderDue() const {
  if (!behind() || background_.busy() || arriving_) return false;
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

bool TreemapPicture::makesInBackground() const { return growing_ && post_ && failures_ == 0; }

/// A scan has just begun: nothing is seen that the picture would come in place of, and what it
/// shows of the tree is next to nothing, so that the window need not wait for it. Nor for another
/// size of what is seen already: one that is on its way comes first, so that the pictures follow an
/// edge that is dragged on and on.
bool TreemapPicture::canWait() const {
  return makesInBackground() && (rendered_.pixels.empty() || !dirty_);
}

bool TreemapPicture::makeAndSend() {
  if ((dirty_ || !fits()) && canWait()) {
    if (!background_.busy() && !arriving_) {
      dirty_ = false;
      renderInBackground();
    }
  } else if (dirty_ || !fits()) {
    renderNow();
  } else if (renderDue()) {
    if (failures_ < kMostFailures) {
      renderInBackground();
    } else {
      renderNow();
    }
  }
  const bool arrived = std::exchange(arrived_, false);
  if (!std::exchange(unsent_, false) && !refused_) {
    if (selected_ != sentSelected_) sendWhereSelectionChanged();
    return arrived;
  }
  send();
  return true;
}

void TreemapPicture::renderNow() {
  // The last picture is given up for the new one: until that is there, one is due.
  dirty_ = true;
  giveUpArriving();
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
      post_ && background_.start({.tree = tree_,
                                  .root = focus_,
                                  .width = rect_.w,
                                  .height = rect_.h,
                                  .colours = colours_,
                                  .extraBlocks = extraBlocks_,
                                  .measure = measure_,
                                  .recycled = std::exchange(spare_, {}),
                                  .threads = growing_ && fits() ? 1 : hardwareThreads()});
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
  if (picture.pixels.size() > kPixelsAtOnce) {
    return unlessMemoryRunsOut([&] { sendInBands(std::move(picture)); });
  }
  recycle(std::exchange(rendered_, std::move(picture)));
  unsent_ = true;
}

/// While the tree grows there will soon be another. Giving a large one back takes milliseconds.
void TreemapPicture::recycle(RenderedTreemap old) {
  if (growing_) {
    spare_ = std::move(old);
  } else if (old.pixels.size() > kPixelsAtOnce) {
    base::destroyElsewhere(std::move(old));
  }
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

struct TreemapPicture::Arriving {
  Arriving(ui::Connection& connection, RenderedTreemap map, std::vector<NodeId> selection)
      : picture(std::move(map)), image(connection), selected(std::move(selection)) {}

  RenderedTreemap picture;
  ui::ServerImage image;
  /// What was selected when its first band was sent, and the outlines.
  std::vector<NodeId> selected;
  std::vector<ui::Rect> outlines;
  int rowsSent = 0;
};

void TreemapPicture::sendInBands(RenderedTreemap picture) {
  arriving_ = std::make_shared<Arriving>(connection_, std::move(picture), selected_);
  for (const NodeId node : selected_) {
    arriving_->outlines.push_back(outlineOf(arriving_->picture, node));
  }
  const RenderedTreemap& map = arriving_->picture;
  if (arriving_->image.reserve(map.width, map.height)) return postNextBand();
  // Sent whole it has the memory of the last one, or is refused.
  rendered_ = std::move(arriving_->picture);
  arriving_.reset();
  unsent_ = true;
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
  const RenderedTreemap& map = arriving_->picture;
  const auto width = static_cast<std::size_t>(map.width);
  const int rows = static_cast<int>(std::max<std::size_t>(kBandPixels / width, 1));
  const int top = arriving_->rowsSent;
  const ui::Rect band = {0, top, map.width, std::min(rows, map.height - top)};
  std::span<const std::uint32_t> pixels =
      std::span(map.pixels)
          .subspan(static_cast<std::size_t>(top) * width, static_cast<std::size_t>(band.h) * width);
  if (!arriving_->outlines.empty()) {
    outlined_.assign(pixels.begin(), pixels.end());
    drawOutlines(arriving_->outlines, outlineStyle_, band, outlined_);
    pixels = outlined_;
  }
  arriving_->image.replace(band, pixels);
  arriving_->rowsSent += band.h;
  if (arriving_->rowsSent < map.height) return postNextBand();
  showArrived();
}

void TreemapPicture::showArrived() {
  const std::shared_ptr<Arriving> arrived = std::exchange(arriving_, nullptr);
  recycle(std::exchange(rendered_, std::move(arrived->picture)));
  image_.takeFrom(arrived->image);
  sentSelected_ = std::move(arrived->selected);
  outlines_ = std::move(arrived->outlines);
  refused_ = false;
  unsent_ = highlight_.has_value();  // as bands are sent nothing is dimmed
  arrived_ = true;
  ++version_;
  if (onRendered) onRendered();
}

void TreemapPicture::giveUpArriving() {
  if (!arriving_) return;
  spare_ = std::move(arriving_->picture);
  arriving_.reset();
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

ui::Rect TreemapPicture::outlineOf(const RenderedTreemap& map, NodeId node) {
  const PixelSpan* rect = map.outlineRect(node);
  const ui::Rect pixels = rect ? rect->rect() : ui::Rect();
  return pixels.w < kLeastOutlined || pixels.h < kLeastOutlined ? ui::Rect() : pixels;
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
