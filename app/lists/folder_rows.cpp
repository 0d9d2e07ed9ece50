#include "app/lists/folder_rows.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string_view>
#include <utility>

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using sizewalk::NodeRange;

namespace {

/// The first eight bytes of `text` as a number that compares as they do; a shorter text counts as
/// continued by zeros.
std::uint64_t sortKey(std::string_view text) {
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < sizeof(key); ++i) {
    key = key << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0);
  }
  return key;
}

/// False when everything in `folder` is taken out, too.
bool holdsSomething(const sizewalk::FileTree& tree, NodeId folder) {
  const NodeRange children = tree.children(folder);
  for (NodeId child = children.first; child < children.last; ++child) {
    if (!tree.isTakenOut(child)) return true;
  }
  return false;
}

}  // namespace

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

void FolderRows::refresh() { rows_ = look(); }

std::vector<FolderRow> FolderRows::look() {
  if (!tree_ || tree_->nodeCount() == 0) return {};
  std::erase_if(contents_, [this](const auto& kept) { return !tree_->isVisible(kept.first); });
  const FolderRow root = rowFor(kRootNode, 0);
  std::vector<FolderRow> rows;
  rows.reserve(rows_.size());
  rows.push_back(root);
  if (root.expanded) appendRowsBelow(root, &rows);
  return rows;
}

bool FolderRows::refreshInPlace() {
  std::vector<NodeRange> siblings;  // by depth
  for (const FolderRow& row : rows_) {
    const auto depth = static_cast<std::size_t>(row.depth);
    siblings.resize(depth + 1);
    siblings.push_back(tree_->children(row.node));
    const NodeRange range = siblings[depth];
    const bool led = row.node >= range.first && row.node < range.last;
    if (depth > 0 && (!led || tree_->isTakenOut(row.node))) return false;
  }
  for (FolderRow& row : rows_) {
    if (row.expanded) continue;
    // One that is remembered as open has no rows below it yet: a press gets them.
    row.expandable = rowFor(row.node, row.depth).expandable;
  }
  return true;
}

FolderRow FolderRows::rowFor(NodeId node, std::int32_t depth) const {
  const bool expandable = tree_->isDirectory(node) && holdsSomething(*tree_, node);
  return {node, depth, expandable, expandable && open_.contains(node)};
}

const FolderRows::Contents& FolderRows::contents(NodeId folder) {
  const NodeRange children = tree_->children(folder);
  Contents& contents = contents_[folder];
  const bool sameChildren =
      contents.children.first == children.first && contents.children.last == children.last;
  if (sameChildren && contents.measure == measure_) {
    bringUpToDate(contents);
  } else {
    contents = {children, measure_, {}, {}};
    collect(contents);
  }
  return contents;
}

void FolderRows::collect(Contents& contents) const {
  contents.values.reserve(contents.children.size());
  contents.order.resize(contents.children.size());
  std::iota(contents.order.begin(), contents.order.end(), contents.children.first);
  for (const NodeId child : contents.order) {
    contents.values.push_back(measureValue(*tree_, child, measure_));
  }
  sort(contents, contents.order);
}

/// Reads every size anew, in the order that the tree keeps them in, which is many times as fast as
/// in display order, and merges the children whose size has changed into the others, which are in
/// order still.
void FolderRows::bringUpToDate(Contents& contents) const {
  const NodeId first = contents.children.first;
  std::vector<bool> changed(contents.children.size());
  bool any = false;
  for (NodeId child = first; child < contents.children.last; ++child) {
    std::int64_t& value = contents.values[child - first];
    const std::int64_t now = measureValue(*tree_, child, measure_);
    if (value == now) continue;
    value = now;
    changed[child - first] = any = true;
  }
  if (!any) return;
  std::vector<NodeId>& order = contents.order;
  const auto kept = std::stable_partition(order.begin(), order.end(),
                                          [&](NodeId child) { return !changed[child - first]; });
  sort(contents, {kept, order.end()});
  std::inplace_merge(order.begin(), kept, order.end(), [&](NodeId a, NodeId b) {
    if (contents.valueOf(a) != contents.valueOf(b))
      return contents.valueOf(a) > contents.valueOf(b);
    return tree_->name(a) < tree_->name(b);
  });
}

/// First by size alone, then the runs of equal ones by name: most names are never looked at.
void FolderRows::sort(const Contents& contents, std::span<NodeId> nodes) const {
  std::vector<std::pair<std::int64_t, NodeId>> byValue;
  byValue.reserve(nodes.size());
  for (const NodeId node : nodes) byValue.emplace_back(contents.valueOf(node), node);
  std::ranges::sort(byValue, std::greater<>());
  std::ranges::transform(byValue, nodes.begin(), [](const auto& entry) { return entry.second; });
  for (std::size_t begin = 0, end = 0; begin < nodes.size(); begin = end) {
    while (end < nodes.size() && byValue[end].first == byValue[begin].first) ++end;
    if (end - begin > 1) sortByName(nodes.subspan(begin, end - begin));
  }
}

/// Names lie far apart in memory, and those in one folder often begin alike. What follows their
/// common beginning decides nearly always, so that much is kept beside each node.
void FolderRows::sortByName(std::span<NodeId> nodes) const {
  std::string_view common = tree_->name(nodes.front());
  for (const NodeId node : nodes) {
    const std::string_view name = tree_->name(node);
    common = common.substr(
        0, static_cast<std::size_t>(std::ranges::mismatch(common, name).in1 - common.begin()));
  }
  std::vector<std::pair<std::uint64_t, NodeId>> keyed;
  keyed.reserve(nodes.size());
  for (const NodeId node : nodes) {
    keyed.emplace_back(sortKey(tree_->name(node).substr(common.size())), node);
  }
  std::ranges::sort(keyed, [this](const auto& a, const auto& b) {
    if (a.first != b.first) return a.first < b.first;
    return tree_->name(a.second) < tree_->name(b.second);
  });
  std::ranges::transform(keyed, nodes.begin(), [](const auto& entry) { return entry.second; });
}

/// With a stack of its own instead of recursion: a tree may be thousands of levels deep.
void FolderRows::appendRowsBelow(const FolderRow& row, std::vector<FolderRow>* rows) {
  struct Level {
    std::span<const NodeId> rest;
    std::int32_t depth;
  };
  std::vector<Level> levels = {{contents(row.node).order, row.depth + 1}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.rest.empty()) {
      levels.pop_back();
      continue;
    }
    const NodeId node = level.rest.front();
    level.rest = level.rest.subspan(1);
    if (tree_->isTakenOut(node)) continue;
    const FolderRow next = rowFor(node, level.depth);
    rows->push_back(next);
    if (next.expanded) levels.push_back({contents(node).order, next.depth + 1});
  }
}

std::optional<std::size_t> FolderRows::find(NodeId node) const {
  const auto found = std::ranges::find(rows_, node, &FolderRow::node);
  if (found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

bool FolderRows::leadsTo(NodeId node) const {
  if (!tree_ || !tree_->isVisible(node)) return false;
  for (; node != kRootNode; node = tree_->parent(node)) {
    if (!open_.contains(tree_->parent(node))) return false;
  }
  return true;
}

void FolderRows::open(std::size_t row) {
  if (row >= rows_.size() || !rows_[row].expandable || rows_[row].expanded) return;
  if (!tree_->isVisible(rows_[row].node)) return;
  open_.insert(rows_[row].node);
  rows_[row].expanded = true;
  std::vector<FolderRow> below;
  appendRowsBelow(rows_[row], &below);
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
  if (!tree_ || !tree_->isVisible(node)) return std::nullopt;
  bool isOpen = true;
  for (NodeId above = node; above != kRootNode;) {
    above = tree_->parent(above);
    if (open_.insert(above).second) isOpen = false;
  }
  if (isOpen) {
    if (const auto row = find(node)) return row;
  }
  refresh();
  return find(node);
}

}  // namespace app
