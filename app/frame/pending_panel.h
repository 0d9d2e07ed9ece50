#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "app/frame/pending_layout.h"
#include "app/frame/pending_rows.h"
#include "ui/widgets/button_view.h"
#include "ui/widgets/row_geometry.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/style.h"

namespace app {

/// Lists what waits to be deleted: a heading with two buttons, and for each item the ring of its
/// countdown, its name and a button that puts it back. A press belongs to the item that was under
/// the pointer, whatever leaves the list meanwhile. Window thread only.
class PendingPanel : public ui::ButtonView<ui::RowList> {
 public:
  /// The item of that id is to be put back.
  std::function<void(std::uint64_t id)> onUndelete;
  std::function<void()> onUndeleteAll;
  std::function<void()> onDeleteNow;

  /// `style` outlives the panel.
  explicit PendingPanel(const ui::Style& style)
      : ButtonView(style, pendingRowHeight({style.scale(), style.lineHeight()})) {}

  /// The row under the pointer, or the first in view, keeps its place while the panel is scrolled.
  void setRows(std::vector<PendingRow> rows);
  const std::vector<PendingRow>& rows() const { return rows_; }
  /// The height that the rows ask for; 0 without any.
  int wantedHeight() const { return pendingPanelHeight(rows_.size(), scale()); }

  bool takesKeyboard() const override { return true; }
  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  /// Up, Down, Page Up, Page Down, Home and End walk the buttons of the rows, Up from the first row
  /// leads to those of the heading, Left and Right between these. Enter and Space press.
  bool key(const ui::KeyEvent& event) override;

  const PendingLayout& layout() const { return layout_; }
  /// The button of a row.
  ui::Rect undeleteRect(std::size_t row) const;

 protected:
  void layOut() override;
  ui::Rect rowsPlace() const override { return layout_.rows; }
  bool bringUpToDate() override;
  /// A button is that of the item with this id, or one of the heading, below 0.
  Places buttonPlaces() const override;
  void act(Control control) override;
  void pressTaken(Control control) override { current_ = control; }
  void paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  // Of a row only its button is pressed, and that shows its own ring.
  void paintGround(ui::Canvas&, std::size_t, const ui::Rect&) const override {}
  void paintRing(ui::Canvas&) const override {}

 private:
  struct Ring {
    double remaining = -1;
    std::vector<std::uint32_t> pixels;
  };

  PendingScale scale() const { return {style().scale(), style().lineHeight()}; }
  ui::MeasureText measure() const;
  ui::RowRange shownRows() const;
  void drawRing(double remaining, Ring* ring) const;
  std::optional<std::size_t> find(Control control) const;
  void keepCurrent(std::size_t formerRow);
  void goTo(Control control);
  std::optional<Control> controlAfterKey(unsigned long keysym) const;
  void paintHeading(ui::Canvas& canvas) const;
  void paintControl(ui::Canvas& canvas, Control control, const ui::Rect& rect,
                    const char* text) const;

  std::vector<PendingRow> rows_;
  PendingLayout layout_;
  /// What has the ring while the panel has the keyboard.
  Control current_ = 0;
  /// The rings of the rows from `firstRing_` on, as of the last `prepare`. Each is drawn once for
  /// every step of its countdown.
  std::vector<Ring> rings_;
  std::size_t firstRing_ = 0;
};

}  // namespace app
