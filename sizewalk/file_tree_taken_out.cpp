#include "sizewalk/file_tree.h"

// Taking subtrees out while the walk goes on rests on one rule: a sum is rolled up as far as the
// first taken-out node and no further, and only what no taken-out node stands above counts in the
// totals. So a taken-out node always carries what its subtree holds at the moment, and putting it
// back is adding that to what lies above, whether or not the walk has been inside since. Keeping a
// copy of the sums in the record instead would put back what the subtree held when it was taken
// out, and lose the rest.

namespace sizewalk {

/// Whether `node` or a folder above it is taken out.
bool FileTree::isInTakenOut(NodeId node) const {
  for (;; node = parent_[node]) {
    if (isTakenOut(node)) return true;
    if (node == kRootNode) return false;
  }
}

/// `isInTakenOut` for as long as the mutex is held; at no cost while nothing is taken out.
HardLinkLedger::TakenOutTest FileTree::takenOutTest() const {
  if (takenOut_.empty()) return [](NodeId) { return false; };
  return [this](NodeId node) { return isInTakenOut(node); };
}

/// The children that were written for `node`, of a taken-out node too.
NodeRange FileTree::writtenChildren(NodeId node) const {
  const auto found = takenOut_.find(node);
  if (found != takenOut_.end() && childCount(node) == 0) return found->second.children;
  return {firstChild(node), firstChild(node) + childCount(node)};
}

void FileTree::tallyNode(NodeId node, Tally* tally) const {
  const NodeFlags flags = this->flags(node);
  tally->scan.datedEntries += birthTime_[node] != 0;
  tally->scan.errors += flags.has(NodeFlag::Unreadable);
  if (flags.has(NodeFlag::Directory)) {
    tally->scan.directories += !flags.has(NodeFlag::MountPoint);
    return;
  }
  const NodeSums sums = sumsOf(node);
  tally->scan.files += sums.itemCount;
  tally->addToKind(kind_[node], sums);
  if (flags.has(NodeFlag::HardLinkDuplicate)) {
    tally->scan.hardLinks += 1;
    tally->scan.hardLinkBytes += hardLinks_.duplicateBytes(node);
  }
}

/// What `node` accounts for with all beneath it that is not taken out.
Tally FileTree::tallySubtree(NodeId node) const {
  Tally tally;
  tallyNode(node, &tally);
  std::vector<NodeId> folders = {node};
  while (!folders.empty()) {
    const NodeId folder = folders.back();
    folders.pop_back();
    const NodeId first = firstChild(folder);
    for (NodeId child = first; child != first + childCount(folder); ++child) {
      if (isTakenOut(child)) continue;
      tallyNode(child, &tally);
      if (childCount(child) != 0) folders.push_back(child);
    }
  }
  return tally;
}

RemovedSubtree FileTree::removeSubtree(NodeId node) {
  const base::MutexLock lock(writeMutex_);
  if (node == kRootNode || !isVisible(node)) return {};
  const NodeSums sums = sumsOf(node);
  const NodeRange range = writtenChildren(node);
  totals_.subtract(tallySubtree(node));
  rollUp(parent_[node], sums.negated());
  // In this order, from the inside out: see isVisible.
  setChildren(node, {range.first, range.first});
  setFlags(node, flags(node).with(NodeFlag::Excluded));
  takenOut_[node] = {range, sums.allocatedSize, ++lastSerial_};
  takenOutBytes_.fetch_add(sums.allocatedSize, std::memory_order_relaxed);
  publish();
  return {static_cast<std::int32_t>(node),
          range.first,
          range.size(),
          sums.allocatedSize,
          lastSerial_,
          true};
}

void FileTree::restoreSubtree(const RemovedSubtree& record) {
  const base::MutexLock lock(writeMutex_);
  if (!record.valid || record.node < 0 || static_cast<NodeId>(record.node) >= end_) return;
  const auto node = static_cast<NodeId>(record.node);
  const auto found = takenOut_.find(node);
  if (found == takenOut_.end() || found->second.serial != record.serial) return;

  // A folder that had not been read when it was taken out may have been read since.
  const NodeRange range = writtenChildren(node);
  takenOut_.erase(found);
  takenOutBytes_.fetch_sub(record.allocatedBytes, std::memory_order_relaxed);
  setFlags(node, flags(node).without(NodeFlag::Excluded));
  setChildren(node, range);
  rollUp(parent_[node], sumsOf(node));
  const HardLinkLedger::TakenOutTest inTakenOut = takenOutTest();
  if (!inTakenOut(node)) {
    totals_.add(tallySubtree(node));
    for (const NodeId name : hardLinks_.settle(inTakenOut)) makeDuplicate(name);
  }
  publish();
}

/// Turns a visible file that is counted here into a duplicate.
void FileTree::makeDuplicate(NodeId node) {
  const NodeSums sums = sumsOf(node);
  Tally before;
  tallyNode(node, &before);
  hardLinks_.enterDuplicate(node, sums.allocatedSize);
  setFlags(node, flags(node).with(NodeFlag::HardLinkDuplicate));
  rollUp(node, sums.negated());
  Tally after;
  tallyNode(node, &after);
  totals_.subtract(before);
  totals_.add(after);
}

bool FileTree::dropContents(NodeId folder) {
  const base::MutexLock lock(writeMutex_);
  if (!isVisible(folder) || !isDirectory(folder)) return false;
  totals_.subtract(tallySubtree(folder));
  rollUp(folder, sumsOf(folder).negated());
  setFlags(folder, flags(folder).without(NodeFlag::Unreadable));
  forget(nodesBelow(folder));
  setChildren(folder, {firstChild(folder), firstChild(folder)});
  Tally itself;
  tallyNode(folder, &itself);  // the folder stays
  totals_.add(itself);
  publish();
  return true;
}

/// One bit for each node, set where it lies below `folder`, within what is taken out too.
std::vector<bool> FileTree::nodesBelow(NodeId folder) const {
  std::vector<bool> below(end_);
  std::vector<NodeId> pending = {folder};
  while (!pending.empty()) {
    const NodeRange range = writtenChildren(pending.back());
    pending.pop_back();
    for (NodeId child = range.first; child < range.last; ++child) {
      below[child] = true;
      if (isDirectory(child)) pending.push_back(child);
    }
  }
  return below;
}

/// Forgets what the tree knows of dropped nodes beside their columns.
void FileTree::forget(const std::vector<bool>& dropped) {
  hardLinks_.forget([&](NodeId node) { return dropped[node]; });
  std::erase_if(takenOut_, [&](const auto& taken) {
    if (!dropped[taken.first]) return false;
    takenOutBytes_.fetch_sub(taken.second.bytes, std::memory_order_relaxed);
    return true;
  });
}

}  // namespace sizewalk
