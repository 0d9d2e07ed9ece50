#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/keys.h"
#include "ui/scroller.h"
#include "ui/widgets/row_geometry.h"
#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace ui {

/// Rows of one height, one below the other, that scroll. What all lists have in common is here:
/// where their rows are, the row under the pointer, wheel and bar, the ground of rows and the ring
/// that shows where the keyboard is. What a row shows and what a press on it means is up to the
/// list.
///
/// Window thread only. Places and lengths are device pixels of the window.
class RowList : public View {
 public:
  /// `style` outlives the list. Rows are as high as the style's.
  explicit RowList(const Style& style) : RowList(style, style.rowHeight()) {}
  /// `rowHeight` is at least 1.
  RowList(const Style& style, int rowHeight) : style_(style), rowHeight_(rowHeight) {}

  /// Draws rows, bar and ring, but nothing where there is no row.
  void paint(Canvas& canvas) const override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  void wheel(const MouseEvent& event, int dy) override;
  void releasePointer() override;
  /// True when a press was meant for the scroll bar, which has followed it.
  bool pressBar(const MouseEvent& event);

  std::size_t count() const { return count_; }
  /// Where the rows show, the bar included.
  const Rect& view() const { return scroller_.view(); }
  const Scroller& scroller() const { return scroller_; }
  int scrollOffset() const { return scroller_.offset(); }
  /// Where a row is, the bar not included; above or below the view when it is out of sight.
  Rect rowRect(std::size_t row) const;
  std::optional<std::size_t> rowAt(int x, int y) const;
  /// The row under the pointer; none while the pointer holds the bar.
  std::optional<std::size_t> hoveredRow() const;
  /// The row that an arrow, Home, End or a page key leads to from `row`; the first from none.
  /// Nothing for other keys and without rows.
  std::optional<std::size_t> rowAfterKey(key::Keysym key, std::optional<std::size_t> row) const;

 protected:
  const Style& style() const { return style_; }

  /// Draws what is on a row's ground. `place` is its `rowRect`.
  virtual void paintRow(Canvas& canvas, std::size_t row, const Rect& place) const = 0;
  virtual bool isSelected(std::size_t /*row*/) const { return false; }
  /// Whether the keys act on that row.
  virtual bool isCurrent(std::size_t /*row*/) const { return false; }
  /// Draws the ground of a row that is selected or under the pointer.
  virtual void paintGround(Canvas& canvas, std::size_t row, const Rect& place) const;
  /// Draws the ring of a list that has the keyboard: round the current row, or round the view when
  /// that is out of sight.
  virtual void paintRing(Canvas& canvas) const;
  /// The part of the list's place where its rows are.
  virtual Rect rowsPlace() const { return rect(); }
  void layOut() override { scroller_.setView(rowsPlace()); }
  /// Finds out whether the list was scrolled or has more or fewer rows since the last frame. What
  /// the rows tell is up to the list.
  bool bringUpToDate() override;

  /// The rows that show in the view, as far as there are any, and at most two more.
  RowRange visible() const;
  /// A row looks different, with its letters, which may reach into those beside it.
  void rowChanged(std::size_t row);

  // None of these says that something changed.

  /// There are so many rows now. The view stays where it is, as far as there are rows to show.
  void setCount(std::size_t count);
  /// Shows the first row at the top, and lets go of the bar.
  void scrollToTop();
  /// Scrolls no further than needed to have all of a row seen, and as many of the `below` rows that
  /// follow it as there is room for.
  void reveal(std::size_t row, std::size_t below = 0);
  /// Has `change` set other rows, around `kept`, which stays where it is on the screen as far as
  /// the list can scroll. `keyAt(row)` names a row, and `find(key)` finds it among the others.
  template <typename KeyAt, typename Find, typename Change>
  void changeRowsAround(std::optional<std::size_t> kept, KeyAt keyAt, Find find, Change change);

  /// How far below the upper edge of the view a row begins; below 0 above it.
  std::int64_t placeInView(std::size_t row) const;
  /// Scrolls so that a row begins there, as far as the list can scroll.
  void putAt(std::size_t row, std::int64_t placeInView);
  /// Whether `putAt` would get a row there if there were `count` of them.
  bool canPutAt(std::size_t row, std::int64_t placeInView, std::size_t count) const;
  bool isInView(std::size_t row) const;
  /// The first row of those in view that has a property.
  template <typename Property>
  std::optional<std::size_t> firstInView(Property hasIt) const;

 private:
  struct Point {
    int x;
    int y;
  };

  RowRange paintedRows(const Rect& clip) const;
  void groundChanged(std::optional<std::size_t> row);

  const Style& style_;
  const int rowHeight_;
  Scroller scroller_;
  std::size_t count_ = 0;
  // As the last frame shows it.
  int shownOffset_ = 0;
  std::size_t shownCount_ = 0;
  std::optional<Point> pointer_;
};

template <typename KeyAt, typename Find, typename Change>
void RowList::changeRowsAround(std::optional<std::size_t> kept, KeyAt keyAt, Find find,
                               Change change) {
  if (!kept) {
    change();
    return;
  }
  const auto key = keyAt(*kept);
  const std::int64_t place = placeInView(*kept);
  change();
  if (const std::optional<std::size_t> row = find(key)) putAt(*row, place);
}

template <typename Property>
std::optional<std::size_t> RowList::firstInView(Property hasIt) const {
  const RowRange seen = visible();
  for (std::size_t row = seen.first; row < seen.last; ++row) {
    if (isInView(row) && hasIt(row)) return row;
  }
  return std::nullopt;
}

}  // namespace ui
