#include "app/frame/breadcrumb.h"

#include <algorithm>

#include "app/model/format.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

namespace {

constexpr std::string_view kEllipsis = "…";

/// From the folder in focus up to the scanned one.
std::vector<NodeId> wayUp(const sizewalk::FileTree& tree, NodeId focus) {
  std::vector<NodeId> way = {focus};
  while (way.back() != kRootNode) way.push_back(tree.parent(way.back()));
  return way;
}

}  // namespace

std::vector<BreadcrumbSegment> breadcrumb(const sizewalk::FileTree& tree, NodeId focus, int width,
                                          const std::function<int(std::string_view)>& measure) {
  if (focus >= tree.nodeCount()) return {};
  const std::vector<NodeId> way = wayUp(tree, focus);
  const int separator = measure(kBreadcrumbSeparator);
  const int ellipsis = measure(kEllipsis);

  // From the right, as long as there is room for "…" before what was taken unless nothing is left.
  std::vector<BreadcrumbSegment> segments;
  int taken = 0;
  for (const NodeId node : way) {
    const std::string text = displayName(tree.name(node));
    const int own = measure(text) + (segments.empty() ? 0 : separator);
    const int reserve = node == kRootNode ? 0 : ellipsis + separator;
    if (!segments.empty() && taken + own + reserve > width) {
      segments.push_back({node, std::string(kEllipsis), 0, ellipsis});
      break;
    }
    segments.push_back({node, text, 0, own - (segments.empty() ? 0 : separator)});
    taken += own;
  }
  std::ranges::reverse(segments);
  int x = 0;
  for (BreadcrumbSegment& segment : segments) {
    segment.x = x;
    x += segment.width + separator;
  }
  return segments;
}

}  // namespace app
