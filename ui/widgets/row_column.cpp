#include "ui/widgets/row_column.h"

#include <algorithm>
#include <cstdint>

namespace ui {

namespace {
constexpr int kWheelRows = 3;
}

void RowColumn::setView(const Rect& view, int rowHeight) {
  rowHeight_ = rowHeight;
  scroller_.setView(view);
  scroller_.setContentHeight(contentHeight(count_, rowHeight_));
}

void RowColumn::setCount(std::size_t count) {
  count_ = count;
  scroller_.release();
  scroller_.setContentHeight(contentHeight(count, rowHeight_));
  scroller_.scrollTo(0);
}

RowRange RowColumn::visible() const {
  return visibleRows(scroller_.offset(), view().h, rowHeight_, count_);
}

Rect RowColumn::rowRect(std::size_t row) const {
  const int y = view().y + rowPlace(rowTop(row, rowHeight_), scroller_.offset());
  return {view().x, y, view().w - scroller_.barWidth(), rowHeight_};
}

std::optional<std::size_t> RowColumn::rowAt(int x, int y) const {
  if (!view().contains(x, y) || scroller_.bar().contains(x, y)) return std::nullopt;
  return rowAtOffset(std::int64_t{y} - view().y + scroller_.offset(), rowHeight_, count_);
}

void RowColumn::reveal(std::size_t row) {
  const std::int64_t top = std::min<std::int64_t>(rowTop(row, rowHeight_), kMostContentHeight);
  scroller_.reveal(static_cast<int>(top), rowHeight_);
}

std::optional<std::size_t> RowColumn::rowAfterKey(key::Keysym key,
                                                  std::optional<std::size_t> row) const {
  if (count_ == 0) return std::nullopt;
  const std::size_t last = count_ - 1;
  const std::size_t page = rowsInPage(view().h, rowHeight_);
  const auto up = [&](std::size_t rows) { return row ? *row - std::min(*row, rows) : 0; };
  const auto down = [&](std::size_t rows) { return row ? std::min(*row + rows, last) : 0; };
  switch (key) {
    case key::kUp:
      return up(1);
    case key::kDown:
      return down(1);
    case key::kPageUp:
      return up(page);
    case key::kPageDown:
      return down(page);
    case key::kHome:
      return 0;
    case key::kEnd:
      return last;
    default:
      return std::nullopt;
  }
}

void RowColumn::wheel(int dy) { scroller_.scrollBy(dy * kWheelRows * rowHeight_); }

bool RowColumn::motion(int x, int y) {
  const int offset = scroller_.offset();
  const auto before = hovered();
  pointer_ = Point{x, y};
  if (scroller_.drag(y)) pointer_.reset();  // whatever it is over, it holds the bar
  return hovered() != before || scroller_.offset() != offset;
}

bool RowColumn::leave() {
  const bool was = hovered().has_value();
  pointer_.reset();
  return was;
}

std::optional<std::size_t> RowColumn::hovered() const {
  return pointer_ ? rowAt(pointer_->x, pointer_->y) : std::nullopt;
}

}  // namespace ui
