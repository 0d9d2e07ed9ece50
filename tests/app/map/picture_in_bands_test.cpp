// A large picture from the background on its way to the X server.

#include "tests/app/map/background_picture_fixture.h"

namespace app {
namespace {

using sizewalk::kRootNode;

TEST_F(BackgroundPictureTest, SendsALargePictureInBandsAndShowsItOnceAllAreThere) {
  makeLargeInBackground();
  const std::vector<std::uint32_t> lastPixels = picture_.rendered().pixels;
  const std::vector<std::uint32_t> lastSeen = seenOf(picture_);
  for (int turn = 0; turn < kBandsOfLarge; ++turn) {
    tasks_.run();
    EXPECT_EQ(tasks_.count(), 1U) << "each band has a turn of its own";
    EXPECT_FALSE(picture_.update());
    EXPECT_FALSE(picture_.due());
    EXPECT_TRUE(picture_.behind());
    EXPECT_TRUE(picture_.rendered().pixels == lastPixels);
    EXPECT_TRUE(turn % 8 != 0 || seenOf(picture_) == lastSeen) << turn;
    EXPECT_EQ(told_, 0);
  }
  tasks_.run();
  EXPECT_EQ(tasks_.count(), 0U);
  EXPECT_EQ(told_, 1);
  EXPECT_TRUE(picture_.rendered().pixels == lastPixels) << "that is what is on the screen";
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.behind());
  EXPECT_TRUE(picture_.rendered().pixels == drawnAtOnce(kLargePlace, kRootNode));
  EXPECT_FALSE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce({}));
  EXPECT_FALSE(seenOf(picture_) == lastSeen);
}

TEST_F(BackgroundPictureTest, OutlinesInEveryBandWhatIsSelected) {
  const std::vector<sizewalk::NodeId> selected = {tree_.firstChild(kRootNode), folders_[0]};
  picture_.setSelected(selected);
  makeLargeInBackground();
  tasks_.runAll();
  picture_.update();
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce(selected));
  EXPECT_FALSE(seenOf(picture_) == seenAtOnce({}));
}

TEST_F(BackgroundPictureTest, FollowsTheSelectionWhileBandsAreSent) {
  const std::vector<sizewalk::NodeId> selected = {tree_.firstChild(kRootNode)};
  makeLargeInBackground();
  const std::vector<std::uint32_t> before = seenOf(picture_);
  tasks_.run();
  tasks_.run();
  picture_.setSelected(selected);
  EXPECT_FALSE(picture_.update());
  EXPECT_FALSE(seenOf(picture_) == before) << "it is seen at once on the last picture";
  tasks_.runAll();
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce(selected));
}

TEST_F(BackgroundPictureTest, FollowsTheHighlightedKindWhileBandsAreSent) {
  makeLargeInBackground();
  tasks_.run();
  tasks_.run();
  picture_.setHighlight(sizewalk::KindIndex{6});
  picture_.update();
  tasks_.runAll();
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce({}, sizewalk::KindIndex{6}));
}

TEST_F(BackgroundPictureTest, GivesUpWhatIsOnItsWayWhereSomethingElseIsToBeSeen) {
  makeLargeInBackground();
  tasks_.run();
  tasks_.run();
  picture_.show(shownTree_, folders_[0]);
  EXPECT_TRUE(picture_.update());
  const std::vector<std::uint32_t> inside = drawnAtOnce(kLargePlace, folders_[0]);
  EXPECT_TRUE(picture_.rendered().pixels == inside);
  tasks_.runAll();
  EXPECT_EQ(told_, 0);
  EXPECT_FALSE(picture_.update());
  EXPECT_TRUE(picture_.rendered().pixels == inside);
}

TEST_F(BackgroundPictureTest, GivesUpWhatIsOnItsWayWhenTheTreeGrowsNoMore) {
  picture_.setGrowing(true);
  picture_.setRect(kLargePlace);
  picture_.update();
  growTree();
  ASSERT_TRUE(test::eventually([&] {
    picture_.update();
    return tasks_.count() == 1;
  }));
  tasks_.run();
  tasks_.run();
  picture_.setGrowing(false);
  tasks_.runAll();
  EXPECT_EQ(told_, 0);
  EXPECT_TRUE(picture_.due()) << "the last one is to be made";
}

TEST_F(BackgroundPictureTest, LeavesNothingBehindThatUsesItOnceItIsDestroyed) {
  {
    TreemapPicture second(*connection, colours_, tasks_.post());
    second.setRect(kLargePlace);
    second.show(shownTree_, kRootNode);
    second.update();
    second.markOutdated();
    second.update();
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    tasks_.run();
    ASSERT_EQ(tasks_.count(), 1U) << "the first band";
  }
  tasks_.runAll();
}

}  // namespace
}  // namespace app
