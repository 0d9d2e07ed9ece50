// What the views show of a tree, read while another thread makes it grow: the folder list's rows,
// the kinds, the map and its cards. For the thread sanitizer as much as for the assertions.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "app/lists/folder_rows.h"
#include "app/map/map_card.h"
#include "app/map/map_notice.h"
#include "app/map/treemap_render.h"
#include "app/model/kind_rows.h"
#include "tests/app/map/map_tree.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;

constexpr MeasureSettings kLengths;
constexpr std::size_t kFolders = 20'000;

/// A tree of `kFolders` folders of three folders each, whose files a thread adds, here and there.
class GrowingTreeTest : public testing::Test {
 protected:
  GrowingTreeTest() {
    for (const NodeId dir : test::fillRoot(tree_, std::vector(kFolders, test::folder()))) {
      for (const NodeId inner : test::fill(tree_, dir, std::vector(3, test::folder()))) {
        unread_.push_back(inner);
      }
    }
    std::ranges::shuffle(unread_, random_);
  }
  ~GrowingTreeTest() override {
    stop_ = true;
    if (writer_.joinable()) writer_.join();
  }

  void startGrowing() {
    writer_ = std::thread([this] {
      for (const NodeId folder : unread_) {
        const auto kind = static_cast<sizewalk::KindIndex>(4 + random_() % 70);
        test::fill(tree_, folder, {test::file(1 + random_() % 100'000, kind), test::file(7)});
      }
      grown_ = true;
    });
  }
  /// Takes folders out and puts them back, so that sizes change in both directions, for as long as
  /// the reader likes. In the end all is there again.
  void startChanging() {
    writer_ = std::thread([this] {
      while (!stop_) {
        tree_.restoreSubtree(tree_.removeSubtree(unread_[random_() % unread_.size()]));
      }
    });
  }
  bool grows() const { return !grown_; }

  /// Each folder once, the largest first. All are called the same.
  void expectOrder(const FolderRows& rows) const {
    std::vector<NodeId> shown;
    for (const FolderRow& row : rows.rows().subspan(1)) shown.push_back(row.node);
    const auto size = [this](NodeId node) { return tree_.apparentSize(node); };
    EXPECT_TRUE(std::ranges::is_sorted(shown, std::greater<>(), size));
    std::ranges::sort(shown);
    const NodeId first = tree_.firstChild(kRootNode);
    ASSERT_EQ(shown.size(), kFolders);
    for (std::size_t i = 0; i < shown.size(); ++i) ASSERT_EQ(shown[i], first + i);
  }

  FileTree tree_{test::mapTreeOptions()};
  std::minstd_rand random_{11};  // of the thread once it runs
  std::vector<NodeId> unread_;
  std::atomic<bool> grown_ = false;
  std::atomic<bool> stop_ = false;
  std::thread writer_;
};

TEST_F(GrowingTreeTest, HasItsRowsInOrderOnceItGrowsNoMore) {
  FolderRows rows;
  rows.show(&tree_);
  startGrowing();
  do {
    rows.refresh();
    ASSERT_EQ(rows.rows().size(), kFolders + 1);
  } while (grows());
  writer_.join();
  rows.refresh();
  expectOrder(rows);
}

/// A sort that looks at sizes which change under its hands leaves rows in the wrong places, and
/// there they stay, since they have not changed themselves.
TEST_F(GrowingTreeTest, HasItsRowsInOrderWhateverChangedWhileTheyWereSorted) {
  startGrowing();
  writer_.join();
  startChanging();
#ifdef HEAPGAUGE_SANITIZED
  std::vector<FolderRows> all(6);  // a sort takes ten times as long, which leaves as many chances
#else
  std::vector<FolderRows> all(60);
#endif
  for (FolderRows& rows : all) {
    rows.show(&tree_);
    rows.refresh();
  }
  stop_ = true;
  writer_.join();
  for (FolderRows& rows : all) {
    rows.refresh();
    expectOrder(rows);
    if (HasFailure()) return;
  }
}

TEST_F(GrowingTreeTest, HasKindsThatAddUpOnceItGrowsNoMore) {
  std::uint64_t last = 0;
  startGrowing();
  do {
    std::uint64_t size = 0;
    for (const KindRow& row : kindRows(tree_, kLengths, {})) size += row.size;
    EXPECT_GE(size, last) << "nothing is taken away";
    last = size;
  } while (grows());
  writer_.join();
  std::uint64_t size = 0;
  for (const KindRow& row : kindRows(tree_, kLengths, {})) size += row.size;
  EXPECT_EQ(size, tree_.apparentSize(kRootNode));
}

TEST_F(GrowingTreeTest, HasCardsOfEveryBlockOfItsMap) {
  RenderedTreemap map;
  startGrowing();
  do {
    map =
        renderTreemap(tree_, kRootNode, 300, 200, KindColours(false), {}, kLengths, std::move(map));
    std::size_t rests = 0;
    for (const PictureBlock& block : map.blocks) {
      if (!block.painted) continue;
      const MapCard card = mapCard(map, block, tree_, kLengths);
      ASSERT_FALSE(card.title.empty());
      if (block.restCount == 0) continue;
      ASSERT_LT(rests, map.rests.size());
      EXPECT_EQ(map.rests[rests++].id, block.id);
      EXPECT_GT(map.restSize(block), 0);
    }
    EXPECT_EQ(rests, map.rests.size());
    EXPECT_EQ(mapNotice(map, tree_, kLengths, {.scanning = true}), "");
    mapNotice(map, tree_, {Measure::AddedLastMonth}, {});
  } while (grows());
}

}  // namespace
}  // namespace app
