#include "app/lists/kinds_table.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"
#include "ui/widgets/row_geometry.h"

namespace app {

namespace {

// Device pixels.
constexpr int kSwatchPlace = 8;
constexpr int kNamePlace = 24;
constexpr int kSwatchSize = 9;
constexpr int kMargin = 8;

// At a row height of 22.
constexpr double kFilesWidth = 70;
constexpr double kSizeWidth = 90;
constexpr double kUsualRowHeight = 22;

constexpr int kWheelRows = 3;
constexpr int kPrimaryButton = 1;
constexpr ui::Colour kOpaque = 0xFF000000;

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
  const int nameX = left + kNamePlace;
  return {left + kSwatchPlace,
          {nameX, 0, sizeX - nameX - kMargin, 0},
          {sizeX, 0, sizeWidth - kMargin, 0},
          {filesX, 0, filesWidth, 0}};
}

// What is shown.

void KindsTable::setRows(std::vector<KindRow> rows) {
  const auto kept = rowToKeep();
  const int keptKind = kept ? rows_[*kept].kind : 0;
  const int keptY = kept ? rowRect(*kept).y : 0;
  const std::size_t currentRow = find(current_).value_or(0);
  rows_ = std::move(rows);
  sortKindRows(rows_, sort_);
  scroller_.setContentHeight(ui::contentHeight(rows_.size(), style_.rowHeight()));
  if (const auto row = kept ? find(keptKind) : std::nullopt) {
    scroller_.scrollBy(rowRect(*row).y - keptY);
  }
  if (rows_.empty()) {
    current_.reset();
  } else if (!find(current_)) {
    current_ = rows_[std::min(currentRow, rows_.size() - 1)].kind;
  }
  if (!find(selected_)) clearSelection();
  changed();
}

/// At its top the table stays there, so that what is largest comes into sight.
std::optional<std::size_t> KindsTable::rowToKeep() const {
  for (const auto& row : {hoveredRow(), find(selected_)}) {
    if (row && isInView(*row)) return row;
  }
  if (scroller_.offset() == 0) return std::nullopt;
  return ui::rowAtOffset(scroller_.offset(), style_.rowHeight(), rows_.size());
}

void KindsTable::layOut() {
  const ui::Rect& rect = this->rect();
  const int header = style_.rowHeight();
  scroller_.setView({rect.x, rect.y + header, rect.w, std::max(0, rect.h - header)});
}

void KindsTable::sortBy(const KindSort& sort) {
  sort_ = sort;
  sortKindRows(rows_, sort_);
  changed();
}

void KindsTable::select(std::optional<int> kind) {
  if (selected_ == kind) return;
  selected_ = kind;
  changed();
  if (onKindSelected) onKindSelected(kind);
}

void KindsTable::toggle(std::size_t row) {
  const int kind = rows_[row].kind;
  select(selected_ == kind ? std::nullopt : std::optional(kind));
}

// Drawing.

void KindsTable::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  canvas.fillRect(rect(), palette.view);
  canvas.pushClip(rect());
  paintHeader(canvas);
  canvas.pushClip(scroller_.view());
  const ui::RowRange seen =
      ui::visibleRows(scroller_.offset(), scroller_.view().h, style_.rowHeight(), rows_.size());
  bool currentSeen = false;
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    paintRow(canvas, row);
    currentSeen = currentSeen || rows_[row].kind == current_;
  }
  canvas.popClip();
  ui::drawScrollBar(canvas, scroller_, palette.raised, palette.dimText);
  if (focused() && !currentSeen) canvas.strokeRect(scroller_.view(), palette.accent);
  canvas.popClip();
}

void KindsTable::paintHeader(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  const int height = style_.rowHeight();
  const ui::Rect header = {rect().x, rect().y, rect().w, height};
  const KindColumns places = columns();
  const auto draw = [&](KindColumn column, const ui::Rect& place, ui::Align align) {
    ui::drawText(canvas, withRow(place, header), kindHeader(column, sort_), style_.body(),
                 palette.text, align);
  };
  draw(KindColumn::Kind, places.name, ui::Align::Left);
  draw(KindColumn::Size, places.size, ui::Align::Right);
  draw(KindColumn::Files, places.files, ui::Align::Right);
  canvas.fillRect({rect().x, rect().y + height - 1, rect().w, 1}, palette.border);
}

void KindsTable::paintRow(ui::Canvas& canvas, std::size_t row) const {
  const ui::Palette& palette = style_.palette();
  const KindRow& kind = rows_[row];
  const ui::Rect place = rowRect(row);
  const ui::Rect whole = {place.x, place.y, rect().w, place.h};
  const bool selected = selected_ == kind.kind;
  if (selected) {
    canvas.fillRect(whole, palette.accent);
  } else if (hoveredRow() == row) {
    canvas.fillRect(whole, style_.hoverVeil());
  }
  const KindColumns places = columns();
  if (colours_) {
    canvas.fillRect({places.swatchX, place.y + place.h / 2 - 4, kSwatchSize, kSwatchSize},
                    kOpaque | colours_->colourForKind(kind.kind));
  }
  const ui::Colour colour = selected ? palette.accentText : palette.text;
  const auto draw = [&](const ui::Rect& column, std::string_view text, ui::Align align) {
    ui::drawText(canvas, withRow(column, place), text, style_.body(), colour, align);
  };
  draw(places.name, kindRowName(kind.kind), ui::Align::Left);
  draw(places.size, formatSize(signedSize(kind.size)), ui::Align::Right);
  draw(places.files, formatCount(kind.files), ui::Align::Right);
  if (focused() && current_ == kind.kind) {
    canvas.strokeRect(ui::ringPlace(place, selected),
                      selected ? palette.accentText : palette.accent);
  }
}

// Rows and places.

KindColumns KindsTable::columns() const {
  return kindColumns(rect().x, rect().x + rect().w - scroller_.barWidth(), style_.rowHeight());
}

ui::Rect KindsTable::rowRect(std::size_t row) const {
  const int height = style_.rowHeight();
  const int y = scroller_.view().y + ui::rowPlace(ui::rowTop(row, height), scroller_.offset());
  return {rect().x, y, rect().w - scroller_.barWidth(), height};
}

std::optional<std::size_t> KindsTable::rowAt(int x, int y) const {
  const ui::Rect& body = scroller_.view();
  if (!body.contains(x, y) || scroller_.bar().contains(x, y)) return std::nullopt;
  return ui::rowAtOffset(std::int64_t{y} - body.y + scroller_.offset(), style_.rowHeight(),
                         rows_.size());
}

std::optional<std::size_t> KindsTable::hoveredRow() const {
  return pointer_ ? rowAt(pointer_->x, pointer_->y) : std::nullopt;
}

std::optional<std::size_t> KindsTable::find(std::optional<int> kind) const {
  const auto row = std::ranges::find_if(rows_, [&](const KindRow& r) { return r.kind == kind; });
  if (row == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(row - rows_.begin());
}

bool KindsTable::isInView(std::size_t row) const {
  return ui::showsInView(row, scroller_.offset(), scroller_.view().h, style_.rowHeight());
}

// The pointer.

void KindsTable::press(const ui::MouseEvent& event) {
  if (event.button != kPrimaryButton || !rect().contains(event.x, event.y)) return;
  if (event.y < scroller_.view().y) {
    pressHeader(event.x);
  } else if (scroller_.press(event.x, event.y)) {
    changed();
  } else if (const auto row = rowAt(event.x, event.y)) {
    current_ = rows_[*row].kind;
    toggle(*row);
  }
}

void KindsTable::pressHeader(int x) {
  const KindColumns places = columns();
  const KindColumn column = x < places.size.x    ? KindColumn::Kind
                            : x < places.files.x ? KindColumn::Size
                                                 : KindColumn::Files;
  sortBy(sort_.afterPress(column));
}

void KindsTable::motion(const ui::MouseEvent& event) {
  const int offset = scroller_.offset();
  const auto before = hoveredRow();
  pointer_ = Point{event.x, event.y};
  if (scroller_.drag(event.y)) pointer_.reset();
  if (hoveredRow() != before || scroller_.offset() != offset) changed();
}

void KindsTable::release(const ui::MouseEvent& event) {
  if (event.button == kPrimaryButton) scroller_.release();
}

void KindsTable::leave() {
  const bool hovered = hoveredRow().has_value();
  pointer_.reset();
  if (hovered) changed();
}

void KindsTable::wheel(const ui::MouseEvent& /*event*/, int dy) {
  scroller_.scrollBy(dy * kWheelRows * style_.rowHeight());
  changed();
}

// Keys.

bool KindsTable::key(const ui::KeyEvent& event) {
  const auto row = find(current_);
  if (!row || event.ctrl) return false;
  const std::size_t page = ui::rowsInPage(scroller_.view().h, style_.rowHeight());
  const std::size_t last = rows_.size() - 1;
  switch (ui::key::plain(event.keysym)) {
    case ui::key::kUp:
      moveTo(*row - std::min<std::size_t>(*row, 1));
      return true;
    case ui::key::kDown:
      moveTo(std::min(*row + 1, last));
      return true;
    case ui::key::kPageUp:
      moveTo(*row - std::min(*row, page));
      return true;
    case ui::key::kPageDown:
      moveTo(std::min(*row + page, last));
      return true;
    case ui::key::kHome:
      moveTo(0);
      return true;
    case ui::key::kEnd:
      moveTo(last);
      return true;
    case ui::key::kReturn:
    case ' ':
      toggle(*row);
      return true;
    default:
      return false;
  }
}

/// The selected kind, where there is one, moves along.
void KindsTable::moveTo(std::size_t row) {
  current_ = rows_[row].kind;
  const int height = style_.rowHeight();
  scroller_.reveal(static_cast<int>(ui::rowTop(row, height)), height);
  changed();
  if (selected_) select(current_);
}

}  // namespace app
