// Readers without a lock, and two threads that change the tree.

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::expectSumsMatchRecount;
using test::Listing;

TEST(FileTreeThreads, AReaderNeverSeesMoreThanWasPublished) {
  FileTree tree;
  tree.createRoot("/r");
  std::atomic<bool> finished{false};
  std::uint64_t looked = 0;
  std::thread reader([&] {
    std::uint64_t lastBytes = 0;
    bool last = false;
    while (!last) {
      last = finished.load();
      const std::uint64_t bytes = tree.apparentSize(kRootNode);
      ASSERT_GE(bytes, lastBytes);
      lastBytes = bytes;
      std::uint64_t below = 0;
      const NodeRange range = tree.children(kRootNode);
      for (NodeId node = range.first; node < range.last; ++node) {
        ASSERT_EQ(tree.parent(node), kRootNode);
        ASSERT_FALSE(tree.name(node).empty());
        const NodeRange inner = tree.children(node);
        for (NodeId child = inner.first; child < inner.last; ++child) {
          ASSERT_EQ(tree.parent(child), node);
          below += tree.apparentSize(child);
        }
      }
      // Published children are in the sums of what stands above them.
      ASSERT_LE(below, tree.apparentSize(kRootNode));
      ++looked;
    }
    ASSERT_EQ(lastBytes, 200u * 500u * 3u);
  });
  Listing top(0);
  for (int i = 0; i < 200; ++i) top.folder("folder" + std::to_string(i));
  for (const NodeId folder : add(tree, top)) {
    Listing listing(folder);
    for (int i = 0; i < 500; ++i) listing.file("f" + std::to_string(i), 3, 512);
    add(tree, listing);
  }
  finished = true;
  reader.join();
  EXPECT_GE(looked, 1u);
}

TEST(FileTreeThreads, AReaderAlwaysSeesWhatIsUntouchedAndNeverAgainWhatWasDropped) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("read anew").folder("untouched").folder("out"));
  const NodeId inside = add(tree, Listing(folders[1]).folder("inside")).front();
  add(tree, Listing(folders[2]).file("1", 1).file("2", 1));
  std::atomic<bool> finished{false};
  std::atomic<std::uint64_t> rounds{0};
  std::thread reader([&] {
    while (!finished) {
      ASSERT_TRUE(tree.isVisible(kRootNode));
      ASSERT_TRUE(tree.isVisible(inside));
      const NodeRange range = tree.children(folders[0]);
      if (!range.empty() && !tree.isVisible(range.first)) {
        ASSERT_FALSE(tree.isVisible(range.first)) << "dropped between the two looks";
      }
      (void)tree.isVisible(tree.firstChild(folders[2]));  // either answer is right
      (void)tree.isVisible(tree.nodeCount() - 1);
      ++rounds;
    }
  });
  for (int i = 0; i < 2000 || (rounds < 100 && !testing::Test::HasFailure()); ++i) {
    add(tree, Listing(folders[0]).file("f", 1).folder("d"));
    tree.restoreSubtree(tree.removeSubtree(folders[2]));
    ASSERT_TRUE(tree.dropContents(folders[0]));
  }
  finished = true;
  reader.join();
}

TEST(FileTreeThreads, AReaderNeverTakesTheStartOfOneRangeWithTheLengthOfAnother) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("a").folder("b"));
  const NodeId folder = folders[0];
  std::atomic<bool> finished{false};
  std::thread reader([&] {
    while (!finished) {
      const NodeRange range = tree.children(folder);
      for (NodeId node = range.first; node < range.last; ++node) {
        ASSERT_EQ(tree.parent(node), folder);
      }
    }
  });
  for (int i = 0; i < 8000; ++i) {
    // Short and long in turns, and behind each the nodes of another folder.
    Listing listing(folder);
    for (int file = 0; file < 1 + i % 2 * 3; ++file) listing.file("f", 1);
    add(tree, listing);
    add(tree, Listing(folders[1]).file("1", 1).file("2", 1).file("3", 1));
    if (i % 64 == 0) tree.restoreSubtree(tree.removeSubtree(folder));
    tree.dropContents(folder);
    tree.dropContents(folders[1]);
  }
  finished = true;
  reader.join();
  expectSumsMatchRecount(tree);
}

TEST(FileTreeThreads, AReaderNeverSeesAFolderEmptyWhileAnotherIsReplaced) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("rewritten").folder("untouched"));
  add(tree, Listing(folders[1]).file("1", 1).file("2", 1));
  std::atomic<bool> finished{false};
  std::atomic<bool> reading{false};
  std::thread reader([&] {
    while (!finished) {
      ASSERT_EQ(tree.children(folders[1]).size(), 2u);
      reading = true;
    }
  });
  while (!reading) std::this_thread::yield();
  for (int round = 0; round < 300; ++round) {
    add(tree, Listing(folders[0]).file("f", 1));
    for (int i = 0; i < 300; ++i) tree.restoreSubtree(tree.removeSubtree(folders[0]));
    tree.dropContents(folders[0]);
  }
  finished = true;
  reader.join();
}

/// One thread adds as a walk does; the other takes out and puts back wherever it pleases.
TEST(FileTreeThreads, ChangesDuringTheWalkLeaveEverySumRight) {
  FileTree tree;
  tree.createRoot("/r");
  std::atomic<bool> finished{false};
  std::thread walk([&] {
    std::mt19937 random(5);
    std::vector<NodeId> unread = {kRootNode};
    for (int folders = 0; folders < 3000 && !unread.empty(); ++folders) {
      const std::size_t which = random() % unread.size();
      Listing listing(unread[which]);
      unread.erase(unread.begin() + static_cast<std::ptrdiff_t>(which));
      for (int i = 0; i < 3; ++i) listing.folder("d" + std::to_string(i));
      for (int i = 0; i < 4; ++i) listing.file("f.txt", random() % 1000, random() % 1000, 1);
      const auto next = add(tree, listing);
      unread.insert(unread.end(), next.begin(), next.end());
    }
    finished = true;
  });
  std::mt19937 random(6);
  std::vector<RemovedSubtree> records;
  while (!finished) {
    const auto node = static_cast<NodeId>(random() % tree.nodeCount());
    const RemovedSubtree record = tree.removeSubtree(node);
    if (record.valid) records.push_back(record);
    if (records.size() > 20) {
      const std::size_t which = random() % records.size();
      tree.restoreSubtree(records[which]);
      records.erase(records.begin() + static_cast<std::ptrdiff_t>(which));
    }
  }
  walk.join();
  expectSumsMatchRecount(tree);
  while (!records.empty()) {
    tree.restoreSubtree(records.back());
    records.pop_back();
  }
  expectSumsMatchRecount(tree);
  EXPECT_EQ(tree.totals().files, 3000u * 4);
  EXPECT_EQ(tree.takenOutBytes(), 0u);
}

}  // namespace
}  // namespace sizewalk
