#include "app/map/treemap_view.h"

#include <utility>

#include "app/map/map_card.h"
#include "app/map/map_notice.h"
#include "ui/keys.h"
#include "ui/text.h"

namespace app {

using sizewalk::NodeId;

namespace {

constexpr std::int64_t kRestMs = 400;
/// A wheel that spins freely and a touchpad send dozens of notches a second.
constexpr std::uint32_t kBetweenLevelsMs = 150;
// Logical pixels.
constexpr double kLabelPadding = 6;
constexpr double kLeastLabelWidth = 48;
constexpr ui::Colour kOutlineLight = 0xFFFFFFFF;
constexpr ui::Colour kOutlineDark = 0xC0000000;

enum Button { kPrimary = 1, kMiddle = 2, kSecondary = 3, kBack = 8, kForward = 9 };

ui::Rect grown(const ui::Rect& rect, int by) {
  return {rect.x - by, rect.y - by, rect.w + 2 * by, rect.h + 2 * by};
}

bool isSameItem(const std::optional<PictureBlock>& a, const std::optional<PictureBlock>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return a->id == b->id && a->restCount == b->restCount;
}

}  // namespace

TreemapView::TreemapView(const ui::Style& style, TreemapPicture& picture, MapFocus& focus,
                         Selection& selection)
    : style_(style),
      picture_(picture),
      focus_(focus),
      selection_(selection),
      card_(style),
      notice_(style) {
  picture_.setOutlineStyle({.thickness = lineWidth(), .accent = style_.palette().accent});
}

const PictureBlock* TreemapView::blockAt(int x, int y) const {
  const ui::Rect& place = picture_.rect();
  const PictureBlock* block = picture_.rendered().blockUnder(x - place.x, y - place.y);
  if (!block || block->id < 0) return block;
  const sizewalk::FileTree* tree = picture_.tree();
  return tree && tree->isVisible(static_cast<NodeId>(block->id)) ? block : nullptr;
}

std::optional<NodeId> TreemapView::nodeAt(int x, int y) const {
  const PictureBlock* block = blockAt(x, y);
  if (!block || block->id < 0 || block->restCount > 0) return std::nullopt;
  return static_cast<NodeId>(block->id);
}

std::optional<NodeId> TreemapView::hovered() const {
  if (!pointer_) return std::nullopt;
  return nodeAt(pointer_->x, pointer_->y);
}

std::optional<ui::Rect> TreemapView::outlineOf(NodeId node) const {
  const PixelSpan* rect = picture_.rendered().outlineRect(node);
  return rect ? std::optional(rect->rect()) : std::nullopt;
}

ui::Rect TreemapView::inWindow(const ui::Rect& onMap) const {
  return {onMap.x + picture_.rect().x, onMap.y + picture_.rect().y, onMap.w, onMap.h};
}

void TreemapView::layOut() {
  picture_.setRect(rect());
  findHovered();  // the map may have moved under a pointer at rest
  findTexts();
}

TreemapView::Look TreemapView::look() const {
  const bool card = card_.shown();
  return {
      .picture = picture_.version(),
      .labels = spaceLabels_,
      .notice = notice_.text(),
      .outline = hoveredBlock_ ? std::optional(inWindow(hoveredBlock_->rect.rect())) : std::nullopt,
      .card = card_.card(),
      .cardPlace = card ? card_.rect() : ui::Rect()};
}

/// Compares with what was painted, so that nothing that changes in between can be forgotten.
bool TreemapView::bringUpToDate() {
  const Look before = std::exchange(shown_, look());
  const Look& now = shown_;
  if (before.picture != now.picture || before.labels != now.labels || before.notice != now.notice) {
    changed();
    return false;
  }
  if (before.outline != now.outline) {
    outlineChanged(before.outline);
    outlineChanged(now.outline);
  }
  if (before.card != now.card || before.cardPlace != now.cardPlace) {
    changed(before.cardPlace);
    changed(now.cardPlace);
  }
  return false;
}

/// The four lines of which an outline consists: its inside stays as it is, however large.
void TreemapView::outlineChanged(const std::optional<ui::Rect>& outline) {
  if (!outline) return;
  const ui::Rect all = grown(*outline, lineWidth());
  const int width = std::min({2 * lineWidth(), all.w, all.h});
  for (const ui::Rect& line :
       {ui::Rect{all.x, all.y, all.w, width}, ui::Rect{all.x, all.y, width, all.h},
        ui::Rect{all.x + all.w - width, all.y, width, all.h},
        ui::Rect{all.x, all.y + all.h - width, all.w, width}}) {
    changed(ui::intersect(line, picture_.rect()));
  }
}

void TreemapView::refresh() {
  findHovered();
  findTexts();
  if (card_.shown()) fillCard();
}

void TreemapView::setScanStatus(const ScanStatus& status) {
  status_ = status;
  findNotice();
}

void TreemapView::findTexts() {
  findNotice();
  findSpaceLabels();
}

void TreemapView::findNotice() {
  const sizewalk::FileTree* tree = picture_.tree();
  notice_.set(tree ? mapNotice(picture_.rendered(), *tree, picture_.measure(), status_)
                   : std::string_view(),
              picture_.rect());
}

void TreemapView::findSpaceLabels() {
  const auto measure = [this](std::string_view text) { return style_.textWidth(text); };
  spaceLabels_ = spaceLabels(picture_.rendered(), {.lineHeight = style_.lineHeight(),
                                                   .padding = style_.scaled(kLabelPadding),
                                                   .leastWidth = style_.scaled(kLeastLabelWidth),
                                                   .measure = measure});
}

void TreemapView::reset() {
  lastPress_.reset();
  leave();
}

void TreemapView::findHovered() {
  const PictureBlock* block = pointer_ ? blockAt(pointer_->x, pointer_->y) : nullptr;
  const std::optional<PictureBlock> found = block ? std::optional(*block) : std::nullopt;
  // Another picture may have come under a pointer at rest.
  if (!isSameItem(found, hoveredBlock_)) card_.hide();
  hoveredBlock_ = found;
}

void TreemapView::motion(const ui::MouseEvent& event) {
  pointer_ = Pointer{event.x, event.y, event.timeMs, event.moved};
  const bool hadCard = card_.hide();
  const auto before = hoveredBlock_;
  findHovered();
  if (hadCard || !isSameItem(before, hoveredBlock_)) needsFrame();
}

void TreemapView::leave() {
  const bool seen = pointer_.has_value();
  pointer_.reset();
  card_.hide();
  findHovered();
  if (seen) needsFrame();
}

bool TreemapView::hideCard() {
  if (pointer_) pointer_->awaitsCard = false;
  if (!card_.hide()) return false;
  needsFrame();
  return true;
}

void TreemapView::tick(std::int64_t nowMs) {
  if (!pointer_ || !pointer_->awaitsCard || !hoveredBlock_ || card_.shown()) return;
  if (nowMs - pointer_->sinceMs < kRestMs) return;
  findHovered();  // the picture may have gone since the last frame
  if (!hoveredBlock_ || !picture_.tree()) return;
  fillCard();
  needsFrame();
}

void TreemapView::fillCard() {
  card_.show(mapCard(picture_.rendered(), *hoveredBlock_, *picture_.tree(), picture_.measure()),
             pointer_->x, pointer_->y, rect());
}

void TreemapView::press(const ui::MouseEvent& event) {
  hideCard();
  // Of four quick presses the last two are a double press as well.
  const Press press = {event.button, nodeAt(event.x, event.y)};
  const bool again = event.clicks % 2 == 0 && press == lastPress_;
  lastPress_ = press;
  switch (event.button) {
    case kPrimary:
      if (again && !event.ctrl) {
        goTowards(event);
      } else {
        pick(event);
      }
      break;
    case kSecondary:
      openContextMenu(event);
      break;
    case kMiddle:
    case kBack:
      focus_.goOut();
      break;
    case kForward:
      focus_.goBackIn();
      break;
    default:
      break;
  }
}

void TreemapView::pick(const ui::MouseEvent& event) {
  const auto node = nodeAt(event.x, event.y);
  if (event.ctrl) {
    if (node) selection_.toggle(*node);
  } else if (node) {
    selection_.select(*node);
  } else {
    selection_.clear();
  }
  if (node && selection_.contains(*node) && onPicked) onPicked(*node);
}

void TreemapView::openContextMenu(const ui::MouseEvent& event) {
  const auto node = nodeAt(event.x, event.y);
  if (!node) return;
  if (!selection_.contains(*node)) {
    selection_.select(*node);
    if (onPicked) onPicked(*node);
  }
  if (onContextMenu) onContextMenu(*node, event.x, event.y);
}

void TreemapView::wheel(const ui::MouseEvent& event, int dy) {
  hideCard();
  if (lastLevelMs_ && event.serverMs - *lastLevelMs_ < kBetweenLevelsMs) return;
  const NodeId before = focus_.current();
  if (dy > 0) focus_.goOut();
  if (dy < 0) goTowards(event);
  if (focus_.current() != before) lastLevelMs_ = event.serverMs;
}

void TreemapView::goTowards(const ui::MouseEvent& event) {
  const PictureBlock* block = blockAt(event.x, event.y);
  if (!block || block->id < 0 || !picture_.tree()) return;
  const auto node = static_cast<NodeId>(block->id);
  // Merged items have only their folder in common.
  focus_.goTowards(block->restCount > 0 ? picture_.tree()->parent(node) : node);
}

bool TreemapView::key(const ui::KeyEvent& event) {
  if (event.ctrl) return false;
  switch (ui::key::plain(event.keysym)) {
    case ui::key::kLeft:
      return moveSelection(-1, 0);
    case ui::key::kRight:
      return moveSelection(1, 0);
    case ui::key::kUp:
      return moveSelection(0, -1);
    case ui::key::kDown:
      return moveSelection(0, 1);
    case ui::key::kReturn:
      if (selection_.size() == 1) focus_.goTowards(*selection_.nodes().begin());
      return true;
    default:
      return false;
  }
}

bool TreemapView::moveSelection(int dx, int dy) {
  const auto from = selection_.size() == 1 ? outlineOf(*selection_.nodes().begin()) : std::nullopt;
  const auto node = from ? nodeBeyond(inWindow(*from), dx, dy) : firstNode();
  if (node) {
    selection_.select(*node);
    if (onPicked) onPicked(*node);
  }
  return true;
}

std::optional<NodeId> TreemapView::nodeBeyond(const ui::Rect& rect, int dx, int dy) const {
  // From the pixel just outside the middle of the edge on that side.
  int x = rect.x + (dx < 0 ? -1 : dx > 0 ? rect.w : rect.w / 2);
  int y = rect.y + (dy < 0 ? -1 : dy > 0 ? rect.h : rect.h / 2);
  for (; picture_.rect().contains(x, y); x += dx, y += dy) {
    if (const auto node = nodeAt(x, y)) return node;
  }
  return std::nullopt;
}

std::optional<NodeId> TreemapView::firstNode() const {
  for (const PictureBlock& block : picture_.rendered().blocks) {
    // The block may be too small for a pixel of its own.
    const ui::Rect place = inWindow(block.rect.rect());
    const auto node = nodeAt(place.x, place.y);
    if (node) return node;
  }
  return std::nullopt;
}

void TreemapView::paintRing(ui::Canvas& canvas) const {
  for (int i = 0; i < lineWidth(); ++i) {
    canvas.strokeRect(grown(picture_.rect(), -i), style_.palette().accent);
  }
}

/// In every frame, as texts and not as pixels: the server has the letters.
void TreemapView::paintSpaceLabels(ui::Canvas& canvas) const {
  for (const SpaceLabel& label : spaceLabels_) {
    ui::drawText(canvas, inWindow(label.line), label.text, style_.body(), kSpaceLabelColour,
                 ui::Align::Centre);
  }
}

void TreemapView::paintHovered(ui::Canvas& canvas) const {
  if (!hoveredBlock_) return;
  const ui::Rect outline = inWindow(hoveredBlock_->rect.rect());
  for (int i = 0; i < lineWidth(); ++i) {
    canvas.strokeRect(grown(outline, i + 1), kOutlineDark);
    canvas.strokeRect(grown(outline, -i), kOutlineLight);
  }
}

void TreemapView::paint(ui::Canvas& canvas) const {
  canvas.pushClip(picture_.rect());
  picture_.paint(canvas);
  paintSpaceLabels(canvas);
  notice_.paint(canvas);
  paintHovered(canvas);
  if (focused() && canvas.showsRings()) paintRing(canvas);
  canvas.popClip();
}

}  // namespace app
