// Pictures where memory is not to be had.

#include <limits>

#include "tests/app/map/background_picture_fixture.h"
#include "tests/app/map/memory_elsewhere.h"

namespace app {
namespace {

using sizewalk::kRootNode;

/// Large enough for a picture, and for nothing else that its thread needs.
constexpr std::size_t kPictureBytes = std::size_t{4} * kPicturePlace.w * kPicturePlace.h;

TEST_F(BackgroundPictureTest, TriesAgainWhereThereWasNoMemoryForThePicture) {
  growTree();
  {
    const test::NoMemoryElsewhere none(kPictureBytes);
    ASSERT_FALSE(picture_.update());
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    ASSERT_TRUE(picturesHaveEnded());
  }
  tasks_.run();
  EXPECT_EQ(told_, 0) << "there is nothing new to be shown";
  ASSERT_TRUE(picture_.due());
  EXPECT_FALSE(picture_.update());
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_EQ(told_, 1);
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, kRootNode));
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, DrawsAtOnceInTheEndWhereThereIsNoMemoryInTheBackground) {
  const test::NoMemoryElsewhere none(kPictureBytes);
  const std::vector<std::uint32_t> last = picture_.rendered().pixels;
  growTree();
  int tries = 0;
  while (picture_.due() && !picture_.update()) {
    ASSERT_LT(++tries, 10);
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    EXPECT_EQ(picture_.rendered().pixels, last);
    tasks_.run();
  }
  EXPECT_GT(tries, 1);
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, kRootNode));
  EXPECT_NE(picture_.rendered().pixels, last);
  EXPECT_FALSE(picture_.behind());
}

TEST_F(TreemapPictureTest, TriesAgainLaterWhereThereWasNoMemoryOnTheSpot) {
  picture_.show(shownTree_, kRootNode);
  {
    const test::NoMemory none(kPictureBytes);
    EXPECT_FALSE(picture_.update());
    EXPECT_TRUE(picture_.due());
    EXPECT_FALSE(picture_.update());
  }
  EXPECT_TRUE(picture_.due());
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(picture_.rendered().blockUnder(0, 0), nullptr);
  EXPECT_FALSE(picture_.behind());
}

TEST_F(TreemapPictureTest, SendsItsPictureLaterWhereThereIsNoMemoryToOutlineTheSelection) {
  picture_.show(shownTree_, kRootNode);
  ASSERT_TRUE(picture_.update());
  const test::Picture plain = painted();
  picture_.setHighlight(sizewalk::KindIndex{6});
  {
    const test::NoMemory none(kPictureBytes);
    EXPECT_FALSE(picture_.update());
    EXPECT_TRUE(picture_.due());
  }
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(painted().at(100, 50), plain.at(100, 50));
}

TEST_F(BackgroundPictureTest, DoesNotTryAgainWhatWasOvertaken) {
  const test::NoMemoryElsewhere none(kPictureBytes);
  growTree();
  ASSERT_FALSE(picture_.update());
  picture_.markDirty();
  ASSERT_TRUE(picture_.update());
  ASSERT_TRUE(picturesHaveEnded());
  tasks_.run();
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, TakesItsNewSizeAtOnceWhereThereIsNoMemoryInTheBackground) {
  picture_.setRect({0, 0, 1500, 1000});  // takes a few milliseconds
  picture_.update();
  picture_.setGrowing(true);
  makeInBackground();
  tasks_.runAll();
  picture_.update();
  const ui::Rect larger = {0, 0, 1600, 1000};
  picture_.setRect(larger);
  const test::NoMemoryElsewhere none(kPictureBytes);
  EXPECT_FALSE(picture_.update());
  EXPECT_FALSE(picture_.due()) << "it is being made";
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_TRUE(picture_.due()) << "whatever pictures have taken before";
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, kRootNode));
}

TEST_F(BackgroundPictureTest, EndsWithoutAPictureWhereThereIsNoMemoryForOne) {
  constexpr int kMost = std::numeric_limits<int>::max();
  BackgroundRender render(tasks_.post());
  int ends = 0;
  render.onEnded = [&](const auto& picture, BackgroundRender::Duration) {
    EXPECT_FALSE(picture);
    ++ends;
  };
  ASSERT_TRUE(render.start({shownTree_, kRootNode, kMost, kMost, colours_, {}, {}, {}}));
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  EXPECT_TRUE(render.busy());
  tasks_.run();
  EXPECT_FALSE(render.busy());
  EXPECT_EQ(ends, 1);
}

}  // namespace
}  // namespace app
