#include "app/map/map_notice.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "app/map/treemap_render.h"
#include "tests/app/map/map_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

constexpr Measure kMeasures[] = {Measure::CurrentSize, Measure::AddedLastMonth,
                                 Measure::AddedLastSixMonths, Measure::AddedSinceLastScan};

/// What a map of 200 x 100 of a tree says.
class MapNoticeTest : public ::testing::Test {
 protected:
  MapNoticeTest() {
    tree_.createRoot("/map");
    status_.scannedBefore = true;
  }

  RenderedTreemap draw() const {
    return renderTreemap(tree_, focus_, 200, 100, KindColours(true), extraBlocks_, measure_);
  }
  std::string on(const RenderedTreemap& map) const {
    return std::string(mapNotice(map, tree_, measure_, status_));
  }
  std::string notice() const { return on(draw()); }
  std::string noticeUnder(Measure measure) {
    measure_.measure = measure;
    return notice();
  }
  void expectUnderEveryMeasure(const std::string& text) {
    for (const Measure measure : kMeasures) {
      EXPECT_EQ(noticeUnder(measure), text) << "under measure " << static_cast<int>(measure);
    }
  }
  void expectNothingUnderAnyMeasure() { expectUnderEveryMeasure({}); }
  /// Puts a file into the scanned folder that counts for no added measure.
  void addOldFile() { add(tree_, Listing(0).file("old", 5000, 5000, 1)); }

  FileTree tree_{test::mapTreeOptions()};
  NodeId focus_ = kRootNode;
  MeasureSettings measure_;
  ScanStatus status_;
  std::vector<ExtraBlock> extraBlocks_;
};

TEST_F(MapNoticeTest, SaysUnderEachMeasureThatNothingWasAdded) {
  addOldFile();
  EXPECT_EQ(noticeUnder(Measure::CurrentSize), "");
  EXPECT_EQ(noticeUnder(Measure::AddedLastMonth), "Nothing here was added in the last month");
  EXPECT_EQ(noticeUnder(Measure::AddedLastSixMonths),
            "Nothing here was added in the last six months");
  EXPECT_EQ(noticeUnder(Measure::AddedSinceLastScan), "Nothing here was added since the last scan");
  status_.scannedBefore = false;
  EXPECT_EQ(noticeUnder(Measure::AddedSinceLastScan), "This folder was not scanned before");
  EXPECT_EQ(noticeUnder(Measure::AddedLastMonth), "Nothing here was added in the last month");
}

TEST_F(MapNoticeTest, SaysNothingWhereSomethingIsSeen) {
  add(tree_, Listing(0).file("new", 5000, 5000, test::kLastScan));
  expectNothingUnderAnyMeasure();
}

TEST_F(MapNoticeTest, SaysNothingWhereOnlyFreeSpaceIsSeen) {
  addOldFile();
  extraBlocks_ = {{kFreeSpaceBlock, "Free space", 500, 0x2B3648}};
  EXPECT_EQ(noticeUnder(Measure::AddedLastMonth), "");
}

TEST_F(MapNoticeTest, SaysThatAFolderIsEmpty) {
  const auto folders = add(tree_, Listing(0).folder("empty").file("a", 5000, 5000));
  EXPECT_EQ(notice(), "");
  focus_ = folders.front();
  EXPECT_EQ(notice(), "This folder is empty");
  EXPECT_EQ(noticeUnder(Measure::AddedLastMonth), "Nothing here was added in the last month");
}

TEST_F(MapNoticeTest, TellsAFolderOfEmptyFilesFromAnEmptyOne) {
  add(tree_, Listing(0).file("a", 0).file("b", 0));
  EXPECT_EQ(notice(), "Nothing in this folder takes up space");
  const NodeId first = tree_.firstChild(kRootNode);
  tree_.removeSubtree(first);
  EXPECT_EQ(notice(), "Nothing in this folder takes up space");
  tree_.removeSubtree(first + 1);
  EXPECT_EQ(notice(), "This folder is empty") << "all in it waits to be deleted";
}

TEST_F(MapNoticeTest, SaysThatAFolderIsEmptyWhoseItemsWereAllTakenOutWhateverElseIsRead) {
  const NodeId dir = add(tree_, Listing(0).folder("dir").folder("not read")).front();
  add(tree_, Listing(dir).file("a", 5000, 5000).folder("inside"));
  focus_ = dir;
  const NodeId first = tree_.firstChild(dir);
  for (const auto& [scanning, stopped] : {std::pair(true, false), {false, true}}) {
    status_.scanning = scanning;
    status_.stopped = stopped;
    const auto file = tree_.removeSubtree(first);
    EXPECT_EQ(notice(), "") << "what is inside is not known";
    const auto folder = tree_.removeSubtree(first + 1);
    EXPECT_EQ(notice(), "This folder is empty");
    tree_.restoreSubtree(folder);
    EXPECT_EQ(notice(), "");
    tree_.restoreSubtree(file);
    EXPECT_EQ(notice(), "");
  }
  status_ = {.scanning = true, .scannedBefore = true};
  tree_.removeSubtree(first);
  tree_.removeSubtree(first + 1);
  EXPECT_EQ(noticeUnder(Measure::AddedLastMonth), "Nothing here was added in the last month");
  measure_ = {};
  tree_.dropContents(dir);
  EXPECT_EQ(notice(), "") << "it is read again";
}

TEST_F(MapNoticeTest, SaysThatADiskIsEmptyWhoseItemsWereAllTakenOut) {
  add(tree_, Listing(0).mountPoint("disk").file("a", 5000, 5000));
  focus_ = tree_.firstChild(kRootNode);
  add(tree_, Listing(focus_).file("b", 5000, 5000));
  tree_.removeSubtree(tree_.firstChild(focus_));
  EXPECT_EQ(notice(), "This folder is empty");
}

TEST_F(MapNoticeTest, SaysThatAFolderCannotBeRead) {
  const auto folders = add(tree_, Listing(0).folder("locked").file("a", 5000, 5000));
  add(tree_, Listing(folders.front()).unreadable());
  focus_ = folders.front();
  expectUnderEveryMeasure("This folder cannot be read");
}

TEST_F(MapNoticeTest, SaysNothingOfADiskThatWasNotEntered) {
  add(tree_, Listing(0).mountPoint("disk").file("a", 5000, 5000));
  focus_ = tree_.firstChild(kRootNode);
  ASSERT_TRUE(tree_.flags(focus_).has(sizewalk::NodeFlag::MountPoint));
  expectNothingUnderAnyMeasure();
}

TEST_F(MapNoticeTest, SaysNothingWhileTheScanMayFindSomething) {
  status_.scanning = true;
  expectNothingUnderAnyMeasure();
  add(tree_, Listing(0).file("old", 0, 0, 1));
  expectNothingUnderAnyMeasure();
}

TEST_F(MapNoticeTest, SaysNothingOfWhatAStoppedScanHasNotRead) {
  add(tree_, Listing(0).folder("not read").file("old", 5000, 5000, 1));
  focus_ = tree_.firstChild(kRootNode);
  status_.stopped = true;
  expectNothingUnderAnyMeasure();
  focus_ = kRootNode;
  expectNothingUnderAnyMeasure();
  status_.scannedBefore = false;
  EXPECT_EQ(noticeUnder(Measure::AddedSinceLastScan), "This folder was not scanned before");
}

TEST_F(MapNoticeTest, SaysNothingOfAnEarlierScanBeforeThatIsKnown) {
  addOldFile();
  status_.scannedBefore = {};
  EXPECT_EQ(noticeUnder(Measure::AddedSinceLastScan), "");
  status_.stopped = true;
  EXPECT_EQ(noticeUnder(Measure::AddedSinceLastScan), "");
}

TEST_F(MapNoticeTest, SaysNothingThatTheTreeKnowsBetter) {
  const RenderedTreemap before = draw();
  ASSERT_EQ(on(before), "This folder is empty");
  add(tree_, Listing(0).file("a", 5000, 5000));
  EXPECT_EQ(on(before), "") << "the next picture shows it";
}

TEST_F(MapNoticeTest, SaysNothingWithoutAPicture) {
  EXPECT_EQ(on({}), "");
  const FileTree none;
  EXPECT_EQ(mapNotice(renderTreemap(none, 0, 200, 100, KindColours(true), {}, {}), none, {}, {}),
            "");
}

}  // namespace
}  // namespace app
