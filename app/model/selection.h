#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

#include "sizewalk/file_tree.h"

namespace app {

/// The items that the user has picked, which the list and the map both show. Held by node: sorting
/// anew, new results and closing rows change nothing in it. Window thread only.
class Selection {
 public:
  /// Something was added or removed. Not called where a request changed nothing.
  std::function<void()> onChanged;

  bool contains(sizewalk::NodeId node) const { return nodes_.contains(node); }
  std::size_t size() const { return nodes_.size(); }
  const std::unordered_set<sizewalk::NodeId>& nodes() const { return nodes_; }
  /// The same in ascending order, a folder before what it holds.
  const std::vector<sizewalk::NodeId>& sorted() const { return sorted_; }

  void clear() { replace({}); }
  /// Makes `nodes` the selection.
  void replace(std::span<const sizewalk::NodeId> nodes);
  void select(sizewalk::NodeId node) { replace({&node, 1}); }
  /// What a command with that target is about: the target alone when it is not selected, otherwise
  /// all that is. In ascending order, a folder before what it holds.
  std::vector<sizewalk::NodeId> nodesFor(std::optional<sizewalk::NodeId> target) const;
  /// Adds or removes one.
  void toggle(sizewalk::NodeId node);

  /// Drops what `tree` does not show any more. To be called when the tree has changed.
  void keepVisible(const sizewalk::FileTree& tree);

  /// What is selected, without what lies inside a selected folder, in ascending order: nothing is
  /// counted or acted on twice.
  std::vector<sizewalk::NodeId> outermost(const sizewalk::FileTree& tree) const;

 private:
  std::unordered_set<sizewalk::NodeId> nodes_;
  /// Kept beside, since sorting twenty thousand takes a good part of a frame.
  std::vector<sizewalk::NodeId> sorted_;
};

}  // namespace app
