#include "app/map_focus.h"

#include <utility>

#include "app/tree_way.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

void MapFocus::reset(const sizewalk::FileTree* tree) {
  tree_ = tree;
  current_ = kRootNode;
  innermost_ = kRootNode;
  previous_.clear();
  next_.clear();
}

bool MapFocus::canFocus(NodeId folder) const {
  return tree_ && folder < tree_->nodeCount() && tree_->isDirectory(folder) &&
         (folder == kRootNode || !tree_->children(folder).empty());
}

void MapFocus::moveTo(NodeId folder) {
  current_ = folder;
  // What was left behind counts as long as it lies further in than where the focus is.
  if (innermost_ == kRootNode || !childTowards(*tree_, folder, innermost_)) innermost_ = folder;
  if (onChanged) onChanged();
}

void MapFocus::go(NodeId folder) {
  if (folder == current_ || !canFocus(folder)) return;
  previous_.push_back(current_);
  next_.clear();
  moveTo(folder);
}

void MapFocus::goTowards(NodeId node) {
  if (!tree_ || node >= tree_->nodeCount()) return;
  if (const auto child = childTowards(*tree_, current_, node)) go(*child);
}

void MapFocus::goOut() {
  if (tree_ && canGoOut()) go(tree_->parent(current_));
}

void MapFocus::goBackIn() { goTowards(innermost_); }

void MapFocus::goToPrevious() {
  if (previous_.empty()) return;
  next_.push_back(current_);
  const NodeId folder = previous_.back();
  previous_.pop_back();
  moveTo(folder);
}

void MapFocus::goToNext() {
  if (next_.empty()) return;
  previous_.push_back(current_);
  const NodeId folder = next_.back();
  next_.pop_back();
  moveTo(folder);
}

}  // namespace app
