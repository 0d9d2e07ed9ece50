#include "tests/app/map/map_tree.h"

#include <cmath>

namespace test {

using sizewalk::FileTree;
using sizewalk::NodeFlag;
using sizewalk::NodeId;

namespace {

std::size_t pick(std::mt19937_64& random, std::size_t from, std::size_t to) {
  return std::uniform_int_distribution<std::size_t>(from, to)(random);
}

/// `giants` is how many sizes that a double need not hold exactly may still come.
std::uint64_t randomSize(std::mt19937_64& random, int* giants) {
  switch (pick(random, 0, 9)) {
    case 0:
      return 0;
    case 1:
      return pick(random, 1, 3);  // many equal ones
    case 2:
      if (*giants > 0 && pick(random, 0, 9) == 0) {
        --*giants;
        return (std::uint64_t{1} << pick(random, 53, 57)) + 1;
      }
      return std::uint64_t{1} << pick(random, 0, 42);
    default:
      return static_cast<std::uint64_t>(std::lognormal_distribution<double>(9, 2.5)(random));
  }
}

MapEntry randomEntry(std::mt19937_64& random, int* giants) {
  MapEntry entry;
  entry.folder = pick(random, 0, 4) == 0;
  if (entry.folder) return folder();
  // A few dominate, as on a real disk.
  entry.kind = static_cast<sizewalk::KindIndex>(pick(random, 0, 3) == 0 ? pick(random, 2, 75)
                                                                        : pick(random, 4, 9));
  entry.apparent = randomSize(random, giants);
  entry.allocated = pick(random, 0, 3) == 0 ? randomSize(random, giants) : entry.apparent;
  entry.birthTime = static_cast<std::uint32_t>(pick(random, 0, 4000));
  return entry;
}

}  // namespace

MapEntry file(std::uint64_t size, sizewalk::KindIndex kind) { return {kind, size, size, 0, false}; }

MapEntry folder() { return {sizewalk::kKindFolder, 0, 0, 0, true}; }

sizewalk::ScanOptions mapTreeOptions() {
  sizewalk::ScanOptions options;
  options.sixMonthThreshold = kSixMonthsAgo;
  options.monthThreshold = kMonthAgo;
  options.setLastScanTime(kLastScan);
  return options;
}

std::vector<NodeId> fill(FileTree& tree, NodeId node, const std::vector<MapEntry>& entries) {
  sizewalk::DirectoryResult result;
  result.reset(node);
  for (const MapEntry& entry : entries) {
    sizewalk::EntryRecord record;
    record.kind = entry.kind;
    record.apparentSize = entry.apparent;
    record.allocatedSize = entry.allocated;
    record.birthTime = entry.birthTime;
    record.itemCount = entry.folder ? 0 : 1;
    if (entry.folder) {
      record.flags = NodeFlag::Directory;
      result.subdirectories.push_back(static_cast<std::uint32_t>(result.entries.size()));
    }
    result.addEntry("x", record);
  }
  std::vector<NodeId> subfolders;
  tree.addChildren(result, &subfolders);
  return subfolders;
}

std::vector<NodeId> fillRoot(FileTree& tree, const std::vector<MapEntry>& entries) {
  tree.createRoot("/map");
  return fill(tree, sizewalk::kRootNode, entries);
}

void fillRandomly(FileTree& tree, std::size_t nodes, std::mt19937_64& random) {
  tree.createRoot("/map");
  int giants = 32;  // of 2^57 they add up to 2^62; what is beside them fits below 2^63
  std::vector<NodeId> unread = {sizewalk::kRootNode};
  while (!unread.empty() && tree.nodeCount() < nodes) {
    const std::size_t at = pick(random, 0, unread.size() - 1);
    const NodeId node = unread[at];
    unread.erase(unread.begin() + static_cast<std::ptrdiff_t>(at));
    std::vector<MapEntry> entries(pick(random, 0, 3) == 0 ? pick(random, 0, 400)
                                                          : pick(random, 0, 12));
    if (node == sizewalk::kRootNode) entries.resize(12);
    for (MapEntry& entry : entries) entry = randomEntry(random, &giants);
    if (node == sizewalk::kRootNode) entries.front() = entries.back() = folder();
    const std::vector<NodeId> subfolders = fill(tree, node, entries);
    unread.insert(unread.end(), subfolders.begin(), subfolders.end());
  }
  for (std::size_t i = 0; i < nodes / 100; ++i) {
    tree.removeSubtree(static_cast<NodeId>(pick(random, 1, tree.nodeCount() - 1)));
  }
}

}  // namespace test
