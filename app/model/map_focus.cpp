#include "app/model/map_focus.h"

#include <utility>

#include "app/model/tree_way.h"

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
  return tree_ && tree_->isVisible(folder) && tree_->isDirectory(folder);
}

bool MapFocus::isFilled(NodeId folder) const {
  return canFocus(folder) && !tree_->children(folder).empty();
}

void MapFocus::moveTo(NodeId folder) {
  current_ = folder;
  // What was left behind counts as long as it lies further in than where the focus is.
  if (innermost_ == kRootNode || !childTowards(*tree_, folder, innermost_)) innermost_ = folder;
  if (onChanged) onChanged();
}

void MapFocus::takeUp(Way way) {
  while (way.current != kRootNode && !isFilled(way.current))
    way.current = tree_->parent(way.current);
  previous_ = std::move(way.previous);
  next_ = std::move(way.next);
  innermost_ = way.innermost;
  if (way.current != current_) moveTo(way.current);
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
  if (!tree_ || !canGoOut()) return;
  NodeId above = tree_->parent(current_);
  while (!canFocus(above)) above = tree_->parent(above);  // the scanned folder always can be
  go(above);
}

void MapFocus::keepVisible() {
  if (tree_ && canGoOut() && !tree_->isVisible(current_)) goOut();
}

void MapFocus::goBackIn() { goTowards(innermost_); }

void MapFocus::goBackOver(std::vector<NodeId>* way, std::vector<NodeId>* wayBack) {
  // What can no longer be focused is passed over for good, and so is the current folder, which may
  // have been on the other side of it.
  while (!way->empty() && (way->back() == current_ || !canFocus(way->back()))) way->pop_back();
  if (way->empty()) return;
  wayBack->push_back(current_);
  const NodeId folder = way->back();
  way->pop_back();
  moveTo(folder);
}

void MapFocus::goToPrevious() { goBackOver(&previous_, &next_); }

void MapFocus::goToNext() { goBackOver(&next_, &previous_); }

}  // namespace app
