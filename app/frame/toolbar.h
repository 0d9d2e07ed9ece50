#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "app/frame/folder_figures.h"
#include "app/frame/toolbar_layout.h"
#include "app/model/commands.h"
#include "ui/widgets/button_view.h"
#include "ui/widgets/style.h"

namespace app {

/// The bar across the top of the window: the buttons, the measure selector, the way to the folder
/// in focus and, where there is room, how much that holds. A button acts when it is let go over
/// itself. Window thread only.
class Toolbar : public ui::ButtonView<> {
 public:
  /// What a button does, or `GoTo` the folder of a segment; also the one in focus already.
  std::function<void(const Command&)> onCommand;

  /// `style` outlives the toolbar.
  explicit Toolbar(const ui::Style& style) : style_(style) {}

  /// Shows `state`, whose tree outlives being shown: before it goes, the toolbar is given another
  /// state. Cheap while nothing of it changes, however much the tree grows.
  void update(const ToolbarState& state);

  /// What the folder in focus holds. No folder on the way to it gives way to that. Cheap while the
  /// figures stay the same; nothing else is laid out again when they change.
  void setFigures(std::optional<FolderFigures> figures);

  /// Draws a line along the lower edge, as long as that share of it, 0 to 1.
  void setProgress(double share);

  void paint(ui::Canvas& canvas) const override;
  /// A hand over the breadcrumb.
  ui::PointerShape pointer() const override;

  /// What the button under the pointer does, and its key: "One folder up (Backspace)". Empty
  /// without one.
  std::string hint() const;

  const ToolbarLayout& layout() const { return layout_; }

  struct ShownFigures {
    /// Empty where there are none or no room.
    std::string text;
    ui::Rect rect;
  };
  const ShownFigures& figures() const { return shownFigures_; }

 protected:
  void layOut() override;
  Places buttonPlaces() const override;
  void act(Control control) override;
  ui::Rect reachOf(Control control, const ui::Rect& place) const override;

 private:
  /// Segments are numbered by node, behind the buttons, so that a press is taken back when another
  /// folder comes under the pointer.
  Control controlOf(const BreadcrumbSegment& segment) const;
  ui::Rect segmentRect(const BreadcrumbSegment& segment) const;
  void placeFigures();
  int progressWidth() const;
  /// Of a scan that has found everything.
  ui::Rect progressPlace() const;
  void paintButton(ui::Canvas& canvas, std::size_t number) const;
  void paintSegments(ui::Canvas& canvas) const;
  void paintSegment(ui::Canvas& canvas, const BreadcrumbSegment& segment) const;

  const ui::Style& style_;
  ToolbarState state_;
  /// Whether the tree held the folder in focus when it was laid out: a scan shows its folder only
  /// once that is there.
  bool focusPublished_ = false;
  ToolbarLayout layout_;
  std::optional<FolderFigures> figures_;
  ShownFigures shownFigures_;
  double progress_ = 0;
};

}  // namespace app
