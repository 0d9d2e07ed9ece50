#include "app/model/tree_way.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

std::optional<NodeId> childTowards(const sizewalk::FileTree& tree, NodeId folder, NodeId node) {
  while (node != kRootNode) {
    const NodeId parent = tree.parent(node);
    if (parent == folder) return node;
    node = parent;
  }
  return std::nullopt;
}

}  // namespace app
