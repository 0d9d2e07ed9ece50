// The list of what waits to be deleted, over a tree made by hand.

#include "app/actions/pending_deletes.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sizewalk/file_tree.h"
#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;

/// /r holds big/ with inner/ (deep, 60) and song (40), photo (50) and late/, which is not read yet.
class PendingDeletesTest : public testing::Test {
 protected:
  PendingDeletesTest() {
    tree_.createRoot("/r");
    const auto folders = add(tree_, Listing(0).folder("big").file("photo", 50, 50).folder("late"));
    big_ = folders[0];
    late_ = folders[1];
    photo_ = big_ + 1;
    inner_ = add(tree_, Listing(big_).folder("inner").file("song", 40, 40)).front();
    song_ = inner_ + 1;
    add(tree_, Listing(inner_).file("deep", 60, 60));
    deep_ = tree_.firstChild(inner_);
    pending_.trash = [this](const PendingDelete& item, const ItemIdentity& identity,
                            std::string* error) {
      identities_.push_back(identity);
      if (std::ranges::find(untrashable_, item.path) != untrashable_.end()) {
        *error = "It is stuck.";
        return false;
      }
      trashed_.push_back(item.path);
      return true;
    };
    pending_.changed = [this] { ++changes_; };
    pending_.failed = [this](const std::string& path, const std::string& error) {
      failures_.push_back(path + ": " + error);
    };
    pending_.setTree(&tree_);
  }

  void put(const std::vector<NodeId>& nodes) { pending_.add(nodes); }
  Texts waiting() const {
    Texts paths;
    for (const PendingDelete& item : pending_.items()) paths.push_back(item.path);
    return paths;
  }
  std::uint64_t total() const { return tree_.allocatedSize(kRootNode); }

  FileTree tree_;
  NodeId big_ = 0, photo_ = 0, late_ = 0, inner_ = 0, song_ = 0, deep_ = 0;
  PendingDeletes pending_{[](const std::string& path) -> std::optional<ItemIdentity> {
    return ItemIdentity{3, path.size()};
  }};
  Texts trashed_;
  Texts failures_;
  Texts untrashable_;
  std::vector<ItemIdentity> identities_;
  int changes_ = 0;
};

// Adding.

TEST_F(PendingDeletesTest, TakesAnItemOutAtOnceAndTouchesNothing) {
  put({inner_});
  EXPECT_EQ(total(), 90u);
  EXPECT_EQ(tree_.totals().files, 2u);
  test::expectSumsMatchRecount(tree_);
  ASSERT_EQ(pending_.size(), 1u);
  EXPECT_EQ(pending_.items()[0].path, "/r/big/inner");
  EXPECT_EQ(pending_.items()[0].name, "inner");
  EXPECT_EQ(pending_.items()[0].remainingMs, 10'000);
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(trashed_, Texts{});
}

TEST_F(PendingDeletesTest, KeepsTheOrderInWhichItemsWereAdded) {
  put({song_, photo_});
  put({late_});
  EXPECT_EQ(waiting(), (Texts{"/r/big/song", "/r/photo", "/r/late"}));
}

TEST_F(PendingDeletesTest, AddsOnlyTheOutermostOfNodesInsideEachOther) {
  put({deep_, big_, song_, big_});
  EXPECT_EQ(waiting(), Texts{"/r/big"});
  EXPECT_EQ(total(), 50u);
  pending_.undelete(0);
  EXPECT_EQ(total(), 150u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, LeavesOutWhatCannotBeTakenOut) {
  put({kRootNode, 900});
  EXPECT_TRUE(pending_.empty());
  put({});
  EXPECT_EQ(changes_, 0);
  put({photo_});
  put({photo_});
  EXPECT_EQ(waiting(), Texts{"/r/photo"});
  put({big_});
  put({deep_});
  EXPECT_EQ(waiting(), (Texts{"/r/photo", "/r/big"}));
  EXPECT_EQ(changes_, 2);
}

TEST_F(PendingDeletesTest, AddsWhatIsSelectedBesideTheScannedFolder) {
  put({kRootNode, photo_, late_});
  EXPECT_EQ(waiting().size(), 2u) << "which itself is never deleted";
}

TEST_F(PendingDeletesTest, KeepsTheFolderAroundWhatCouldNotBeTrashed) {
  untrashable_ = {"/r/big/inner"};
  put({inner_});
  pending_.tick(4000);
  put({big_});
  pending_.tick(6000);
  EXPECT_EQ(failures_, Texts{"/r/big/inner: It is stuck."});
  EXPECT_TRUE(pending_.empty()) << "it is told to be where it was, and so it has to stay there";
  EXPECT_EQ(total(), 150u);
  pending_.tick(20'000);
  EXPECT_EQ(trashed_, Texts{});
  put({inner_});
  put({big_});
  pending_.deleteAllNow();
  EXPECT_EQ(trashed_, Texts{});
  EXPECT_EQ(total(), 150u);
}

TEST_F(PendingDeletesTest, AddsNothingWithoutATree) {
  pending_.setTree(nullptr);
  put({photo_});
  EXPECT_TRUE(pending_.empty());
}

// The countdown.

TEST_F(PendingDeletesTest, TrashesAfterTenSecondsOfTicks) {
  put({photo_});
  changes_ = 0;
  EXPECT_FALSE(pending_.tick(9'999));
  EXPECT_EQ(pending_.items()[0].remainingMs, 1);
  EXPECT_EQ(trashed_, Texts{});
  EXPECT_EQ(changes_, 0);
  EXPECT_TRUE(pending_.tick(1));
  EXPECT_EQ(trashed_, Texts{"/r/photo"});
  EXPECT_TRUE(pending_.empty());
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(total(), 100u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, ChangesNothingInATickWithoutTime) {
  EXPECT_FALSE(pending_.tick(100));
  put({photo_});
  changes_ = 0;
  EXPECT_FALSE(pending_.tick(0));
  EXPECT_FALSE(pending_.tick(-5));
  EXPECT_EQ(pending_.items()[0].remainingMs, 10'000);
  EXPECT_EQ(changes_, 0);
}

TEST_F(PendingDeletesTest, CommitsAllInOrderInOneLongTick) {
  put({song_, photo_, late_});
  EXPECT_TRUE(pending_.tick(15'000));
  EXPECT_EQ(trashed_, (Texts{"/r/big/song", "/r/photo", "/r/late"}));
}

TEST_F(PendingDeletesTest, CommitsOnlyThoseWhoseTimeIsUp) {
  put({song_});
  pending_.tick(4'000);
  put({photo_});
  pending_.tick(6'000);
  EXPECT_EQ(trashed_, Texts{"/r/big/song"});
  ASSERT_EQ(waiting(), Texts{"/r/photo"});
  EXPECT_EQ(pending_.items()[0].remainingMs, 4'000);
}

TEST_F(PendingDeletesTest, StandsStillUntilNobodyPausesIt) {
  put({photo_});
  auto first = pending_.pause();
  auto second = pending_.pause();
  EXPECT_FALSE(pending_.tick(60'000));
  first.reset();
  EXPECT_TRUE(pending_.paused());
  EXPECT_FALSE(pending_.tick(60'000));
  second.reset();
  EXPECT_FALSE(pending_.paused());
  EXPECT_FALSE(pending_.tick(9'000));
  EXPECT_EQ(pending_.items()[0].remainingMs, 1'000) << "it goes on where it stopped";
}

// Putting back.

TEST_F(PendingDeletesTest, PutsAnItemBackWithItsSizes) {
  put({inner_});
  pending_.tick(4'000);
  changes_ = 0;
  pending_.undelete(0);
  EXPECT_EQ(total(), 150u);
  EXPECT_EQ(tree_.allocatedSize(inner_), 60u);
  test::expectSumsMatchRecount(tree_);
  EXPECT_EQ(changes_, 1);
  pending_.tick(20'000);
  EXPECT_EQ(trashed_, Texts{});
}

TEST_F(PendingDeletesTest, IgnoresAnItemThatIsNotThere) {
  put({photo_});
  const std::uint64_t id = pending_.items()[0].id;
  changes_ = 0;
  pending_.undelete(1);
  pending_.undelete(pending_.size() - 2);
  pending_.undeleteItem(id + 1);
  pending_.undeleteItem(0);
  EXPECT_EQ(pending_.size(), 1u);
  pending_.undeleteItem(id);
  pending_.undeleteItem(id);
  pending_.undeleteAll();
  pending_.deleteAllNow();
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(trashed_, Texts{});
}

TEST_F(PendingDeletesTest, NeverUsesAnIdAgain) {
  put({photo_});
  const std::uint64_t id = pending_.items()[0].id;
  pending_.undelete(0);
  put({photo_});
  EXPECT_NE(pending_.items()[0].id, id);
  EXPECT_NE(id, 0u);
}

TEST_F(PendingDeletesTest, PutsAllBack) {
  put({song_, photo_, late_});
  changes_ = 0;
  pending_.undeleteAll();
  EXPECT_EQ(total(), 150u);
  EXPECT_TRUE(pending_.empty());
  EXPECT_EQ(changes_, 1);
  test::expectSumsMatchRecount(tree_);
}

// Items inside each other.

TEST_F(PendingDeletesTest, PutsAFolderBackWithoutWhatWaitedBefore) {
  put({deep_});
  put({big_});
  EXPECT_EQ(total(), 50u);
  pending_.undelete(1);
  EXPECT_EQ(waiting(), Texts{"/r/big/inner/deep"});
  EXPECT_EQ(total(), 90u);
  test::expectSumsMatchRecount(tree_);
  pending_.undelete(0);
  EXPECT_EQ(total(), 150u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, TakesTheFolderAlongWhenWhatIsInsideIsRescued) {
  put({deep_});
  put({photo_});
  put({inner_});
  put({big_});
  pending_.undelete(0);
  EXPECT_EQ(waiting(), Texts{"/r/photo"}) << "deep would have gone to the trash with its folder";
  EXPECT_EQ(total(), 100u);
  test::expectSumsMatchRecount(tree_);
  pending_.tick(20'000);
  EXPECT_EQ(trashed_, Texts{"/r/photo"});
}

TEST_F(PendingDeletesTest, TakesNoFolderAlongWhoseNameOnlyBeginsAlike) {
  const NodeId alike = add(tree_, Listing(late_).folder("in").file("inside", 7, 7)).front();
  put({alike + 1});
  put({alike});
  pending_.undelete(0);
  EXPECT_EQ(waiting(), Texts{"/r/late/in"});
}

TEST_F(PendingDeletesTest, TrashesWhatIsInsideBeforeItsFolder) {
  put({deep_});
  put({big_});
  pending_.deleteAllNow();
  EXPECT_EQ(trashed_, (Texts{"/r/big/inner/deep", "/r/big"}));
  EXPECT_EQ(total(), 50u);
  test::expectSumsMatchRecount(tree_);
}

// While the scan goes on.

TEST_F(PendingDeletesTest, PutsAFolderBackWithWhatWasReadMeanwhile) {
  put({late_});
  const NodeId below = add(tree_, Listing(late_).file("a", 5, 5).folder("below")).front();
  EXPECT_EQ(total(), 150u);
  add(tree_, Listing(below).file("b", 7, 7));
  pending_.undelete(0);
  EXPECT_EQ(total(), 162u);
  test::expectSumsMatchRecount(tree_);
}

// Deleting now, and what cannot be deleted.

TEST_F(PendingDeletesTest, DeletesAllNowInOrder) {
  put({song_, photo_});
  changes_ = 0;
  pending_.deleteAllNow();
  EXPECT_EQ(trashed_, (Texts{"/r/big/song", "/r/photo"}));
  EXPECT_TRUE(pending_.empty());
  EXPECT_EQ(changes_, 1);
  pending_.tick(20'000);
  EXPECT_EQ(trashed_.size(), 2u);
}

TEST_F(PendingDeletesTest, BringsBackWhatCannotBeTrashed) {
  untrashable_ = {"/r/big"};
  put({big_, photo_});
  pending_.tick(10'000);
  EXPECT_EQ(trashed_, Texts{"/r/photo"});
  EXPECT_EQ(failures_, Texts{"/r/big: It is stuck."});
  EXPECT_TRUE(pending_.empty()) << "nothing is tried again";
  EXPECT_EQ(total(), 100u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, BringsAllBackWithoutATrash) {
  pending_.trash = nullptr;
  put({photo_});
  pending_.deleteAllNow();
  EXPECT_EQ(total(), 150u);
  ASSERT_EQ(failures_.size(), 1u);
  EXPECT_NE(failures_[0], "/r/photo: ") << "there is a reason";
}

TEST_F(PendingDeletesTest, WorksWithoutCallbacks) {
  PendingDeletes bare([](const std::string&) { return std::optional(ItemIdentity{}); });
  bare.setTree(&tree_);
  bare.add(std::vector{photo_});
  EXPECT_TRUE(bare.tick(10'000));
  EXPECT_EQ(total(), 150u);
}

// Callbacks that use the list.

TEST_F(PendingDeletesTest, MayBeChangedWhileItCommits) {
  put({song_, photo_});
  pending_.tick(5'000);
  put({late_});
  untrashable_ = {"/r/big/song"};
  pending_.failed = [this](const std::string&, const std::string&) {
    pending_.undeleteAll();
    put({deep_});
    pending_.tick(10'000);  // and commits what it has just added
  };
  EXPECT_TRUE(pending_.tick(5'000));
  EXPECT_EQ(trashed_, (Texts{"/r/big/inner/deep", "/r/photo"}));
  EXPECT_TRUE(pending_.empty());
  EXPECT_EQ(total(), 40u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, MayLoseItsTreeWhileItCommits) {
  FileTree other;
  other.createRoot("/other");
  const NodeId same = add(other, Listing(0).folder("x").file("y", 9, 9)).front();
  put({big_});
  untrashable_ = {"/r/big"};
  const auto trash = pending_.trash;
  pending_.trash = [&](const PendingDelete& item, const ItemIdentity& id, std::string* error) {
    pending_.setTree(&other);
    put({same});  // has the same node and serial numbers in the other tree
    return trash(item, id, error);
  };
  pending_.deleteAllNow();
  EXPECT_EQ(waiting(), Texts{"/other/x"});
  EXPECT_FALSE(other.countSubtree(same)) << "it is not put back in the place of the other";
}

// What lies at the path.

TEST_F(PendingDeletesTest, HandsOnWhatLayThereWhenTheItemWasAdded) {
  put({photo_, song_});
  pending_.deleteAllNow();
  EXPECT_EQ(identities_, (std::vector<ItemIdentity>{{3, 8}, {3, 11}}));
}

TEST_F(PendingDeletesTest, ReportsWhatWasGoneWhenItWasAdded) {
  PendingDeletes pending([](const std::string&) {
    errno = ENOENT;
    return std::optional<ItemIdentity>();
  });
  pending.trash = pending_.trash;
  pending.failed = pending_.failed;
  pending.setTree(&tree_);
  pending.add(std::vector{photo_});
  pending.tick(10'000);
  EXPECT_EQ(trashed_, Texts{}) << "nobody knows what came to lie there since";
  EXPECT_EQ(failures_, Texts{"/r/photo: No such file or directory"});
  EXPECT_EQ(total(), 150u);
}

class PendingOnASilentDisk : public PendingDeletesTest {
 protected:
  PendingOnASilentDisk() {
    silent_.trash = pending_.trash;
    silent_.failed = pending_.failed;
    silent_.setTree(&tree_);
  }
  ~PendingOnASilentDisk() override { letGo(); }
  void letGo() {
    if (!std::exchange(answers_, true)) answer_.set_value();
  }
  /// So many that a second for each is longer than any machine stands still.
  std::vector<NodeId> manyItems() {
    constexpr int kItems = 30;
    Listing listing(late_);
    for (int i = 0; i < kItems; ++i) listing.file(std::to_string(i), 0);
    test::add(tree_, listing);
    std::vector<NodeId> items;
    for (NodeId i = 0; i < kItems; ++i) items.push_back(tree_.firstChild(late_) + i);
    return items;
  }
  static constexpr std::chrono::seconds kNotOneByOne{20};

  std::promise<void> answer_;
  bool answers_ = false;
  PendingDeletes silent_{[answer = answer_.get_future().share()](const std::string& path) {
    answer.wait();
    return std::optional(ItemIdentity{3, path.size()});
  }};
};

TEST_F(PendingOnASilentDisk, WaitsForNothingWhenAnItemIsAddedOrPutBack) {
  const std::vector<NodeId> items = manyItems();
  const auto start = Clock::now();
  silent_.add(items);
  silent_.undelete(0);
  silent_.undeleteAll();
  EXPECT_LT(Clock::now() - start, kNotOneByOne);
  EXPECT_EQ(total(), 150u);
}

TEST_F(PendingOnASilentDisk, TrashesNothingAndWaitsASecondInAll) {
  const std::vector<NodeId> items = manyItems();
  silent_.add(items);
  const auto start = Clock::now();
  silent_.deleteAllNow();
  EXPECT_LT(Clock::now() - start, kNotOneByOne);
  EXPECT_EQ(trashed_, Texts{});
  ASSERT_EQ(failures_.size(), items.size());
  EXPECT_EQ(failures_[0], "/r/late/0: The disk that it is on does not answer.");
  EXPECT_EQ(total(), 150u);
}

TEST_F(PendingDeletesTest, WaitsForADiskThatHasToWakeUp) {
  std::promise<void> never;
  PendingDeletes pending([&](const std::string& path) {
    never.get_future().wait_for(std::chrono::milliseconds(50));
    return std::optional(ItemIdentity{3, path.size()});
  });
  pending.trash = pending_.trash;
  pending.setTree(&tree_);
  pending.add(std::vector{photo_});
  pending.deleteAllNow();
  EXPECT_EQ(trashed_, Texts{"/r/photo"});
}

// Folders that are read again, and other trees.

TEST_F(PendingDeletesTest, SettlesWhatWaitsInsideOneFolder) {
  const auto fill = [&] { put({deep_, song_, photo_}); };
  fill();
  EXPECT_EQ(pending_.countWithin("/r/big"), 2u);
  EXPECT_EQ(pending_.countWithin("/r"), 3u);
  EXPECT_EQ(pending_.countWithin("/"), 3u);
  EXPECT_EQ(pending_.countWithin("/r/bi"), 0u);
  EXPECT_EQ(pending_.countWithin("/r/photo"), 0u) << "it is not inside itself";
  pending_.undeleteWithin("/r/big");
  EXPECT_EQ(waiting(), Texts{"/r/photo"});
  EXPECT_EQ(total(), 100u);
  pending_.undeleteAll();
  fill();
  pending_.deleteNowWithin("/r/big");
  EXPECT_EQ(trashed_, (Texts{"/r/big/inner/deep", "/r/big/song"}));
  EXPECT_EQ(waiting(), Texts{"/r/photo"});
}

TEST_F(PendingDeletesTest, DoesNothingToAFolderThatWasReadAgainUnsettled) {
  put({song_});
  ASSERT_TRUE(tree_.dropContents(big_));
  add(tree_, Listing(big_).file("song", 40, 40).file("new", 1, 1));
  EXPECT_EQ(total(), 91u);
  pending_.undelete(0);
  EXPECT_EQ(total(), 91u);
  test::expectSumsMatchRecount(tree_);
}

TEST_F(PendingDeletesTest, ForgetsWhatWaitsWhenAnotherTreeIsShown) {
  put({photo_});
  changes_ = 0;
  pending_.setTree(&tree_);
  EXPECT_EQ(pending_.size(), 1u);
  FileTree other;
  pending_.setTree(&other);
  EXPECT_TRUE(pending_.empty());
  EXPECT_EQ(changes_, 1);
  pending_.tick(20'000);
  EXPECT_EQ(trashed_, Texts{}) << "it stays where it is";
}

}  // namespace
}  // namespace app
