#pragma once

#include <cstddef>
#include <functional>

#include "app/frame/toolbar_layout.h"
#include "app/model/commands.h"
#include "ui/button.h"
#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace app {

/// The bar across the top of the window: the buttons, the measure selector and the way to the
/// folder in focus. A button acts when it is let go over itself. Window thread only.
class Toolbar : public ui::View {
 public:
  /// What a button does, or `GoTo` the folder of a segment; also the one in focus already.
  std::function<void(const Command&)> onCommand;

  /// `style` outlives the toolbar.
  explicit Toolbar(const ui::Style& style) : style_(style) {}

  /// Shows `state`, whose tree outlives being shown: before it goes, the toolbar is given another
  /// state. Cheap while nothing of it changes, however much the tree grows.
  void update(const ToolbarState& state);

  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void leave() override;
  /// A hand over the breadcrumb.
  ui::PointerShape pointer() const override;

  const ToolbarLayout& layout() const { return layout_; }

 protected:
  void layOut() override;

 private:
  ui::PressTracker::Control controlAt(int x, int y) const;
  /// Segments are numbered by node, behind the buttons, so that a press is taken back when another
  /// folder comes under the pointer.
  std::int64_t controlOf(const BreadcrumbSegment& segment) const;
  ui::Rect segmentRect(const BreadcrumbSegment& segment) const;
  void act(std::int64_t control);
  void paintButton(ui::Canvas& canvas, std::size_t number) const;
  void paintSegments(ui::Canvas& canvas) const;
  void paintSegment(ui::Canvas& canvas, const BreadcrumbSegment& segment) const;

  const ui::Style& style_;
  ToolbarState state_;
  /// Whether the tree held the folder in focus when it was laid out: a scan shows its folder only
  /// once that is there.
  bool focusPublished_ = false;
  ToolbarLayout layout_;
  ui::PressTracker presses_;
};

}  // namespace app
