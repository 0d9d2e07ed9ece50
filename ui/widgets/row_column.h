#pragma once

#include <cstddef>
#include <optional>

#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/keys.h"
#include "ui/scroller.h"
#include "ui/widgets/row_geometry.h"

namespace ui {

/// A column of rows of one height that scrolls in its view: where its rows are and which one the
/// pointer is over. Knows nothing of what the rows show. Lengths are device pixels.
class RowColumn {
 public:
  /// `rowHeight` is at least 1.
  void setView(const Rect& view, int rowHeight);
  /// Shows `count` rows, from the first on.
  void setCount(std::size_t count);
  std::size_t count() const { return count_; }

  const Rect& view() const { return scroller_.view(); }
  const Scroller& scroller() const { return scroller_; }
  /// The rows to draw.
  RowRange visible() const;
  /// Where a row is, the scroll bar not included; above or below the view when it is out of sight.
  Rect rowRect(std::size_t row) const;
  std::optional<std::size_t> rowAt(int x, int y) const;
  /// Scrolls no further than needed to have all of a row seen.
  void reveal(std::size_t row);
  /// The row that an arrow, Home, End or a page key leads to from `row`; the first from none.
  /// Nothing for other keys and without rows.
  std::optional<std::size_t> rowAfterKey(key::Keysym key, std::optional<std::size_t> row) const;

  /// True when a press was on the scroll bar.
  bool pressBar(int x, int y) { return scroller_.press(x, y); }
  void release() { scroller_.release(); }
  void wheel(int dy);

  // These return whether something looks different now.

  bool motion(int x, int y);
  bool leave();

  std::optional<std::size_t> hovered() const;

 private:
  struct Point {
    int x;
    int y;
  };

  Scroller scroller_;
  int rowHeight_ = 1;
  std::size_t count_ = 0;
  std::optional<Point> pointer_;
};

}  // namespace ui
