// A tree and a naive model of it go through the same random changes.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::expectSumsMatchRecount;
using test::Listing;

/// The tree as anyone would first write it: objects with children, sums by recursion. Nodes have
/// the indices that the tree gives them.
class NaiveModel {
 public:
  struct Node {
    NodeId parent = 0;
    std::uint64_t size = 0;
    bool folder = false;
    bool read = false;
    bool takenOut = false;
    std::uint64_t key = 0;  // of a file that may have other names
    std::vector<NodeId> children = {};
  };

  NaiveModel() : nodes(1) { nodes[0].folder = true; }

  NodeId append(NodeId parent, std::uint64_t size, bool folder) {
    const auto id = static_cast<NodeId>(nodes.size());
    nodes.push_back({.parent = parent, .size = size, .folder = folder});
    nodes[parent].children.push_back(id);
    return id;
  }

  std::uint64_t sizeOf(NodeId node) const {
    std::uint64_t sum = nodes[node].size;
    for (const NodeId child : nodes[node].children) {
      if (!nodes[child].takenOut) sum += sizeOf(child);
    }
    return sum;
  }

  std::vector<NodeId> reachable(NodeId from = 0) const {
    std::vector<NodeId> result = {from};
    for (std::size_t i = 0; i < result.size(); ++i) {
      const Node& node = nodes[result[i]];
      result.insert(result.end(), node.children.begin(), node.children.end());
    }
    return result;
  }

  bool visible(NodeId node) const {
    for (; node != 0; node = nodes[node].parent) {
      if (nodes[node].takenOut) return false;
      if (std::ranges::find(nodes[nodes[node].parent].children, node) ==
          nodes[nodes[node].parent].children.end()) {
        return false;
      }
    }
    return true;
  }

  /// A file of several names is counted at the first that turns up. While that is out, the next one
  /// that turns up is, and the first waits to come back.
  NodeId appendLinked(NodeId folder, std::uint64_t size, std::uint64_t key) {
    const NodeId node = append(folder, size, false);
    nodes[node].key = key;
    const auto [counted, isNew] = countedAt_.try_emplace(key, node);
    if (isNew) return node;
    if (isIn(counted->second) || !isIn(folder)) {
      nodes[node].size = 0;
    } else {
      displaced_.emplace_back(key, counted->second);
      counted->second = node;
    }
    return node;
  }

  void putBack(NodeId node) {
    nodes[node].takenOut = false;
    std::vector<std::pair<std::uint64_t, NodeId>> waiting;
    for (const auto& [key, first] : displaced_) {
      NodeId& counted = countedAt_[key];
      if (!isIn(first)) {
        waiting.emplace_back(key, first);
      } else if (!isIn(counted)) {
        waiting.emplace_back(key, std::exchange(counted, first));
      } else {
        nodes[first].size = 0;  // the other name has taken its place
      }
    }
    displaced_ = waiting;
  }

  void dropContents(NodeId folder) {
    std::vector<NodeId> dropped = reachable(folder);
    dropped.erase(dropped.begin());
    const auto isDropped = [&](NodeId node) {
      return std::ranges::find(dropped, node) != dropped.end();
    };
    nodes[folder].children.clear();
    nodes[folder].read = false;
    std::erase_if(countedAt_, [&](const auto& entry) { return isDropped(entry.second); });
    std::erase_if(displaced_, [&](const auto& entry) {
      return isDropped(entry.second) || countedAt_.try_emplace(entry.first, entry.second).second;
    });
  }

  std::vector<Node> nodes;

 private:
  /// Neither the node nor a folder above it is taken out.
  bool isIn(NodeId node) const {
    for (; node != 0; node = nodes[node].parent) {
      if (nodes[node].takenOut) return false;
    }
    return true;
  }

  std::map<std::uint64_t, NodeId> countedAt_;
  /// Names that are out, each of a file that is counted elsewhere meanwhile.
  std::vector<std::pair<std::uint64_t, NodeId>> displaced_;
};

/// Drives a tree and a model through the same random changes.
class RandomChanges {
 public:
  explicit RandomChanges(unsigned seed) : random_(seed), tree_(options()) {
    tree_.createRoot("/r");
  }

  void step() {
    switch (pick(10)) {
      case 0:
      case 1:
      case 2:
      case 3:
        addListing();
        break;
      case 4:
      case 5:
      case 6:
        takeOut();
        break;
      case 7:
      case 8:
        putBack();
        break;
      default:
        readAnew();
        break;
    }
  }

  void putAllBack() {
    while (!records_.empty()) putBack();
  }

  void compare() {
    for (const NodeId node : model_.reachable()) {
      ASSERT_EQ(tree_.apparentSize(node), model_.sizeOf(node)) << "node " << node;
      ASSERT_EQ(tree_.allocatedSize(node), 2 * model_.sizeOf(node)) << "node " << node;
      ASSERT_EQ(tree_.isTakenOut(node), model_.nodes[node].takenOut);
    }
    for (NodeId node = 0; node < model_.nodes.size(); ++node) {  // dropped ones among them
      ASSERT_EQ(tree_.isVisible(node), model_.visible(node)) << "node " << node;
    }
    expectEveryFileCountedOnce();
    expectSumsMatchRecount(tree_);
    std::uint64_t out = 0;
    for (const RemovedSubtree& record : records_) out += record.allocatedBytes;
    ASSERT_EQ(tree_.takenOutBytes(), out);
  }

 private:
  static ScanOptions options() {
    ScanOptions options;
    options.monthThreshold = 1000;
    options.sixMonthThreshold = 500;
    options.setLastScanTime(700);
    return options;
  }

  std::size_t pick(std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_);
  }

  void expectEveryFileCountedOnce() {
    std::map<std::uint64_t, int> counted;
    for (const NodeId node : model_.reachable()) {
      const std::uint64_t key = model_.nodes[node].key;
      if (key == 0 || !model_.visible(node)) continue;
      const bool duplicate = tree_.flags(node).has(NodeFlag::HardLinkDuplicate);
      ASSERT_EQ(tree_.apparentSize(node), duplicate ? 0 : 100 * key);
      ASSERT_EQ(tree_.itemCount(node), duplicate ? 0 : 1);
      ASSERT_LE(counted[key] += !duplicate, 1) << "a file counted twice";
    }
  }

  // The walk goes on inside what was taken out, so any folder that hangs together with the root
  // will do.
  void addListing() {
    std::vector<NodeId> unread;
    for (const NodeId node : model_.reachable()) {
      if (model_.nodes[node].folder && !model_.nodes[node].read) unread.push_back(node);
    }
    if (unread.empty()) return;
    const NodeId folder = unread[pick(unread.size())];
    model_.nodes[folder].read = true;
    Listing listing(folder);
    for (std::size_t left = pick(7); left > 0; --left) {
      static const char* const kNames[] = {"a.txt", "b.mp3", "c", "d.iso"};
      const std::size_t what = pick(12);
      if (what == 0) {
        listing.mountPoint("mount");
        model_.append(folder, 0, false);
      } else if (what == 1) {
        listing.unreadableEntry("broken");
        model_.append(folder, 0, false);
      } else if (what <= 3) {
        const std::uint64_t key = 1 + pick(5);
        listing.file("linked.iso", 100 * key, 200 * key, 600, key);
        model_.appendLinked(folder, 100 * key, key);
      } else if (what <= 7) {
        listing.folder("folder", static_cast<std::uint32_t>(pick(1500)));
        model_.append(folder, 0, true);
      } else {
        const std::uint64_t size = pick(10000);
        const auto birth = static_cast<std::uint32_t>(pick(1500));
        listing.file(kNames[pick(4)], size, size * 2, birth);
        model_.append(folder, size, false);
      }
    }
    if (pick(5) == 0) listing.breaksOff();
    add(tree_, listing);
  }

  void takeOut() {
    const std::vector<NodeId> candidates = model_.reachable();
    const NodeId node = candidates[pick(candidates.size())];
    const bool possible = node != 0 && model_.visible(node);
    const RemovedSubtree record = tree_.removeSubtree(node);
    ASSERT_EQ(record.valid, possible);
    if (!possible) return;
    ASSERT_EQ(record.allocatedBytes, 2 * model_.sizeOf(node));
    model_.nodes[node].takenOut = true;
    records_.push_back(record);
  }

  void putBack() {
    if (records_.empty()) return;
    const std::size_t which = pick(records_.size());
    const RemovedSubtree record = records_[which];
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(which));
    tree_.restoreSubtree(record);
    tree_.restoreSubtree(record);  // a second time does nothing
    model_.putBack(static_cast<NodeId>(record.node));
  }

  void readAnew() {
    if (pick(4) != 0) return;
    std::vector<NodeId> folders;
    for (const NodeId node : model_.reachable()) {
      if (model_.nodes[node].folder) folders.push_back(node);
    }
    const NodeId folder = folders[pick(folders.size())];
    ASSERT_EQ(tree_.dropContents(folder), model_.visible(folder));
    if (!model_.visible(folder)) return;
    const std::vector<NodeId> gone = model_.reachable(folder);
    std::erase_if(records_, [&](const RemovedSubtree& record) {
      const auto node = static_cast<NodeId>(record.node);
      return node != folder && std::ranges::find(gone, node) != gone.end();
    });
    model_.dropContents(folder);
  }

  std::mt19937 random_;
  FileTree tree_;
  NaiveModel model_;
  std::vector<RemovedSubtree> records_;
};

TEST(FileTreeTakenOut, KeepsEverySumRightThroughRandomChanges) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomChanges changes(seed);
    for (int i = 0; i < 120; ++i) {
      changes.step();
      if (i % 5 == 0) changes.compare();
      if (testing::Test::HasFailure()) return;
    }
    changes.putAllBack();
    changes.compare();
  }
}

}  // namespace
}  // namespace sizewalk
