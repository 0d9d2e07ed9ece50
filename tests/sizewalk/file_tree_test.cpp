#include "sizewalk/file_tree.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace sizewalk {
namespace {

using test::add;
using test::Listing;

ScanOptions optionsWith(std::uint32_t month, std::uint32_t sixMonths, std::uint32_t lastScan = 0) {
  ScanOptions options;
  options.monthThreshold = month;
  options.sixMonthThreshold = sixMonths;
  options.setLastScanTime(lastScan);
  return options;
}

TEST(FileTree, StartsWithTheScannedFolderAlone) {
  FileTree tree;
  tree.createRoot("/home/u", 77);
  EXPECT_EQ(tree.nodeCount(), 1u);
  EXPECT_EQ(tree.name(kRootNode), "u");
  EXPECT_EQ(tree.kind(kRootNode), kKindFolder);
  EXPECT_TRUE(tree.isDirectory(kRootNode));
  EXPECT_EQ(tree.birthTime(kRootNode), 77u);
  EXPECT_EQ(tree.path(kRootNode), "/home/u");
  EXPECT_EQ(tree.totals(), ScanTotals{});
}

TEST(FileTree, AddsAListingAsOneRunOfChildrenInItsOrder) {
  FileTree tree;
  tree.createRoot("/r");
  const auto next =
      add(tree, Listing(0).file("z.txt", 10, 4096).folder("dir").file("a.mp3", 5, 512));
  ASSERT_EQ(next, std::vector<NodeId>{2});
  const NodeRange children = tree.children(kRootNode);
  EXPECT_EQ(children.first, 1u);
  EXPECT_EQ(children.last, 4u);
  EXPECT_EQ(tree.name(1), "z.txt");
  EXPECT_EQ(tree.name(2), "dir");
  EXPECT_EQ(tree.name(3), "a.mp3");
  EXPECT_EQ(tree.parent(3), kRootNode);
  EXPECT_EQ(tree.apparentSize(kRootNode), 15u);
  EXPECT_EQ(tree.allocatedSize(kRootNode), 4608u);
  EXPECT_EQ(tree.itemCount(kRootNode), 2);
  EXPECT_EQ(tree.kindTotals(classifyName("a.mp3")).apparentSize, 5u);
  EXPECT_EQ(tree.kindTotals(kKindFolder).count, 0u);
  EXPECT_EQ(tree.totals().files, 2u);
  EXPECT_EQ(tree.totals().directories, 1u);
}

TEST(FileTree, RollsADeepListingUpToEveryAncestor) {
  FileTree tree;
  tree.createRoot("/r");
  NodeId folder = kRootNode;
  for (int depth = 0; depth < 50; ++depth) folder = add(tree, Listing(folder).folder("d")).front();
  add(tree, Listing(folder).file("f", 7, 512));
  for (NodeId node = folder; node != kRootNode; node = tree.parent(node)) {
    EXPECT_EQ(tree.apparentSize(node), 7u);
    EXPECT_EQ(tree.itemCount(node), 1);
  }
  test::expectSumsMatchRecount(tree);
}

TEST(FileTree, LeavesAnEmptyDirectoryWithoutChildrenOrSize) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId empty = add(tree, Listing(0).folder("empty").file("f", 1, 512)).front();
  EXPECT_TRUE(add(tree, Listing(empty)).empty());
  EXPECT_EQ(tree.childCount(empty), 0u);
  EXPECT_TRUE(tree.children(empty).empty());
  EXPECT_EQ(tree.apparentSize(empty), 0u);
  EXPECT_EQ(tree.apparentSize(kRootNode), 1u);
}

TEST(FileTree, CountsASecondNameOfAFileAsADuplicateOfSizeZero) {
  FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("first.iso", 900, 1024, 5, 42).file("second.iso", 900, 1024, 5, 42));
  EXPECT_FALSE(tree.flags(1).has(NodeFlag::HardLinkDuplicate));
  EXPECT_TRUE(tree.flags(2).has(NodeFlag::HardLinkDuplicate));
  EXPECT_EQ(tree.apparentSize(2), 0u);
  EXPECT_EQ(tree.allocatedSize(2), 0u);
  EXPECT_EQ(tree.itemCount(2), 0);
  EXPECT_EQ(tree.addedLastMonth(2), 0u);
  EXPECT_EQ(tree.totals().hardLinks, 1u);
  EXPECT_EQ(tree.totals().hardLinkBytes, 1024u);
  EXPECT_EQ(tree.totals().files, 1u);
  EXPECT_EQ(tree.kindTotals(classifyName("first.iso")).count, 2u);
  EXPECT_EQ(tree.kindTotals(classifyName("first.iso")).allocatedSize, 1024u);
}

TEST(FileTree, CountsEveryNameWhenHardLinksAreNotToBeCountedOnce) {
  ScanOptions options;
  options.dedupeHardLinks = false;
  FileTree tree(options);
  tree.createRoot("/r");
  add(tree, Listing(0).file("a", 900, 1024, 5, 42).file("b", 900, 1024, 5, 42));
  EXPECT_EQ(tree.allocatedSize(kRootNode), 2048u);
  EXPECT_EQ(tree.totals().hardLinks, 0u);
}

TEST(FileTree, CountsAnUndatedEntryInNoAddedMeasure) {
  FileTree tree(optionsWith(0, 0, 1));
  tree.createRoot("/r");
  add(tree, Listing(0).file("undated", 1, 512, 0));
  EXPECT_EQ(tree.addedLastMonth(1), 0u);
  EXPECT_EQ(tree.addedLastSixMonths(1), 0u);
  EXPECT_EQ(tree.addedSinceLastScan(1), 0u);
  EXPECT_EQ(tree.totals().datedEntries, 0u);
}

TEST(FileTree, SplitsBirthsByTheMonthAndSixMonthThresholds) {
  FileTree tree(optionsWith(1000, 500));
  tree.createRoot("/r");
  add(tree, Listing(0)
                .file("older", 1, 512, 499)
                .file("sixMonths", 1, 1024, 500)
                .file("justBeforeMonth", 1, 2048, 999)
                .file("month", 1, 4096, 1000));
  EXPECT_EQ(tree.addedLastSixMonths(kRootNode), 1024u + 2048u + 4096u);
  EXPECT_EQ(tree.addedLastMonth(kRootNode), 4096u);
  EXPECT_EQ(tree.addedLastSixMonths(1), 0u);
  EXPECT_EQ(tree.addedLastMonth(3), 0u);
  EXPECT_EQ(tree.totals().datedEntries, 4u);
}

TEST(FileTree, NeverCountsForTheMonthWhatFailsTheSixMonthTest) {
  FileTree tree(optionsWith(100, 500));  // a month threshold before the six-month one
  tree.createRoot("/r");
  add(tree, Listing(0).file("f", 1, 512, 200));
  EXPECT_EQ(tree.addedLastMonth(1), 0u);
}

TEST(FileTree, CountsBirthsSinceTheLastScanOnlyWhenOneIsKnown) {
  FileTree without(optionsWith(0, 0));
  without.createRoot("/r");
  add(without, Listing(0).file("f", 1, 512, 4000000000u));
  EXPECT_EQ(without.addedSinceLastScan(kRootNode), 0u);

  FileTree with(optionsWith(0, 0, 100));
  with.createRoot("/r");
  add(with, Listing(0).file("before", 1, 512, 99).file("at", 1, 1024, 100));
  EXPECT_EQ(with.addedSinceLastScan(kRootNode), 1024u);
}

TEST(FileTree, MarksADirectoryThatCouldNotBeOpened) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId locked = add(tree, Listing(0).folder("locked")).front();
  add(tree, Listing(locked).unreadable());
  EXPECT_TRUE(tree.flags(locked).has(NodeFlag::Unreadable));
  EXPECT_TRUE(tree.flags(locked).has(NodeFlag::Directory));
  EXPECT_EQ(tree.childCount(locked), 0u);
  EXPECT_EQ(tree.totals().errors, 1u);
}

TEST(FileTree, MarksADirectoryWhoseListingBrokeOffAndKeepsWhatWasListed) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId partly = add(tree, Listing(0).folder("partly")).front();
  add(tree, Listing(partly).file("seen", 5).unreadableEntry("broken").breaksOff());
  EXPECT_TRUE(tree.flags(partly).has(NodeFlag::Unreadable));
  EXPECT_EQ(tree.childCount(partly), 2u);
  EXPECT_EQ(tree.totals().errors, 2u);
}

TEST(FileTree, DoesNotMarkADirectoryForWhatItHolds) {
  FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).unreadableEntry("broken"));
  EXPECT_FALSE(tree.flags(kRootNode).has(NodeFlag::Unreadable));
  EXPECT_EQ(tree.totals().errors, 1u);
}

TEST(FileTree, BuildsPathsOfAnyBytes) {
  FileTree tree;
  tree.createRoot("/");
  const NodeId folder = add(tree, Listing(0).folder("with\nnewline")).front();
  add(tree, Listing(folder).file("bad\xff utf8", 1));
  EXPECT_EQ(tree.path(kRootNode), "/");
  EXPECT_EQ(tree.path(folder), "/with\nnewline");
  EXPECT_EQ(tree.path(2), "/with\nnewline/bad\xff utf8");
}

TEST(FileTree, KeepsNamesWholeAcrossPagesOfTheNameStore) {
  FileTree tree;
  tree.createRoot("/r");
  Listing listing(0);
  for (int i = 0; i < 9000; ++i) listing.file(std::string(255, static_cast<char>('a' + i % 26)), 1);
  add(tree, listing);  // 2.3 MB of names in pages of 1 MiB
  for (NodeId node = 1; node < tree.nodeCount(); ++node) {
    ASSERT_EQ(tree.name(node), std::string(255, static_cast<char>('a' + (node - 1) % 26)));
  }
}

TEST(FileTree, HoldsSizesBeyondTheReachOfADouble) {
  FileTree tree;
  tree.createRoot("/r");
  const std::uint64_t huge = (std::uint64_t{1} << 62) + 1;
  add(tree, Listing(0).file("a", huge, 512).file("b", 2, 0));
  EXPECT_EQ(tree.apparentSize(kRootNode), huge + 2);
}

TEST(FileTree, CountsASubtreeWithoutWhatIsTakenOut) {
  FileTree tree;
  tree.createRoot("/r");
  const auto folders = add(tree, Listing(0).folder("a").folder("b"));
  add(tree, Listing(folders[0]).file("1", 1).file("2", 1));
  add(tree, Listing(folders[1]).file("3", 1));
  EXPECT_EQ(tree.countSubtree(kRootNode), 6u);
  EXPECT_EQ(tree.countSubtree(folders[0]), 3u);
  const RemovedSubtree record = tree.removeSubtree(folders[0]);
  EXPECT_EQ(tree.countSubtree(kRootNode), 3u);
  EXPECT_EQ(tree.countSubtree(folders[0]), 0u);
  EXPECT_EQ(tree.countSubtree(tree.nodeCount()), 0u);
  tree.restoreSubtree(record);
  EXPECT_EQ(tree.countSubtree(kRootNode), 6u);
}

TEST(PublishedPart, EndsWhereThePublishedNodesEnd) {
  EXPECT_EQ(publishedPart(5, 3, 9), (NodeRange{5, 8}));
  EXPECT_EQ(publishedPart(5, 3, 8), (NodeRange{5, 8}));
  EXPECT_EQ(publishedPart(5, 3, 7), (NodeRange{5, 7}));
  EXPECT_EQ(publishedPart(5, 0xFFFFFFFF, 7), (NodeRange{5, 7}));  // first + count has no room
}

/// A folder of so many names: by turns a file of five bytes, a folder and what cannot be examined.
Listing hugeListing(std::size_t entries) {
  Listing huge(kRootNode);
  for (std::size_t i = 0; i < entries; ++i) {
    const std::string name = std::to_string(i);
    if (i % 3 == 0) {
      huge.file(name, 5);
    } else if (i % 3 == 1) {
      huge.folder(name);
    } else {
      huge.unreadableEntry(name);
    }
  }
  return huge;
}

TEST(FileTree, LeavesOutTheRestOfAHugeFolderWhenToldToStop) {
  FileTree tree;
  tree.createRoot("/r");
  std::vector<NodeId> subdirectories;
  const std::atomic<bool> stop{true};
  const Listing huge = hugeListing(3 * FileTree::kEntriesBetweenLooks);
  tree.addChildren(huge.result(), &subdirectories, &stop);
  EXPECT_EQ(tree.childCount(kRootNode), FileTree::kEntriesBetweenLooks);
  EXPECT_EQ(subdirectories.size(), FileTree::kEntriesBetweenLooks / 3);
  EXPECT_LT(subdirectories.back(), tree.nodeCount());
  EXPECT_FALSE(tree.flags(kRootNode).has(NodeFlag::Unreadable)) << "its listing did not break off";
  test::expectSumsMatchRecount(tree);
}

TEST(FileTree, TakesWhatIsNotHugeAlsoWhenToldToStop) {
  for (const bool stopped : {false, true}) {
    FileTree tree;
    tree.createRoot("/r");
    std::vector<NodeId> subdirectories;
    const std::atomic<bool> stop{stopped};
    const std::size_t entries = FileTree::kEntriesBetweenLooks * (stopped ? 1 : 3);
    tree.addChildren(hugeListing(entries).result(), &subdirectories, &stop);
    EXPECT_EQ(tree.childCount(kRootNode), entries);
    test::expectSumsMatchRecount(tree);
  }
}

TEST(PublishedPart, IsEmptyWhereNothingIsPublished) {
  EXPECT_EQ(publishedPart(5, 3, 5), NodeRange{});
  EXPECT_EQ(publishedPart(5, 3, 4), NodeRange{});
  EXPECT_EQ(publishedPart(5, 0, 9), NodeRange{});
  EXPECT_EQ(publishedPart(0xFFFFFFFF, 1, 0xFFFFFFFF), NodeRange{});
}

TEST(FileTreeLimits, EndTheProgramWithALineWhenTheNodesRunOut) {
  EXPECT_EXIT(
      {
        FileTree tree({}, {.nodes = 3, .nameBytes = 1000});
        tree.createRoot("/r");
        add(tree, Listing(0).file("a", 1).file("b", 1));  // fits exactly
        add(tree, Listing(1).file("c", 1));
      },
      testing::ExitedWithCode(1), "^Heap Gauge: this folder holds more entries .*\n$");
}

TEST(FileTreeLimits, EndTheProgramWithALineWhenTheNamesRunOut) {
  EXPECT_EXIT(
      {
        FileTree tree({}, {.nodes = 100, .nameBytes = 8});
        tree.createRoot("/r");
        add(tree, Listing(0).file("1234567", 1));  // fits exactly, with the root's one byte
        add(tree, Listing(0).file("8", 1));
      },
      testing::ExitedWithCode(1), "^Heap Gauge: the names in this folder .*\n$");
}

TEST(FileTreeLimits, TakesExactlyAsMuchAsTheyAllow) {
  FileTree tree({}, {.nodes = 3, .nameBytes = 8});
  tree.createRoot("/r");
  add(tree, Listing(0).file("1234", 1).file("567", 1));
  EXPECT_EQ(tree.nodeCount(), 3u);
  EXPECT_EQ(tree.name(2), "567");
}

}  // namespace
}  // namespace sizewalk
