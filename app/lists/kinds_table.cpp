#include "app/lists/kinds_table.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/text.h"

namespace app {

namespace {

// Device pixels.
constexpr int kTableSwatchPlace = 8;
constexpr int kTableNamePlace = 24;
constexpr int kTableSwatchSize = 9;
constexpr int kMargin = 8;

// At a row height of 22.
constexpr double kFilesWidth = 70;
constexpr double kSizeWidth = 90;
constexpr double kUsualRowHeight = 22;

ui::Rect withRow(const ui::Rect& column, const ui::Rect& row) {
  return {column.x, row.y, column.w, row.h};
}

}  // namespace

KindColumns kindColumns(int left, int right, int rowHeight) {
  const double scale = rowHeight / kUsualRowHeight;
  const int filesWidth = static_cast<int>(std::lround(kFilesWidth * scale));
  const int sizeWidth = static_cast<int>(std::lround(kSizeWidth * scale));
  const int filesX = right - filesWidth - kMargin;
  const int sizeX = filesX - sizeWidth;
  const int nameX = left + kTableNamePlace;
  return {left + kTableSwatchPlace,
          {nameX, 0, sizeX - nameX - kMargin, 0},
          {sizeX, 0, sizeWidth - kMargin, 0},
          {filesX, 0, filesWidth, 0}};
}

// What is shown.

void KindsTable::setRows(std::vector<KindRow> rows) {
  if (rows_.empty()) hold_.restart(style().scaled(PointerHold::kHandSlack));
  const std::size_t currentRow = find(current_).value_or(0);
  const auto kindAt = [this](std::size_t row) { return rows_[row].kind; };
  const auto rowOf = [this](sizewalk::KindIndex kind) { return find(kind); };
  changeRowsAround(rowToKeep(), kindAt, rowOf, [&] {
    rows_ = std::move(rows);
    sortKindRows(rows_, sort_);
    setCount(rows_.size());
  });
  if (rows_.empty()) {
    current_.reset();
  } else if (!find(current_)) {
    current_ = rows_[std::min(currentRow, rows_.size() - 1)].kind;
  }
  if (!find(selected_)) clearSelection();
  needsFrame();
}

KindsTable::ShownRow KindsTable::lookAt(std::size_t row) const {
  return {.row = rows_[row],
          .swatch = colours_ ? colours_->colourForKind(rows_[row].kind) : 0,
          .selected = isSelected(row),
          .current = isCurrent(row)};
}

/// Compares with what was painted: rows change while the tree grows, and their colours when the
/// map's do. There is always a current row, of which the ring goes round the table when it is out
/// of sight.
bool KindsTable::bringUpToDate() {
  const std::vector<ShownRow> before = std::exchange(shownRows_, {});
  for (std::size_t row = 0; row < rows_.size(); ++row) shownRows_.push_back(lookAt(row));
  for (std::size_t row = 0; row < std::min(before.size(), rows_.size()); ++row) {
    if (before[row] == shownRows_[row]) continue;
    if (before[row].current != shownRows_[row].current) changed();
    rowChanged(row);
  }
  return ui::RowList::bringUpToDate();
}

/// At its top the table stays there, so that what is largest comes into sight.
std::optional<std::size_t> KindsTable::rowToKeep() const {
  const auto held = hold_.place() ? hoveredRow() : std::nullopt;
  for (const auto& row : {held, find(selected_)}) {
    if (row && isInView(*row)) return row;
  }
  if (scrollOffset() == 0) return std::nullopt;
  return firstInView([](std::size_t /*row*/) { return true; });
}

ui::Rect KindsTable::rowsPlace() const {
  const int header = style().rowHeight();
  return {rect().x, rect().y + header, rect().w, std::max(0, rect().h - header)};
}

void KindsTable::sortBy(const KindSort& sort) {
  sort_ = sort;
  sortKindRows(rows_, sort_);
  changed();
}

void KindsTable::select(std::optional<sizewalk::KindIndex> kind) {
  if (selected_ == kind) return;
  selected_ = kind;
  changed();
  if (onKindSelected) onKindSelected(kind);
}

void KindsTable::toggle(std::size_t row) {
  const sizewalk::KindIndex kind = rows_[row].kind;
  select(selected_ == kind ? std::nullopt : std::optional(kind));
}

// Drawing.

void KindsTable::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  canvas.fillRect(rect(), palette.view);
  canvas.pushClip(rect());
  paintHeader(canvas);
  ui::RowList::paint(canvas);
  canvas.popClip();
}

void KindsTable::paintHeader(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  const int height = style().rowHeight();
  const ui::Rect header = {rect().x, rect().y, rect().w, height};
  const KindColumns places = columns();
  const auto draw = [&](KindColumn column, const ui::Rect& place, ui::Align align) {
    ui::drawText(canvas, withRow(place, header), kindHeader(column, sort_), style().body(),
                 palette.text, align);
  };
  draw(KindColumn::Kind, places.name, ui::Align::Left);
  draw(KindColumn::Size, places.size, ui::Align::Right);
  draw(KindColumn::Files, places.files, ui::Align::Right);
  canvas.fillRect({rect().x, rect().y + height - 1, rect().w, 1}, palette.border);
}

void KindsTable::paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const {
  const KindRow& kind = rows_[row];
  const KindColumns places = columns();
  if (colours_) {
    canvas.fillRect({places.swatchX, place.y + place.h / 2 - 4, kTableSwatchSize, kTableSwatchSize},
                    ui::kOpaque | colours_->colourForKind(kind.kind));
  }
  const ui::Palette& palette = style().palette();
  const ui::Colour colour = isSelected(row) ? palette.accentText : palette.text;
  const auto draw = [&](const ui::Rect& column, std::string_view text, ui::Align align) {
    ui::drawText(canvas, withRow(column, place), text, style().body(), colour, align);
  };
  draw(places.name, kindRowName(kind.kind), ui::Align::Left);
  draw(places.size, formatSize(signedSize(kind.size)), ui::Align::Right);
  draw(places.files, formatCount(kind.files), ui::Align::Right);
}

// Rows and places.

KindColumns KindsTable::columns() const {
  return kindColumns(rect().x, rect().x + rect().w - scroller().barWidth(), style().rowHeight());
}

std::optional<std::size_t> KindsTable::find(std::optional<sizewalk::KindIndex> kind) const {
  const auto row = std::ranges::find_if(rows_, [&](const KindRow& r) { return r.kind == kind; });
  if (row == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(row - rows_.begin());
}

// The pointer.

void KindsTable::motion(const ui::MouseEvent& event) {
  ui::RowList::motion(event);
  hold_.motion({event.x, event.y}, hoveredRow().has_value());
}

void KindsTable::leave() {
  ui::RowList::leave();
  hold_.leave();
}

void KindsTable::pointerSeen(int x, int y) {
  if (!rect().contains(x, y)) hold_.seenElsewhere();
}

void KindsTable::press(const ui::MouseEvent& event) {
  if (event.button != ui::kPrimaryButton || !rect().contains(event.x, event.y)) return;
  if (event.y < view().y) {
    pressHeader(event.x);
  } else if (const auto row = rowAt(event.x, event.y)) {
    current_ = rows_[*row].kind;
    toggle(*row);
  } else {
    pressBar(event);
  }
}

void KindsTable::pressHeader(int x) {
  const KindColumns places = columns();
  const KindColumn column = x < places.size.x    ? KindColumn::Kind
                            : x < places.files.x ? KindColumn::Size
                                                 : KindColumn::Files;
  sortBy(sort_.afterPress(column));
}

// Keys.

bool KindsTable::key(const ui::KeyEvent& event) {
  const auto row = find(current_);
  if (!row || event.ctrl) return false;
  const ui::key::Keysym keysym = ui::key::plain(event.keysym);
  if (const auto target = rowAfterKey(keysym, row)) {
    moveTo(*target);
    return true;
  }
  if (keysym != ui::key::kReturn && keysym != ' ') return false;
  toggle(*row);
  return true;
}

/// The selected kind, where there is one, moves along.
void KindsTable::moveTo(std::size_t row) {
  current_ = rows_[row].kind;
  reveal(row);
  changed();
  if (selected_) select(current_);
}

}  // namespace app
