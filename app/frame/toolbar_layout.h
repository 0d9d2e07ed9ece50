#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/frame/breadcrumb.h"
#include "app/model/commands.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"
#include "ui/geometry.h"

namespace app {

/// What the toolbar shows. `tree` is null when no scan is shown.
struct ToolbarState {
  const sizewalk::FileTree* tree = nullptr;
  bool scanning = false;
  bool canGoUp = false;
  Measure measure = Measure::CurrentSize;
  sizewalk::NodeId focus = sizewalk::kRootNode;

  bool operator==(const ToolbarState&) const = default;
};

/// A button of the toolbar and what it does.
struct ToolbarButton {
  Action action;
  std::string text;
  /// Empty when the button is not shown, so that it cannot be pressed.
  ui::Rect rect;
};

/// Where the toolbar's parts are, in device pixels of the window.
struct ToolbarLayout {
  /// All of them, shown or not, those that lie over others first: in a bar too narrow for all the
  /// menu's covers the others.
  std::vector<ToolbarButton> buttons;
  /// Room of the breadcrumb, and its segments, whose places count from the room's left edge.
  ui::Rect breadcrumb;
  std::vector<BreadcrumbSegment> segments;

  /// Where the button with that action is; empty when it is not shown.
  ui::Rect place(Action action) const;
};

/// "Current size", "Added in the last month" and so on, as the selector and its menu say.
std::string_view measureName(Measure measure);
/// The selector's text: the measure and an arrow.
std::string measureSelectorText(Measure measure);

/// Lays the toolbar out into `bar`. `lineHeight` is the body font's, `measureText` gives a text's
/// width.
ToolbarLayout layOutToolbar(const ToolbarState& state, const ui::Rect& bar, int lineHeight,
                            double scale, const std::function<int(std::string_view)>& measureText);

}  // namespace app
