#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "app/lists/pointer_hold.h"
#include "app/model/kind_colours.h"
#include "app/model/kind_rows.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/style.h"

namespace app {

/// Where the columns of the kinds table are, in device pixels of the window.
struct KindColumns {
  int swatchX = 0;
  /// All are 0 high; a row or the header takes its own height.
  ui::Rect name;
  ui::Rect size;
  ui::Rect files;
};

/// The columns of a table that reaches from `left` to `right`, its scroll bar not included.
KindColumns kindColumns(int left, int right, int rowHeight);

/// The table of file kinds: a header that sorts, and a row for each kind with its colour, name,
/// size and number of files. Pressing a row selects its kind, which the map then highlights.
///
/// Beside the selected kind there is a current row, which the keys move; it shows while the table
/// has the keyboard. Both are held by kind: new results change nothing in them, and what the user
/// looks at keeps its place on the screen.
///
/// Window thread only. Places and lengths are device pixels of the window.
class KindsTable : public ui::RowList {
 public:
  /// Another kind is selected now, or none.
  std::function<void(std::optional<sizewalk::KindIndex>)> onKindSelected;

  /// Both outlive the table. Without `colours` rows have no swatches.
  KindsTable(const ui::Style& style, const KindColours* colours)
      : ui::RowList(style), colours_(colours) {}

  /// Shows `rows`, which come in any order. Of those that remain, the one under a pointer that has
  /// moved in the table since there were none stays where it is on the screen; else the selected
  /// one if it is in view; else the topmost one, unless that is the first of all. A selected kind
  /// of which there is no file any more is selected no longer.
  void setRows(std::vector<KindRow> rows);
  /// Selects no kind.
  void clearSelection() { select(std::nullopt); }

  bool takesKeyboard() const override { return true; }
  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void leave() override;
  void pointerSeen(int x, int y) override;
  bool key(const ui::KeyEvent& event) override;

  const std::vector<KindRow>& rows() const { return rows_; }
  const KindSort& sort() const { return sort_; }
  std::optional<sizewalk::KindIndex> selectedKind() const { return selected_; }
  /// Nothing while there are no rows.
  std::optional<sizewalk::KindIndex> currentKind() const { return current_; }
  KindColumns columns() const;

 protected:
  bool bringUpToDate() override;
  void paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  bool isSelected(std::size_t row) const override { return rows_[row].kind == selected_; }
  bool isCurrent(std::size_t row) const override { return rows_[row].kind == current_; }
  /// Below the header.
  ui::Rect rowsPlace() const override;

 private:
  /// What a row looks like, but for its place.
  struct ShownRow {
    KindRow row;
    std::uint32_t swatch = 0;
    bool selected = false;
    bool current = false;
    friend bool operator==(const ShownRow&, const ShownRow&) = default;
  };

  ShownRow lookAt(std::size_t row) const;
  void paintHeader(ui::Canvas& canvas) const;
  std::optional<std::size_t> find(std::optional<sizewalk::KindIndex> kind) const;
  /// Which row `setRows` leaves where it is on the screen.
  std::optional<std::size_t> rowToKeep() const;
  void pressHeader(int x);
  void sortBy(const KindSort& sort);
  void select(std::optional<sizewalk::KindIndex> kind);
  void toggle(std::size_t row);
  void moveTo(std::size_t row);

  const KindColours* colours_;
  std::vector<KindRow> rows_;
  KindSort sort_;
  PointerHold hold_;
  std::optional<sizewalk::KindIndex> selected_;
  std::optional<sizewalk::KindIndex> current_;
  /// All rows, as of the last `prepare`.
  std::vector<ShownRow> shownRows_;
};

}  // namespace app
