#include "app/lists/folder_list.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "app/model/format.h"
#include "ui/keys.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

namespace {
/// Enough to see what kind of things a folder holds.
/// A folder with more is opened by the user alone: that takes a moment, and so does every look at
/// it.
constexpr std::size_t kMostOpenedUnasked = 10'000;
constexpr std::size_t kRowsToSee = 5;
}  // namespace

FolderList::FolderList(const ui::Style& style, const KindColours* colours, Selection& selection)
    : ui::RowList(style), colours_(colours), selection_(selection) {}

// What is shown.

void FolderList::show(const sizewalk::FileTree* tree) {
  tree_ = tree;
  rows_.show(tree);
  countRows();
  scrollToTop();
  cursor_.reset();
  if (count() > 0) cursor_.setCurrent(kRootNode);
  mapFocus_.reset();
  pending_.reset();
  pressed_.reset();
  hold_.restart(style().scaled(PointerHold::kHandSlack));
  orderWaits_ = orderDue_ = false;
  returning_ = {};
  takenOver_ = false;
  top_.reset();
  changed();
}

void FolderList::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  changeRows([&] { rows_.setMeasure(measure); });
}

void FolderList::setMapFocus(NodeId folder) {
  if (mapFocus_ == folder) return;
  mapFocus_ = folder;
  needsFrame();
}

void FolderList::refresh() {
  const auto held = heldRow();
  if (held && !orderDue_ && refreshAround(*held)) return;
  changeRows([this] { rows_.refresh(); });
}

bool FolderList::refreshAround(std::size_t held) {
  if (!rows_.leadsTo(nodeAt(held))) return false;
  std::vector<FolderRow> rows = rows_.look();
  const auto found = std::ranges::find(rows, nodeAt(held), &FolderRow::node);
  const auto row = static_cast<std::size_t>(found - rows.begin());
  const bool stays = canPutAt(row, placeInView(held), rows.size());
  if (!stays && (growing_ || !showsOthers(rows)) && rows_.refreshInPlace()) {
    orderWaits_ = true;
    needsFrame();
  } else {
    changeRows([&] { rows_.take(std::move(rows)); });
  }
  return true;
}

bool FolderList::showsOthers(const std::vector<FolderRow>& rows) const {
  const auto nodes = [](std::span<const FolderRow> of) {
    std::vector<NodeId> sorted;
    std::ranges::transform(of, std::back_inserter(sorted), &FolderRow::node);
    std::ranges::sort(sorted);
    return sorted;
  };
  return rows.size() != count() || nodes(rows) != nodes(rows_.rows());
}

std::optional<std::size_t> FolderList::heldRow() const {
  const auto& place = hold_.place();
  return place ? rowAt(place->x, place->y) : std::nullopt;
}

// Where the user was in a scan that is made again.

ListPlace FolderList::place() const {
  ListPlace place;
  const auto& open = rows_.openFolders();
  place.open.assign(open.begin(), open.end());
  place.current = cursor_.current();
  if (const auto top = firstInView([](std::size_t) { return true; })) {
    place.top = nodeAt(*top);
    place.topAt = placeInView(*top);
  }
  return place;
}

void FolderList::beginReturn() {
  rows_.closeAll();
  returning_ = {.openRows = true, .currentRow = true, .scroll = true};
  takenOver_ = false;
  top_.reset();
}

void FolderList::returnTo(const ListPlace& place) {
  if (returning_.openRows) rows_.open(place.open);
  if (returning_.currentRow && place.current) cursor_.setCurrent(*place.current);
  if (!returning_.scroll) return;
  top_ = place.top;
  topAt_ = place.topAt;
}

void FolderList::changeRows(const std::function<void()>& change) {
  const auto keyAt = [this](std::size_t row) { return nodeAt(row); };
  const auto find = [this](NodeId node) { return rows_.find(node); };
  const auto remains = [this](NodeId node) { return rows_.leadsTo(node); };
  orderWaits_ = orderDue_ = false;
  const auto kept = rowToKeep();
  if (const auto row = currentRow()) cursor_.handOn(*row, count(), keyAt, remains);
  changeRowsAround(kept, keyAt, find, [&] {
    change();
    countRows();
  });
  if (!currentRow()) cursor_.setCurrent(count() > 0 ? std::optional(kRootNode) : std::nullopt);
  goHome();
  needsFrame();
}

void FolderList::takeOver() {
  returning_.scroll = false;
  takenOver_ = true;
}

void FolderList::goHome() {
  if (takenOver_ || hold_.onList()) return;
  if (top_) {
    if (const auto top = rows_.find(*top_)) putAt(*top, topAt_);
  } else if (!returning_.scroll) {
    scrollToTop();
  }
}

/// Of the rows that the user may be looking at, the first that will still be there.
std::optional<std::size_t> FolderList::rowToKeep() const {
  const auto remains = [this](std::size_t row) { return rows_.leadsTo(nodeAt(row)); };
  for (const auto& row : {heldRow(), currentRow()}) {
    if (row && isInView(*row) && remains(*row)) return row;
  }
  const auto selected =
      firstInView([&](std::size_t row) { return isSelected(row) && remains(row); });
  return selected ? selected : firstInView(remains);
}

void FolderList::revealNode(NodeId node) {
  std::optional<std::size_t> row;
  const bool stale = orderWaits_;
  changeRows([&] {
    if (stale) rows_.refresh();
    row = rows_.reveal(node);
  });
  if (!row) return;
  cursor_.setCurrent(node);
  returning_.currentRow = false;
  takeOver();
  // What is shown without having been picked begins no range.
  if (selection_.contains(node)) cursor_.setAnchor(node);
  scrollToRow(*row);
}

void FolderList::revealFolder(NodeId folder) {
  revealNode(folder);
  pendingContent_ = pending_ == folder;
  const auto row = pendingContent_ ? rows_.find(folder) : std::nullopt;
  if (!row) return;
  const FolderRow& shown = rows_.rows()[*row];
  const bool large = tree_->children(folder).size() > kMostOpenedUnasked;
  if (shown.expandable && !shown.expanded && !large) openRow(*row);
}

void FolderList::scrollToRow(std::size_t row) {
  if (row >= count()) return;
  pending_ = nodeAt(row);
  pendingContent_ = false;
}

std::size_t FolderList::rowsToSeeBelow(std::size_t row) const {
  const auto below = rows_.rows().subspan(row + 1);
  const auto end = std::ranges::find_if(
      below.first(std::min(below.size(), kRowsToSee)),
      [depth = rows_.rows()[row].depth](const FolderRow& next) { return next.depth <= depth; });
  return static_cast<std::size_t>(end - below.begin());
}

std::ptrdiff_t FolderList::pendingRow() const {
  const auto row = pending_ ? rows_.find(*pending_) : std::nullopt;
  return row ? static_cast<std::ptrdiff_t>(*row) : -1;
}

bool FolderList::bringUpToDate() {
  if (orderDue_) refresh();
  scrollIfDue();
  lookAtRowsInView();
  return ui::RowList::bringUpToDate();
}

FolderList::ShownRow FolderList::lookAt(std::size_t row) const {
  const NodeId node = nodeAt(row);
  ShownRow shown = {.row = rows_.rows()[row],
                    .size = measureValue(*tree_, node, measure_),
                    .swatch = {},
                    .selected = isSelected(row),
                    .inFocus = node == mapFocus_,
                    .current = isCurrent(row)};
  if (colours_) shown.swatch = ui::kOpaque | colours_->colourForKind(tree_->kind(node));
  return shown;
}

/// Compares with what was painted, so that nothing that changes in between can be forgotten.
void FolderList::lookAtRowsInView() {
  const ui::RowRange seen = visible();
  const std::vector<ShownRow> before = std::exchange(shownRows_, {});
  firstShown_ = seen.first;
  for (std::size_t row = seen.first; row < seen.last; ++row) shownRows_.push_back(lookAt(row));
  // Without a current row in view the ring is round the whole list.
  const bool ringStays = std::ranges::any_of(before, &ShownRow::current) ==
                         std::ranges::any_of(shownRows_, &ShownRow::current);
  if (!ringStays || before.size() != shownRows_.size()) return changed();
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] != shownRows_[i]) rowChanged(firstShown_ + i);
  }
}

void FolderList::scrollIfDue() {
  if (!pending_ || rect().empty()) return;
  const auto row = rows_.find(*std::exchange(pending_, std::nullopt));
  if (row) reveal(*row, pendingContent_ ? rowsToSeeBelow(*row) : 0);
}

// Drawing.

void FolderList::paint(ui::Canvas& canvas) const {
  canvas.fillRect(rect(), style().palette().view);
  if (tree_) ui::RowList::paint(canvas);
}

void FolderList::paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& /*place*/) const {
  if (row < firstShown_ || row - firstShown_ >= shownRows_.size()) return;
  const ShownRow& shown = shownRows_[row - firstShown_];
  const std::string name = displayName(tree_->name(shown.row.node));
  const std::string size = formatSize(shown.size);
  paintFolderRow(canvas, style(), placesOf(row),
                 {.row = shown.row,
                  .swatch = shown.swatch,
                  .name = name,
                  .size = size,
                  .selected = shown.selected,
                  .inFocus = shown.inFocus});
}

// Rows and places.

FolderRowPlaces FolderList::placesOf(std::size_t row) const {
  return folderRowPlaces(style(), rowRect(row), rows_.rows()[row].depth);
}

std::optional<NodeId> FolderList::hovered() const {
  const auto row = hoveredRow();
  return row ? std::optional(nodeAt(*row)) : std::nullopt;
}

std::optional<std::size_t> FolderList::currentRow() const {
  return cursor_.current() ? rows_.find(*cursor_.current()) : std::nullopt;
}

std::optional<std::size_t> FolderList::parentRow(std::size_t row) const {
  const auto rows = rows_.rows();
  for (std::size_t above = row; above-- > 0;) {
    if (rows[above].depth < rows[row].depth) return above;
  }
  return std::nullopt;
}

// The pointer.

void FolderList::motion(const ui::MouseEvent& event) {
  const auto before = heldRow();
  ui::RowList::motion(event);
  const auto row = hoveredRow();
  hold_.motion({event.x, event.y}, row.has_value());
  if (row != before) endWait();
}

void FolderList::leave() {
  ui::RowList::leave();
  if (hold_.leave()) letGoOfRow();
}

void FolderList::pointerSeen(int x, int y) {
  if (!rect().contains(x, y) && hold_.seenElsewhere()) letGoOfRow();
}

void FolderList::letGoOfRow() {
  endWait();
  const int offset = scrollOffset();
  goHome();
  if (scrollOffset() != offset) changed();
}

void FolderList::endWait() {
  if (!orderWaits_) return;
  orderDue_ = true;
  changed();
}

void FolderList::press(const ui::MouseEvent& event) {
  returning_.currentRow = false;
  takeOver();
  const std::optional<NodeId> pressedBefore = std::exchange(pressed_, std::nullopt);
  forgetTyped();
  if (pressBar(event)) return;
  const auto row = rowAt(event.x, event.y);
  // The row under the pointer may be pressed twice.
  if (row != heldRow()) endWait();
  if (!row) return;
  if (event.button == ui::kSecondaryButton) {
    pressSecondary(*row, event);
  } else if (event.button == ui::kPrimaryButton) {
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
    cursor_.setAnchor(node);
  } else {
    selectOnly(node);
    pressed_ = node;
  }
  cursor_.setCurrent(node);
}

void FolderList::pressSecondary(std::size_t row, const ui::MouseEvent& event) {
  const NodeId node = nodeAt(row);
  if (!selection_.contains(node)) selectOnly(node);
  cursor_.setCurrent(node);
  changed();
  if (onContextMenu) onContextMenu(node, event.x, event.y, Command::By::Pointer);
}

void FolderList::wheel(const ui::MouseEvent& event, int dy) {
  takeOver();
  scrollIfDue();
  ui::RowList::wheel(event, dy);
  endWait();
}

// Opening and selecting.

void FolderList::openRow(std::size_t row) {
  takeOver();
  rows_.open(row);
  countRows();
}

void FolderList::closeRow(std::size_t row) {
  takeOver();
  const NodeId node = nodeAt(row);
  rows_.close(row);
  countRows();
  if (!currentRow()) cursor_.setCurrent(node);
  if (onClosed) onClosed(node);
}

void FolderList::selectOnly(NodeId node) {
  selection_.select(node);
  cursor_.setAnchor(node);
}

void FolderList::selectRangeTo(std::size_t row) {
  const auto range = cursor_.rangeTo(row, [this](NodeId node) { return rows_.find(node); });
  std::vector<NodeId> nodes;
  for (std::size_t i = range.first; i < range.last; ++i) nodes.push_back(nodeAt(i));
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
  const auto row = rowForKey();
  if (!row) return false;
  if (typeAhead(event, *row)) return true;
  const bool handled = event.ctrl ? keyWithCtrl(event, *row) : keyOnRow(event, *row);
  if (handled) forgetTyped();
  return handled;
}

bool FolderList::keyFromElsewhere(const ui::KeyEvent& event) {
  const auto row = rowForKey();
  return row && (typeAhead(event, *row) || askForMenu(event, *row));
}

std::optional<std::size_t> FolderList::rowForKey() {
  if (orderWaits_ && !currentRow()) changeRows([this] { rows_.refresh(); });
  return currentRow();
}

bool FolderList::keyWithCtrl(const ui::KeyEvent& event, std::size_t row) {
  const bool isA = event.keysym == 'a' || event.keysym == 'A';  // the latter with Caps Lock
  if (!isA || event.shift) return false;
  selectSiblings(row);
  endWait();
  return true;
}

void FolderList::moveTo(std::size_t row, bool extend) {
  const NodeId node = nodeAt(row);
  returning_.currentRow = false;
  takeOver();
  if (extend) {
    selectRangeTo(row);
  } else {
    selectOnly(node);
  }
  cursor_.setCurrent(node);
  scrollToRow(row);
  endWait();
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
    default:
      return askForMenu(event, row);
  }
}

void FolderList::goRight(std::size_t row, bool extend) {
  const FolderRow folder = rows_.rows()[row];
  if (folder.expanded) {
    if (row + 1 < count()) moveTo(row + 1, extend);
  } else if (folder.expandable) {
    openRow(row);
    scrollToRow(row);
    endWait();
    changed();
  }
}

void FolderList::goLeft(std::size_t row, bool extend) {
  if (rows_.rows()[row].expanded) {
    closeRow(row);
    scrollToRow(row);
    endWait();
    changed();
  } else if (const auto above = parentRow(row)) {
    moveTo(*above, extend);
  }
}

bool FolderList::askForMenu(const ui::KeyEvent& event, std::size_t row) {
  const ui::key::Keysym keysym = ui::key::plain(event.keysym);
  if (keysym != ui::key::kMenu && !(keysym == ui::key::kF10 && event.shift)) return false;
  const NodeId node = nodeAt(row);
  if (!selection_.contains(node)) selectOnly(node);
  scrollToRow(row);
  scrollIfDue();
  changed();
  const ui::Rect name = placesOf(row).name;
  if (onContextMenu) onContextMenu(node, name.x, name.y + name.h, Command::By::Key);
  return true;
}

bool FolderList::typeAhead(const ui::KeyEvent& event, std::size_t row) {
  const auto nameAt = [this](std::size_t at) { return tree_->name(nodeAt(at)); };
  const auto search = cursor_.type(event, count(), row, nameAt);
  if (search.row) moveTo(*search.row, false);
  if (search.taken) changed();
  return search.taken;
}

void FolderList::forgetTyped() {
  if (!typed().empty()) changed();
  cursor_.forgetTyped();
}

void FolderList::tick(std::int64_t nowMs) {
  if (cursor_.forgetOldTyped(nowMs)) changed();
}

}  // namespace app
