#include "app/lists/folder_list.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"
#include "ui/typed_text.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

namespace {

// Logical pixels.
constexpr double kIndent = 16;
constexpr double kSizeColumnWidth = 80;

// Device pixels.
constexpr int kLeftMargin = 6;
constexpr int kSwatchPlace = 12;
constexpr int kSwatchSize = 8;
constexpr int kNamePlace = 26;
constexpr int kLeastNameWidth = 20;
constexpr int kNameMargin = 8;
constexpr int kSizeMargin = 10;
constexpr int kTriangleLines = 5;

constexpr int kWheelRows = 3;
constexpr int kPrimaryButton = 1;
constexpr ui::Colour kOpaque = 0xFF000000;

}  // namespace

/// Where the parts of a row are.
struct FolderList::RowPlaces {
  /// From edge to edge of the list, below the scroll bar too.
  ui::Rect row;
  int x0;
  int mid;
  ui::Rect swatch;
  ui::Rect name;
  ui::Rect size;

  /// The triangle and the room around it, as far as the swatch: it is too small to aim at.
  bool isOnTriangle(int x) const { return x >= x0 - kLeftMargin && x < swatch.x; }
};

struct FolderList::RowColours {
  ui::Colour name;
  ui::Colour rest;
};

FolderList::FolderList(const ui::Style& style, const KindColours* colours, Selection& selection)
    : style_(style), colours_(colours), selection_(selection) {}

// What is shown.

void FolderList::show(const sizewalk::FileTree* tree) {
  tree_ = tree;
  pendingRow_ = -1;
  keepingPendingRow([&] { rows_.show(tree); });
  current_.reset();
  if (rowCount() > 0) current_ = kRootNode;
  anchor_.reset();
  pressed_.reset();
  typeAhead_.forget();
  scroller_.release();
  scroller_.scrollTo(0);
  changed();
}

void FolderList::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  changeRows([&] { rows_.setMeasure(measure); });
}

void FolderList::refresh() {
  changeRows([this] { rows_.refresh(); });
}

void FolderList::changeRows(const std::function<void()>& change) {
  const std::optional<KeptRow> kept = rowToKeep();
  current_ = currentToKeep();
  keepingPendingRow(change);
  if (!currentRow()) current_ = rowCount() > 0 ? std::optional(kRootNode) : std::nullopt;
  if (const auto row = kept ? rows_.find(kept->node) : std::nullopt) {
    const std::int64_t offset = ui::rowTop(*row, style_.rowHeight()) - kept->distance;
    scroller_.scrollTo(
        static_cast<int>(std::clamp<std::int64_t>(offset, 0, ui::kMostContentHeight)));
  }
  changed();
}

void FolderList::keepingPendingRow(const std::function<void()>& change) {
  std::optional<NodeId> pending;
  if (pendingRow_ >= 0) pending = nodeAt(static_cast<std::size_t>(pendingRow_));
  change();
  scroller_.setContentHeight(ui::contentHeight(rowCount(), style_.rowHeight()));
  const auto row = pending ? rows_.find(*pending) : std::nullopt;
  pendingRow_ = row ? static_cast<std::ptrdiff_t>(*row) : -1;
}

/// Of the rows that the user may be looking at, the first that will still be there.
std::optional<FolderList::KeptRow> FolderList::rowToKeep() const {
  const auto kept = [this](std::size_t row) -> std::optional<KeptRow> {
    if (!isInView(row) || !rows_.leadsTo(nodeAt(row))) return std::nullopt;
    return KeptRow{nodeAt(row), ui::rowTop(row, style_.rowHeight()) - scroller_.offset()};
  };
  for (const auto& row : {hoveredRow(), currentRow()}) {
    if (const auto result = row ? kept(*row) : std::nullopt) return result;
  }
  const ui::RowRange seen =
      ui::visibleRows(scroller_.offset(), rect().h, style_.rowHeight(), rowCount());
  for (const bool selected : {true, false}) {
    for (std::size_t row = seen.first; row < seen.last; ++row) {
      if (selected && !selection_.contains(nodeAt(row))) continue;
      if (const auto result = kept(row)) return result;
    }
  }
  return std::nullopt;
}

/// The current row's node, or the node of the row nearest to it that will still be there; of two
/// equally near ones that below, which moves up into its place.
std::optional<NodeId> FolderList::currentToKeep() const {
  const auto row = currentRow();
  if (!row || rows_.leadsTo(*current_)) return current_;
  for (std::size_t distance = 1; distance < rowCount(); ++distance) {
    const std::size_t below = *row + distance;
    if (below < rowCount() && rows_.leadsTo(nodeAt(below))) return nodeAt(below);
    if (distance <= *row && rows_.leadsTo(nodeAt(*row - distance))) return nodeAt(*row - distance);
  }
  return std::nullopt;
}

void FolderList::layOut() { scroller_.setView(rect()); }

void FolderList::revealNode(NodeId node) {
  std::optional<std::size_t> row;
  changeRows([&] { row = rows_.reveal(node); });
  if (!row) return;
  current_ = node;
  // What is shown without having been picked begins no range.
  if (selection_.contains(node)) anchor_ = node;
  scrollToRow(*row);
}

void FolderList::scrollToRow(std::size_t row) {
  if (row < rowCount()) pendingRow_ = static_cast<std::ptrdiff_t>(row);
}

bool FolderList::bringUpToDate() {
  scrollIfDue();
  return false;
}

void FolderList::scrollIfDue() {
  if (pendingRow_ < 0 || rect().empty()) return;
  const int height = style_.rowHeight();
  const std::int64_t top = ui::rowTop(static_cast<std::size_t>(pendingRow_), height);
  scroller_.reveal(static_cast<int>(std::min<std::int64_t>(top, ui::kMostContentHeight)), height);
  pendingRow_ = -1;
}

// Drawing.

void FolderList::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.fillRect(rect(), palette.view);
  if (!tree_) return;
  canvas.pushClip(rect());
  const ui::RowRange seen =
      ui::visibleRows(scroller_.offset(), rect().h, style_.rowHeight(), rowCount());
  bool currentSeen = false;
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    paintRow(canvas, row);
    currentSeen = currentSeen || nodeAt(row) == current_;
  }
  canvas.popClip();
  ui::drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
  if (focused() && !currentSeen) canvas.strokeRect(rect(), palette.accent);
}

FolderList::RowPlaces FolderList::placesOf(std::size_t row) const {
  const int height = style_.rowHeight();
  const int sizeColumn = style_.scaled(kSizeColumnWidth);
  const int right = rect().x + rect().w;
  const int bar = scroller_.barWidth();
  const int y = rect().y + ui::rowPlace(ui::rowTop(row, height), scroller_.offset());
  const int mid = y + height / 2;
  const int x0 = rect().x + rows_.rows()[row].depth * style_.scaled(kIndent) + kLeftMargin;
  const int nameX = x0 + kNamePlace;
  const int nameWidth = std::max(kLeastNameWidth, right - nameX - sizeColumn - kNameMargin - bar);
  const int sizeWidth = sizeColumn - kSizeMargin;
  return {{rect().x, y, rect().w, height},
          x0,
          mid,
          {x0 + kSwatchPlace, mid - kSwatchSize / 2, kSwatchSize, kSwatchSize},
          {nameX, y, nameWidth, height},
          {right - bar - sizeWidth, y, sizeWidth, height}};
}

void FolderList::paintRow(ui::Canvas& canvas, std::size_t row) const {
  const ui::Palette& palette = style_.palette();
  const RowPlaces places = placesOf(row);
  const NodeId node = nodeAt(row);
  const bool selected = selection_.contains(node);
  if (selected) {
    canvas.fillRect(places.row, palette.accent);
  } else if (hoveredRow() == row) {
    canvas.fillRect(places.row, style_.hoverVeil());
  }
  const RowColours colours = selected ? RowColours{palette.accentText, palette.accentText}
                                      : RowColours{palette.text, palette.dimText};
  paintTriangle(canvas, places, rows_.rows()[row], colours.rest);
  if (colours_) {
    canvas.fillRect(places.swatch, kOpaque | colours_->colourForKind(tree_->kind(node)));
  }
  paintTexts(canvas, places, node, colours);
  if (focused() && current_ == node) {
    canvas.strokeRect(ui::ringPlace(rowRect(row), selected),
                      selected ? palette.accentText : palette.accent);
  }
}

void FolderList::paintTriangle(ui::Canvas& canvas, const RowPlaces& places, const FolderRow& row,
                               ui::Colour colour) const {
  if (!row.expandable) return;
  for (int i = 0; i < kTriangleLines; ++i) {
    const int reach = kTriangleLines - 1 - i;  // to either side of the middle
    if (row.expanded) {
      const int middle = places.x0 + kTriangleLines - 1;
      const int y = places.mid - 2 + i;
      canvas.line(middle - reach, y, middle + reach, y, colour);
    } else {
      const int x = places.x0 + 2 + i;  // in the middle of what an open one is wide
      canvas.line(x, places.mid - reach, x, places.mid + reach, colour);
    }
  }
}

void FolderList::paintTexts(ui::Canvas& canvas, const RowPlaces& places, NodeId node,
                            const RowColours& colours) const {
  ui::drawText(canvas, places.name, displayName(tree_->name(node)), style_.body(), colours.name);
  ui::drawText(canvas, places.size, formatSize(measureValue(*tree_, node, measure_)), style_.body(),
               colours.rest, ui::Align::Right);
}

// Rows and places.

ui::Rect FolderList::rowRect(std::size_t row) const {
  ui::Rect rect = placesOf(row).row;
  rect.w -= scroller_.barWidth();
  return rect;
}

std::optional<std::size_t> FolderList::rowAt(int x, int y) const {
  if (!rect().contains(x, y) || scroller_.bar().contains(x, y)) return std::nullopt;
  return ui::rowAtOffset(std::int64_t{y} - rect().y + scroller_.offset(), style_.rowHeight(),
                         rowCount());
}

std::optional<NodeId> FolderList::hovered() const {
  const auto row = hoveredRow();
  return row ? std::optional(nodeAt(*row)) : std::nullopt;
}

std::optional<std::size_t> FolderList::hoveredRow() const {
  return pointer_ ? rowAt(pointer_->x, pointer_->y) : std::nullopt;
}

std::optional<std::size_t> FolderList::currentRow() const {
  return current_ ? rows_.find(*current_) : std::nullopt;
}

std::optional<std::size_t> FolderList::parentRow(std::size_t row) const {
  const auto rows = rows_.rows();
  for (std::size_t above = row; above-- > 0;) {
    if (rows[above].depth < rows[row].depth) return above;
  }
  return std::nullopt;
}

bool FolderList::isInView(std::size_t row) const {
  return ui::showsInView(row, scroller_.offset(), rect().h, style_.rowHeight());
}

// The pointer.

void FolderList::press(const ui::MouseEvent& event) {
  const std::optional<NodeId> pressedBefore = std::exchange(pressed_, std::nullopt);
  typeAhead_.forget();
  if (event.button == kPrimaryButton && scroller_.press(event.x, event.y)) {
    changed();
    return;
  }
  const auto row = rowAt(event.x, event.y);
  if (!row) return;
  if (event.button == 3) {
    pressSecondary(*row, event);
  } else if (event.button == kPrimaryButton) {
    const NodeId node = nodeAt(*row);
    pressRow(*row, event);
    if (event.clicks == 2 && pressed_ == node && pressedBefore == node && onActivate) {
      onActivate(node);
    }
  }
}

void FolderList::pressRow(std::size_t row, const ui::MouseEvent& event) {
  const FolderRow pressed = rows_.rows()[row];
  if (pressed.expandable && placesOf(row).isOnTriangle(event.x)) {
    if (pressed.expanded) {
      closeRow(row);
    } else {
      openRow(row);
    }
  } else {
    pickRow(row, event);
  }
  changed();
}

void FolderList::pickRow(std::size_t row, const ui::MouseEvent& event) {
  const NodeId node = nodeAt(row);
  if (event.shift) {
    selectRangeTo(row);
  } else if (event.ctrl) {
    selection_.toggle(node);
    anchor_ = node;
  } else {
    selectOnly(node);
    pressed_ = node;
  }
  current_ = node;
}

void FolderList::pressSecondary(std::size_t row, const ui::MouseEvent& event) {
  const NodeId node = nodeAt(row);
  if (!selection_.contains(node)) selectOnly(node);
  current_ = node;
  changed();
  if (onContextMenu) onContextMenu(node, event.x, event.y);
}

void FolderList::motion(const ui::MouseEvent& event) {
  const int offset = scroller_.offset();
  const auto before = hoveredRow();
  pointer_ = Point{event.x, event.y};
  if (scroller_.drag(event.y)) pointer_.reset();
  if (hoveredRow() != before || scroller_.offset() != offset) changed();
}

void FolderList::release(const ui::MouseEvent& event) {
  if (event.button == kPrimaryButton) scroller_.release();
}

void FolderList::leave() {
  const bool hovered = hoveredRow().has_value();
  pointer_.reset();
  if (hovered) changed();
}

void FolderList::wheel(const ui::MouseEvent& /*event*/, int dy) {
  scrollIfDue();
  scroller_.scrollBy(dy * kWheelRows * style_.rowHeight());
  changed();
}

// Opening and selecting.

void FolderList::openRow(std::size_t row) {
  keepingPendingRow([&] { rows_.open(row); });
}

void FolderList::closeRow(std::size_t row) {
  const NodeId node = nodeAt(row);
  keepingPendingRow([&] { rows_.close(row); });
  if (!currentRow()) current_ = node;
}

void FolderList::selectOnly(NodeId node) {
  selection_.select(node);
  anchor_ = node;
}

/// From the row where the range begins, else from the current one. Where it begins stays.
void FolderList::selectRangeTo(std::size_t row) {
  auto from = anchor_ ? rows_.find(*anchor_) : std::nullopt;
  if (!from) {
    anchor_ = current_;
    from = currentRow();
  }
  const auto [first, last] = std::minmax({row, from.value_or(row)});
  std::vector<NodeId> nodes;
  for (std::size_t i = first; i <= last; ++i) nodes.push_back(nodeAt(i));
  selection_.replace(nodes);
}

void FolderList::selectSiblings(std::size_t row) {
  const auto rows = rows_.rows();
  const std::int32_t depth = rows[row].depth;
  const auto above = parentRow(row);
  std::vector<NodeId> nodes;
  for (std::size_t i = above ? *above + 1 : 0; i < rows.size() && rows[i].depth >= depth; ++i) {
    if (rows[i].depth == depth) nodes.push_back(rows[i].node);
  }
  selection_.replace(nodes);
  changed();
}

// Keys.

bool FolderList::key(const ui::KeyEvent& event) {
  const auto row = currentRow();
  if (!row) return false;
  if (!event.ctrl && typeAhead(event, *row)) return true;
  const bool handled = event.ctrl ? keyWithCtrl(event, *row) : keyOnRow(event, *row);
  if (handled) typeAhead_.forget();
  return handled;
}

bool FolderList::keyWithCtrl(const ui::KeyEvent& event, std::size_t row) {
  const bool isA = event.keysym == 'a' || event.keysym == 'A';  // the latter with Caps Lock
  if (!isA || event.shift) return false;
  selectSiblings(row);
  return true;
}

/// The row that a key which moves through the rows leads to.
std::optional<std::size_t> FolderList::rowAfterKey(unsigned long keysym, std::size_t row) const {
  const auto page = ui::rowsInPage(rect().h, style_.rowHeight());
  const std::size_t last = rowCount() - 1;
  switch (keysym) {
    case ui::key::kUp:
      return row - std::min<std::size_t>(row, 1);
    case ui::key::kDown:
      return std::min(row + 1, last);
    case ui::key::kPageUp:
      return row - std::min(row, page);
    case ui::key::kPageDown:
      return std::min(row + page, last);
    case ui::key::kHome:
      return 0;
    case ui::key::kEnd:
      return last;
    default:
      return std::nullopt;
  }
}

void FolderList::moveTo(std::size_t row, bool extend) {
  const NodeId node = nodeAt(row);
  if (extend) {
    selectRangeTo(row);
  } else {
    selectOnly(node);
  }
  current_ = node;
  scrollToRow(row);
  changed();
}

bool FolderList::keyOnRow(const ui::KeyEvent& event, std::size_t row) {
  const ui::key::Keysym keysym = ui::key::plain(event.keysym);
  if (const auto target = rowAfterKey(keysym, row)) {
    moveTo(*target, event.shift);
    return true;
  }
  switch (keysym) {
    case ui::key::kRight:
      goRight(row, event.shift);
      return true;
    case ui::key::kLeft:
      goLeft(row, event.shift);
      return true;
    case ui::key::kReturn:
      if (onActivate) onActivate(nodeAt(row));
      return true;
    case ui::key::kMenu:
      askForMenuAt(row);
      return true;
    case ui::key::kF10:
      if (event.shift) askForMenuAt(row);
      return event.shift;
    default:
      return false;
  }
}

void FolderList::goRight(std::size_t row, bool extend) {
  const FolderRow folder = rows_.rows()[row];
  if (folder.expanded) {
    if (row + 1 < rowCount()) moveTo(row + 1, extend);
  } else if (folder.expandable) {
    openRow(row);
    scrollToRow(row);
    changed();
  }
}

void FolderList::goLeft(std::size_t row, bool extend) {
  if (rows_.rows()[row].expanded) {
    closeRow(row);
    scrollToRow(row);
    changed();
  } else if (const auto above = parentRow(row)) {
    moveTo(*above, extend);
  }
}

void FolderList::askForMenuAt(std::size_t row) {
  const NodeId node = nodeAt(row);
  if (!selection_.contains(node)) selectOnly(node);
  scrollToRow(row);
  scrollIfDue();
  changed();
  const ui::Rect name = placesOf(row).name;
  if (onContextMenu) onContextMenu(node, name.x, name.y + name.h);
}

/// Goes to the next row whose name begins with what was typed, round the end if need be. The first
/// letter leaves the current row, those that follow may stay.
bool FolderList::typeAhead(const ui::KeyEvent& event, std::size_t row) {
  const std::int64_t nowMs = event.timeMs;
  const std::string text = ui::typedText(event);
  if (!typeAhead_.accepts(text, nowMs)) return false;
  const std::size_t start = typeAhead_.type(text, nowMs) ? row + 1 : row;
  const auto nameOf = [&](std::size_t at) { return tree_->name(nodeAt(at)); };
  if (const auto found = typeAhead_.find(rowCount(), start, nameOf)) moveTo(*found, false);
  return true;
}

}  // namespace app
