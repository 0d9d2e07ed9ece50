#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "ui/geometry.h"

// Where the rows of a list are, all of one height and one below the other. Lengths are device
// pixels, offsets count from the top of the first row. Rows have a height of at least 1.

namespace ui {

/// A run of rows, first inclusive, last exclusive.
struct RowRange {
  std::size_t first = 0;
  std::size_t last = 0;
  friend bool operator==(const RowRange&, const RowRange&) = default;
};

/// Higher than this no list grows, so that adding a view to an offset never overflows. That is 24
/// million rows at the largest scale; those after them are out of reach of the scroll bar.
inline constexpr int kMostContentHeight = std::numeric_limits<int>::max() - (1 << 20);

/// Where row `row` begins, which may lie past all that can be scrolled to.
constexpr std::int64_t rowTop(std::size_t row, int rowHeight) {
  return static_cast<std::int64_t>(row) * rowHeight;
}

/// Height of `count` rows, as a scroller takes it.
constexpr int contentHeight(std::size_t count, int rowHeight) {
  return static_cast<int>(std::min<std::int64_t>(rowTop(count, rowHeight), kMostContentHeight));
}

/// The rows to draw while the view of `viewHeight` begins at `offset`: those that show in it and at
/// most two more.
constexpr RowRange visibleRows(int offset, int viewHeight, int rowHeight, std::size_t count) {
  if (viewHeight < 1) return {};
  const auto first = static_cast<std::size_t>(std::max(0, offset / rowHeight));
  const std::int64_t bottom = std::int64_t{offset} + viewHeight;
  const auto last = static_cast<std::size_t>(std::max<std::int64_t>(0, bottom / rowHeight + 2));
  return {std::min(first, count), std::min(last, count)};
}

/// Where a row that begins at `top` is drawn while the view begins at `offset`, counted from the
/// view's top; somewhere out of sight for rows that are too far away for an int.
constexpr int rowPlace(std::int64_t top, int offset) {
  constexpr std::int64_t kFar = 1 << 30;
  return static_cast<int>(std::clamp(top - offset, -kFar, kFar));
}

/// The ring round the current row: just inside `row`, and one pixel further on a selected row,
/// whose ring may have the colour of what is around the row.
constexpr Rect ringPlace(const Rect& row, bool selected) {
  const int inset = selected ? 1 : 0;
  return {row.x + inset, row.y + inset, row.w - 2 * inset, row.h - 2 * inset};
}

/// True when a part of `row` shows in that view.
constexpr bool showsInView(std::size_t row, int offset, int viewHeight, int rowHeight) {
  const std::int64_t top = rowTop(row, rowHeight) - offset;
  return top + rowHeight > 0 && top < viewHeight;
}

/// The row that lies at `offset`; nothing above the first and below the last.
constexpr std::optional<std::size_t> rowAtOffset(std::int64_t offset, int rowHeight,
                                                 std::size_t count) {
  if (offset < 0) return std::nullopt;
  const auto row = static_cast<std::size_t>(offset / rowHeight);
  return row < count ? std::optional(row) : std::nullopt;
}

/// How many rows Page Up and Page Down move by: a view's worth less one, to keep one in sight.
constexpr std::size_t rowsInPage(int viewHeight, int rowHeight) {
  return static_cast<std::size_t>(std::max(1, viewHeight / rowHeight - 1));
}

}  // namespace ui
