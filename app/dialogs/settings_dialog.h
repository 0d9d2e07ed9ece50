#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "app/dialogs/settings_rows.h"
#include "ui/connection.h"
#include "ui/paragraph.h"
#include "ui/scroller.h"
#include "ui/widgets/dialog.h"

namespace app {

/// The settings, a row with a switch for each. A press on a row, or Space on the one that has the
/// keyboard, flips its setting at once. Rows that the panel has no room for are scrolled to; the
/// heading and the buttons stay.
class SettingsDialog : public ui::Dialog {
 public:
  /// A setting was flipped, or all were reset.
  std::function<void()> onSettingsChanged;

  /// `connection` and `store` outlive the dialog.
  SettingsDialog(ui::Connection& connection, const ui::Style& style, SettingsStore& store);

  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void leave() override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  /// Up and Down walk the rows and then the buttons, Home and End go to the first and the last row.
  /// Enter on a row is Done.
  bool key(const ui::KeyEvent& event) override;

  const std::vector<SettingsRow>& rows() const { return rows_; }
  /// Where a row is; outside of `listRect` when it is scrolled away.
  ui::Rect rowRect(std::size_t row) const;
  ui::Rect switchRect(std::size_t row) const;
  /// The part of the panel that rows show in, scroll bar included.
  const ui::Rect& listRect() const { return scroller_.view(); }

 protected:
  ui::Rect wantedPanel(int width, int height) const override;
  void layOutContent(const ui::Rect& content) override;
  void paintContent(ui::Canvas& canvas) const override;
  int controlCount() const override { return static_cast<int>(rows_.size()); }
  ui::PressTracker::Control controlAt(int x, int y) const override;
  bool act(int control) override;
  void pressedOutside() override { close(); }
  void keyboardMoved() override;

 private:
  /// A row's place below the top of the first one, and its explanation in lines.
  struct RowPlace {
    int top = 0;
    int height = 0;
    ui::Paragraph explanation;
  };

  std::vector<RowPlace> rowPlaces(int width) const;
  int explanationWidth(int rowWidth) const;
  int headingHeight() const;
  void reset();
  void settingsChanged();
  void hoverAnew();
  std::optional<int> controlAfterKey(unsigned long keysym) const;
  void paintRow(ui::Canvas& canvas, std::size_t row) const;
  void paintRowGround(ui::Canvas& canvas, std::size_t row) const;
  void paintSwitch(ui::Canvas& canvas, const ui::Rect& rect, bool on) const;

  ui::Connection& connection_;
  SettingsStore& store_;
  const ui::Font small_;
  const std::vector<SettingsRow> rows_;
  std::vector<RowPlace> places_;
  ui::Rect heading_;
  ui::Scroller scroller_;
  /// What the pointer did last, unless it left.
  std::optional<ui::MouseEvent> pointer_;
};

}  // namespace app
