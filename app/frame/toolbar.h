#pragma once

#include <functional>
#include <optional>

#include "app/frame/toolbar_layout.h"
#include "ui/button.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/style.h"

namespace app {

/// The bar across the top of the window: the buttons, the measure selector and the way to the
/// folder in focus. A button acts when it is let go over itself. Window thread only.
class Toolbar {
 public:
  std::function<void()> onOpen;
  std::function<void()> onStop;
  std::function<void()> onRescan;
  std::function<void()> onUp;
  /// For the menus that hang from a button: where it is.
  std::function<void(const ui::Rect&)> onMeasureMenu;
  std::function<void(const ui::Rect&)> onAppMenu;
  /// A folder of the breadcrumb is to be the one in focus; also the one that is already.
  std::function<void(sizewalk::NodeId)> onSegment;

  /// `style` outlives the toolbar.
  explicit Toolbar(const ui::Style& style) : style_(style) {}

  // These return whether what the toolbar shows has changed.

  bool setRect(const ui::Rect& rect);
  /// Shows `state`, whose tree outlives being shown: before it goes, the toolbar is given another
  /// state. Cheap while nothing of it changes, however much the tree grows.
  bool update(const ToolbarState& state);
  bool press(const ui::MouseEvent& event);
  bool motion(const ui::MouseEvent& event);
  bool release(const ui::MouseEvent& event);
  bool leave() { return presses_.leave(); }

  void paint(ui::Canvas& canvas) const;

  /// A hand over the breadcrumb, as of the last event.
  ui::PointerShape pointer() const;
  const ToolbarLayout& layout() const { return layout_; }

 private:
  void layOut();
  ui::PressTracker::Control controlAt(int x, int y) const;
  ui::Rect segmentRect(const BreadcrumbSegment& segment) const;
  void act(std::int64_t control);
  void paintControl(ui::Canvas& canvas, int control, std::string_view text) const;
  void paintSegments(ui::Canvas& canvas) const;
  void paintSegment(ui::Canvas& canvas, const BreadcrumbSegment& segment) const;

  const ui::Style& style_;
  ui::Rect rect_;
  ToolbarState state_;
  /// Whether the tree held the folder in focus when it was laid out: a scan shows its folder only
  /// once that is there.
  bool focusPublished_ = false;
  ToolbarLayout layout_;
  ui::PressTracker presses_;
};

}  // namespace app
