#include "app/folder_rows.h"

#include <algorithm>
#include <ranges>

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeFlag;
using sizewalk::NodeId;
using sizewalk::NodeRange;

void FolderRows::show(const sizewalk::FileTree* tree) {
  tree_ = tree;
  open_ = {kRootNode};
  refresh();
}

void FolderRows::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  refresh();
}

void FolderRows::refresh() {
  rows_.clear();
  if (!tree_ || tree_->nodeCount() == 0) return;
  rows_.push_back(rowFor(kRootNode, 0));
  if (!rows_.front().expanded) return;
  const std::vector<FolderRow> below = rowsBelow(rows_.front());
  rows_.insert(rows_.end(), below.begin(), below.end());
}

FolderRow FolderRows::rowFor(NodeId node, std::int32_t depth) const {
  const NodeRange children = tree_->children(node);
  const bool expandable = std::ranges::any_of(
      std::views::iota(children.first, children.last),
      [this](NodeId child) { return !tree_->flags(child).has(NodeFlag::Excluded); });
  return {node, depth, expandable, expandable && open_.contains(node)};
}

/// Sorted by values read once: a walk that goes on would change them under the sort's hands.
std::vector<NodeId> FolderRows::contents(NodeId folder) const {
  struct Entry {
    std::int64_t value;
    NodeId node;
  };
  const NodeRange children = tree_->children(folder);
  std::vector<Entry> entries;
  entries.reserve(children.size());
  for (NodeId child = children.first; child < children.last; ++child) {
    if (tree_->flags(child).has(NodeFlag::Excluded)) continue;
    entries.push_back({measureValue(*tree_, child, measure_), child});
  }
  std::ranges::sort(entries, [this](const Entry& a, const Entry& b) {
    if (a.value != b.value) return a.value > b.value;
    return tree_->name(a.node) < tree_->name(b.node);
  });
  std::vector<NodeId> nodes(entries.size());
  std::ranges::transform(entries, nodes.begin(), &Entry::node);
  return nodes;
}

/// With a stack of its own instead of recursion: a tree may be thousands of levels deep.
std::vector<FolderRow> FolderRows::rowsBelow(const FolderRow& row) const {
  std::vector<FolderRow> rows;
  std::vector<FolderRow> pending;
  const auto pushContents = [&](const FolderRow& folder) {
    for (const NodeId node : contents(folder.node) | std::views::reverse) {
      pending.push_back(rowFor(node, folder.depth + 1));
    }
  };
  pushContents(row);
  while (!pending.empty()) {
    const FolderRow next = pending.back();
    pending.pop_back();
    rows.push_back(next);
    if (next.expanded) pushContents(next);
  }
  return rows;
}

std::optional<std::size_t> FolderRows::find(NodeId node) const {
  const auto found = std::ranges::find(rows_, node, &FolderRow::node);
  if (found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

void FolderRows::open(std::size_t row) {
  if (row >= rows_.size() || !rows_[row].expandable || rows_[row].expanded) return;
  open_.insert(rows_[row].node);
  rows_[row].expanded = true;
  const std::vector<FolderRow> below = rowsBelow(rows_[row]);
  rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(row) + 1, below.begin(), below.end());
}

void FolderRows::close(std::size_t row) {
  if (row >= rows_.size() || !rows_[row].expanded) return;
  open_.erase(rows_[row].node);
  rows_[row].expanded = false;
  const auto first = rows_.begin() + static_cast<std::ptrdiff_t>(row) + 1;
  const auto last = std::find_if(
      first, rows_.end(), [&](const FolderRow& below) { return below.depth <= rows_[row].depth; });
  rows_.erase(first, last);
}

std::optional<std::size_t> FolderRows::reveal(NodeId node) {
  if (!tree_ || node >= tree_->nodeCount()) return std::nullopt;
  for (NodeId above = node; above != kRootNode;) {
    above = tree_->parent(above);
    open_.insert(above);
  }
  refresh();
  return find(node);
}

}  // namespace app
