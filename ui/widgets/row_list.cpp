#include "ui/widgets/row_list.h"

#include <algorithm>
#include <utility>

#include "ui/scroll_bar.h"

namespace ui {

namespace {
constexpr int kWheelRows = 3;
}  // namespace

// Rows and places.

void RowList::setCount(std::size_t count) {
  count_ = count;
  scroller_.setContentHeight(contentHeight(count, rowHeight_));
}

void RowList::scrollToTop() {
  scroller_.release();
  scroller_.scrollTo(0);
}

void RowList::reveal(std::size_t row, std::size_t below) {
  const std::int64_t top = std::min<std::int64_t>(rowTop(row, rowHeight_), kMostContentHeight);
  const auto room = static_cast<std::size_t>(std::max(1, view().h / rowHeight_));
  scroller_.reveal(static_cast<int>(top), static_cast<int>(std::min(below + 1, room)) * rowHeight_);
}

std::int64_t RowList::placeInView(std::size_t row) const {
  return rowTop(row, rowHeight_) - scroller_.offset();
}

void RowList::putAt(std::size_t row, std::int64_t placeInView) {
  const std::int64_t offset = rowTop(row, rowHeight_) - placeInView;
  scroller_.scrollTo(static_cast<int>(std::clamp<std::int64_t>(offset, 0, kMostContentHeight)));
}

bool RowList::canPutAt(std::size_t row, std::int64_t placeInView, std::size_t count) const {
  const std::int64_t offset = rowTop(row, rowHeight_) - placeInView;
  return offset >= 0 && offset <= std::max(0, contentHeight(count, rowHeight_) - view().h);
}

RowRange RowList::visible() const {
  return visibleRows(scroller_.offset(), view().h, rowHeight_, count_);
}

bool RowList::isInView(std::size_t row) const {
  return showsInView(row, scroller_.offset(), view().h, rowHeight_);
}

Rect RowList::rowRect(std::size_t row) const {
  const int y = view().y + rowPlace(rowTop(row, rowHeight_), scroller_.offset());
  return {view().x, y, view().w - scroller_.barWidth(), rowHeight_};
}

std::optional<std::size_t> RowList::rowAt(int x, int y) const {
  if (!view().contains(x, y) || scroller_.bar().contains(x, y)) return std::nullopt;
  return rowAtOffset(std::int64_t{y} - view().y + scroller_.offset(), rowHeight_, count_);
}

std::optional<std::size_t> RowList::hoveredRow() const {
  return pointer_ ? rowAt(pointer_->x, pointer_->y) : std::nullopt;
}

bool RowList::bringUpToDate() {
  const int offset = std::exchange(shownOffset_, scroller_.offset());
  const std::size_t count = std::exchange(shownCount_, count_);
  if (offset != shownOffset_ || count != shownCount_) changed();
  return false;
}

// Drawing.

void RowList::paint(Canvas& canvas) const {
  canvas.pushClip(view());
  const RowRange painted = paintedRows(canvas.clip());
  for (std::size_t row = painted.first; row < painted.last; ++row) {
    const Rect place = rowRect(row);
    paintGround(canvas, row, place);
    paintRow(canvas, row, place);
  }
  drawScrollBar(canvas, scroller_, style_.palette().raised, style_.palette().dimText);
  if (focused() && canvas.showsRings()) paintRing(canvas);
  canvas.popClip();
}

/// Of the rows in view those that may show in the clip. The letters of a row may reach into those
/// beside it.
RowRange RowList::paintedRows(const Rect& clip) const {
  const RowRange seen = visible();
  const auto isAbove = [&](std::size_t row) {
    const Rect place = rowRect(row);
    return std::int64_t{place.y} + 2 * place.h <= clip.y;
  };
  const auto isBelow = [&](std::size_t row) {
    const Rect place = rowRect(row);
    return std::int64_t{place.y} - place.h >= std::int64_t{clip.y} + clip.h;
  };
  RowRange painted = seen;
  while (painted.first < painted.last && isAbove(painted.first)) ++painted.first;
  while (painted.first < painted.last && isBelow(painted.last - 1)) --painted.last;
  return painted;
}

void RowList::paintGround(Canvas& canvas, std::size_t row, const Rect& place) const {
  if (isSelected(row)) {
    canvas.fillRect(place, style_.palette().accent);
  } else if (hoveredRow() == row) {
    canvas.fillRect(place, style_.hoverVeil());
  }
}

void RowList::paintRing(Canvas& canvas) const {
  const Palette& palette = style_.palette();
  const auto current = firstInView([this](std::size_t row) { return isCurrent(row); });
  if (!current) {
    canvas.strokeRect(view(), palette.accent);
    return;
  }
  const bool selected = isSelected(*current);
  canvas.strokeRect(ringPlace(rowRect(*current), selected),
                    selected ? palette.accentText : palette.accent);
}

// The pointer.

bool RowList::pressBar(const MouseEvent& event) {
  if (event.button != kPrimaryButton || !scroller_.press(event.x, event.y)) return false;
  changed();
  return true;
}

void RowList::motion(const MouseEvent& event) {
  const int offset = scroller_.offset();
  const auto before = hoveredRow();
  pointer_ = Point{event.x, event.y};
  if (scroller_.drag(event.y)) pointer_.reset();  // whatever it is over, it holds the bar
  if (scroller_.offset() != offset) return changed();
  const auto now = hoveredRow();
  if (now == before) return;
  groundChanged(before);
  groundChanged(now);
}

void RowList::groundChanged(std::optional<std::size_t> row) {
  if (row) changed(intersect(rowRect(*row), view()));
}

void RowList::release(const MouseEvent& event) {
  if (event.button == kPrimaryButton) scroller_.release();
}

void RowList::rowChanged(std::size_t row) {
  const Rect place = rowRect(row);
  changed(intersect({place.x, place.y - place.h, place.w, 3 * place.h}, view()));
}

void RowList::leave() {
  const auto before = hoveredRow();
  pointer_.reset();
  groundChanged(before);
}

void RowList::releasePointer() {
  scroller_.release();
  leave();
}

void RowList::wheel(const MouseEvent& /*event*/, int dy) {
  scroller_.scrollBy(dy * kWheelRows * rowHeight_);
  changed();
}

// Keys.

std::optional<std::size_t> RowList::rowAfterKey(key::Keysym key,
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

}  // namespace ui
