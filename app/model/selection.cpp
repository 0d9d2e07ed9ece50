#include "app/model/selection.h"

#include <algorithm>
#include <iterator>

namespace app {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;

void Selection::replace(std::span<const NodeId> nodes) {
  std::unordered_set<NodeId> next(nodes.begin(), nodes.end());
  if (next == nodes_) return;
  nodes_ = std::move(next);
  if (onChanged) onChanged();
}

void Selection::toggle(NodeId node) {
  if (!nodes_.insert(node).second) nodes_.erase(node);
  if (onChanged) onChanged();
}

void Selection::keepVisible(const FileTree& tree) {
  const auto erased = std::erase_if(nodes_, [&](NodeId node) { return !tree.isVisible(node); });
  if (erased != 0 && onChanged) onChanged();
}

std::vector<NodeId> Selection::nodesFor(std::optional<NodeId> target) const {
  if (target && *target != kRootNode && !contains(*target)) return {*target};
  std::vector<NodeId> nodes(nodes_.begin(), nodes_.end());
  std::ranges::sort(nodes);
  return nodes;
}

std::vector<NodeId> Selection::outermost(const FileTree& tree) const {
  const auto insideAnother = [&](NodeId node) {
    while (node != kRootNode) {
      node = tree.parent(node);
      if (contains(node)) return true;
    }
    return false;
  };
  std::vector<NodeId> outermost;
  std::ranges::remove_copy_if(nodes_, std::back_inserter(outermost), insideAnother);
  std::ranges::sort(outermost);
  return outermost;
}

}  // namespace app
