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
  contents_.clear();
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
  if (!tree_->isDirectory(node)) return {node, depth, false, false};
  const NodeRange children = tree_->children(node);
  const bool expandable = std::ranges::any_of(
      std::views::iota(children.first, children.last),
      [this](NodeId child) { return !tree_->flags(child).has(NodeFlag::Excluded); });
  return {node, depth, expandable, expandable && open_.contains(node)};
}

const std::vector<FolderRows::Entry>& FolderRows::contents(NodeId folder) {
  const NodeRange children = tree_->children(folder);
  Contents& contents = contents_[folder];
  const bool sameChildren =
      contents.children.first == children.first && contents.children.last == children.last;
  if (sameChildren && contents.measure == measure_) {
    bringUpToDate(contents.entries);
  } else {
    contents = {children, measure_, {}};
    collect(contents);
  }
  return contents.entries;
}

void FolderRows::collect(Contents& contents) const {
  contents.entries.reserve(contents.children.size());
  for (NodeId child = contents.children.first; child < contents.children.last; ++child) {
    contents.entries.push_back({measureValue(*tree_, child, measure_), child});
  }
  sort(contents.entries);
}

/// Reads every size anew and merges the entries whose size has changed into the others, which are
/// in order still.
void FolderRows::bringUpToDate(std::vector<Entry>& entries) const {
  std::vector<Entry> changed;
  auto kept = entries.begin();
  for (const Entry& entry : entries) {
    const Entry now = {measureValue(*tree_, entry.node, measure_), entry.node};
    if (now.value == entry.value) {
      *kept++ = now;
    } else {
      changed.push_back(now);
    }
  }
  std::ranges::copy(changed, kept);
  sort({kept, entries.end()});
  std::inplace_merge(entries.begin(), kept, entries.end(),
                     [this](const Entry& a, const Entry& b) { return isBefore(a, b); });
}

void FolderRows::sort(std::span<Entry> entries) const {
  std::ranges::sort(entries, [this](const Entry& a, const Entry& b) { return isBefore(a, b); });
}

bool FolderRows::isBefore(const Entry& a, const Entry& b) const {
  if (a.value != b.value) return a.value > b.value;
  return tree_->name(a.node) < tree_->name(b.node);
}

/// With a stack of its own instead of recursion: a tree may be thousands of levels deep.
std::vector<FolderRow> FolderRows::rowsBelow(const FolderRow& row) {
  std::vector<FolderRow> rows;
  std::vector<FolderRow> pending;
  const auto pushContents = [&](const FolderRow& folder) {
    for (const Entry& entry : contents(folder.node) | std::views::reverse) {
      if (tree_->flags(entry.node).has(NodeFlag::Excluded)) continue;
      pending.push_back(rowFor(entry.node, folder.depth + 1));
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

bool FolderRows::leadsTo(NodeId node) const {
  if (!tree_ || node >= tree_->nodeCount()) return false;
  for (; node != kRootNode; node = tree_->parent(node)) {
    const NodeId above = tree_->parent(node);
    const NodeRange children = tree_->children(above);
    const bool held = node >= children.first && node < children.last;
    if (!held || !open_.contains(above) || tree_->flags(node).has(NodeFlag::Excluded)) return false;
  }
  return true;
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
  contents_.erase(rows_[row].node);
  rows_[row].expanded = false;
  const auto first = rows_.begin() + static_cast<std::ptrdiff_t>(row) + 1;
  const auto last = std::find_if(
      first, rows_.end(), [&](const FolderRow& below) { return below.depth <= rows_[row].depth; });
  rows_.erase(first, last);
}

std::optional<std::size_t> FolderRows::reveal(NodeId node) {
  if (!tree_ || node >= tree_->nodeCount()) return std::nullopt;
  bool isOpen = true;
  for (NodeId above = node; above != kRootNode;) {
    above = tree_->parent(above);
    if (open_.insert(above).second) isOpen = false;
  }
  if (isOpen && leadsTo(node)) {
    if (const auto row = find(node)) return row;
  }
  refresh();
  return find(node);
}

}  // namespace app
