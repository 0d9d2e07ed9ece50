#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sizewalk/file_tree.h"

namespace app {

/// A folder on the way from the scanned one to the one in focus, as the toolbar shows it.
struct BreadcrumbSegment {
  sizewalk::NodeId node = 0;
  /// The folder's display name; "…" for the one that stands for all that had no room.
  std::string text;
  /// Device pixels from the start of the breadcrumb, and the width of the text.
  int x = 0;
  int width = 0;
  friend bool operator==(const BreadcrumbSegment&, const BreadcrumbSegment&) = default;
};

/// Between two segments.
inline constexpr std::string_view kBreadcrumbSeparator = " › ";

/// The way to `focus`, one segment a folder, fitted into `width` device pixels. Where it does not
/// fit, segments are left out from the left, and "…" before the rest leads to the last of those.
/// The folder in focus is always there, wider than the room if need be. `measure` gives the width
/// of a text.
std::vector<BreadcrumbSegment> breadcrumb(const sizewalk::FileTree& tree, sizewalk::NodeId focus,
                                          int width,
                                          const std::function<int(std::string_view)>& measure);

}  // namespace app
