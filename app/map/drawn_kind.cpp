#include "app/map/drawn_kind.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace app {

using sizewalk::FileTree;
using sizewalk::KindIndex;
using sizewalk::NodeId;
using sizewalk::NodeRange;

namespace {

// Bounds that keep colouring cheap where folders are huge; what lies beyond them is not looked at.
constexpr NodeId kChildrenLookedAt = 256;
constexpr int kLevelsLookedAt = 8;

std::optional<NodeId> largestChild(const FileTree& tree, NodeId folder,
                                   const MeasureSettings& measure) {
  const NodeRange children = tree.children(folder);
  const NodeId end = children.first + std::min(children.size(), kChildrenLookedAt);
  std::optional<NodeId> largest;
  std::int64_t most = 0;
  for (NodeId child = children.first; child < end; ++child) {
    const std::int64_t value = measureValue(tree, child, measure);
    if (value <= most) continue;
    most = value;
    largest = child;
  }
  return largest;
}

}  // namespace

KindIndex dominantKind(const FileTree& tree, NodeId folder, const MeasureSettings& measure) {
  // The descent goes by length even where sizes on disk are shown.
  const MeasureSettings lengths = {measure.measure, false};
  NodeId current = folder;
  int levels = 0;
  while (tree.isDirectory(current)) {
    const std::optional<NodeId> pick = largestChild(tree, current, lengths);
    if (!pick) break;
    ++levels;
    if (!tree.isDirectory(*pick) || levels == kLevelsLookedAt) return tree.kind(*pick);
    current = *pick;
  }
  return tree.kind(current);
}

KindIndex drawnKind(const FileTree& tree, NodeId node, const MeasureSettings& measure) {
  const KindIndex own = tree.kind(node);
  if (own != sizewalk::kKindFolder) return own;
  const KindIndex filling = dominantKind(tree, node, measure);
  return filling == sizewalk::kKindFolder ? sizewalk::otherKind : filling;
}

}  // namespace app
