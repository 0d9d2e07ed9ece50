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
  sorted_.assign(nodes_.begin(), nodes_.end());
  std::ranges::sort(sorted_);
  if (onChanged) onChanged();
}

void Selection::toggle(NodeId node) {
  const auto place = std::ranges::lower_bound(sorted_, node);
  if (nodes_.insert(node).second) {
    sorted_.insert(place, node);
  } else {
    nodes_.erase(node);
    sorted_.erase(place);
  }
  if (onChanged) onChanged();
}

void Selection::keepVisible(const FileTree& tree) {
  const auto isGone = [&](NodeId node) { return !tree.isVisible(node); };
  if (std::erase_if(nodes_, isGone) == 0) return;
  std::erase_if(sorted_, [&](NodeId node) { return !nodes_.contains(node); });
  if (onChanged) onChanged();
}

std::vector<NodeId> Selection::nodesFor(std::optional<NodeId> target) const {
  if (target && *target != kRootNode && !contains(*target)) return {*target};
  return sorted_;
}

std::vector<NodeId> Selection::outermost(const FileTree& tree) const {
  const auto insideAnother = [&](NodeId node) {
    while (node != kRootNode) {
      node = tree.parent(node);
      if (contains(node)) return true;
    }
    return false;
  };
  // Many in one folder are the usual case, and have one answer.
  NodeId folder = kRootNode;
  bool folderInside = contains(kRootNode);
  const auto isInner = [&](NodeId node) {
    if (node == kRootNode) return false;
    const NodeId parent = tree.parent(node);
    if (parent != folder) {
      folder = parent;
      folderInside = insideAnother(node);
    }
    return folderInside;
  };
  std::vector<NodeId> outermost;
  std::ranges::remove_copy_if(sorted_, std::back_inserter(outermost), isInner);
  return outermost;
}

}  // namespace app
