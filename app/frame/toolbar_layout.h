#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/frame/breadcrumb.h"
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

/// Where the toolbar's parts are, in device pixels of the window. A button that is not shown is
/// empty, so that it cannot be pressed.
struct ToolbarLayout {
  ui::Rect open;
  ui::Rect stop;
  ui::Rect rescan;
  ui::Rect up;
  ui::Rect measure;
  ui::Rect menu;
  /// Room of the breadcrumb, and its segments, whose places count from the room's left edge.
  ui::Rect breadcrumb;
  std::vector<BreadcrumbSegment> segments;
};

inline constexpr std::string_view kOpenText = "Open…";
inline constexpr std::string_view kStopText = "Stop";
inline constexpr std::string_view kRescanText = "Rescan";
inline constexpr std::string_view kUpText = "↑";
inline constexpr std::string_view kMenuText = "☰";

/// "Current size", "Added in the last month" and so on, as the selector and its menu say.
std::string_view measureName(Measure measure);
/// The selector's text: the measure and an arrow.
std::string measureSelectorText(Measure measure);

/// Lays the toolbar out into `bar`. `lineHeight` is the body font's, `measureText` gives a text's
/// width.
ToolbarLayout layOutToolbar(const ToolbarState& state, const ui::Rect& bar, int lineHeight,
                            double scale, const std::function<int(std::string_view)>& measureText);

}  // namespace app
