// The picture of a tree that grows, in another size.

#include "app/map/cushion_shading.h"
#include "tests/app/map/background_picture_fixture.h"

namespace app {
namespace {

using sizewalk::kRootNode;

TEST_F(BackgroundPictureTest, KeepsItsLastSizeWhileTheTreeGrowsUntilTheNewOneIsThere) {
  picture_.setGrowing(true);
  for (const ui::Rect& place : {ui::Rect{0, 0, 150, 90}, ui::Rect{0, 0, 70, 90}}) {
    const std::vector<std::uint32_t> before = picture_.rendered().pixels;
    const int width = picture_.rendered().width;
    const int height = picture_.rendered().height;
    picture_.setRect(place);
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(picture_.update()) << "one at a time";
    EXPECT_TRUE(picture_.behind());
    EXPECT_EQ(&picture_.shownColours(), &picture_.rendered().kindColours);
    const test::Picture seen = paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, 0xFFFFFFFF);
      picture_.paint(canvas);
    });
    for (int y = 0; y < 100; ++y) {
      for (int x = 0; x < 200; ++x) {
        const bool inside = x < place.w && y < place.h;
        const auto at = static_cast<std::size_t>(y * width + x);
        const std::uint32_t expected = !inside                   ? 0xFFFFFF
                                       : x < width && y < height ? before[at]
                                                                 : kMapBackground;
        ASSERT_EQ(seen.at(x, y), expected) << x << " " << y;
      }
    }
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    tasks_.run();
    EXPECT_TRUE(picture_.update());
    EXPECT_FALSE(picture_.behind());
    EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(place, kRootNode));
  }
}

TEST_F(BackgroundPictureTest, FollowsAnEdgeThatIsDraggedOnWhileTheTreeGrows) {
  picture_.setGrowing(true);
  picture_.setRect({0, 0, 130, 90});
  picture_.update();
  for (const int width : {140, 150}) {
    picture_.setRect({0, 0, width, 90});
    EXPECT_FALSE(picture_.update());
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    tasks_.run();
    EXPECT_TRUE(picture_.update());
    EXPECT_EQ(picture_.rendered().width, width - 10) << "what was begun is seen first";
  }
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  picture_.update();
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce({0, 0, 150, 90}, kRootNode));
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, TakesItsNewSizeAtOnceWhereTheTreeHasEndedGrowing) {
  picture_.setGrowing(true);
  const ui::Rect larger = {0, 0, 150, 90};
  picture_.setRect(larger);
  EXPECT_FALSE(picture_.update());
  picture_.setGrowing(false);
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, kRootNode));
  EXPECT_TRUE(picturesHaveEnded());
}

TEST_F(BackgroundPictureTest, ShowsAnotherFolderOfAGrowingTreeAtOnceInItsNewSize) {
  picture_.setGrowing(true);
  const ui::Rect larger = {0, 0, 150, 90};
  picture_.setRect(larger);
  EXPECT_FALSE(picture_.update());
  picture_.show(shownTree_, folders_[0]);
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, folders_[0]));
  ASSERT_TRUE(picturesHaveEnded());
  tasks_.run();
  EXPECT_EQ(picture_.rendered().root, folders_[0]) << "that of the other folder is of no use";
}

TEST_F(BackgroundPictureTest, KeepsAPictureThatFitsWhereThatOfASizeBetweenCameLater) {
  picture_.setGrowing(true);
  picture_.setRect({0, 0, 150, 90});
  picture_.update();
  picture_.setRect(kPicturePlace);
  picture_.update();
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_FALSE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, kRootNode));
  EXPECT_TRUE(picture_.behind()) << "the tree may have grown since the last one";
}

TEST_F(BackgroundPictureTest, DoesNotHaveAnotherSizeWaitForAPictureOfTheLast) {
  picture_.setGrowing(true);
  makeInBackground();
  const ui::Rect larger = {0, 0, 150, 90};
  picture_.setRect(larger);
  EXPECT_FALSE(picture_.update());
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 2; }));
  tasks_.run();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, kRootNode));
}

TEST_F(BackgroundPictureTest, SendsAPictureOfAnotherSizeInBandsWhileTheTreeGrows) {
  picture_.setGrowing(true);
  picture_.setRect(kLargePlace);
  EXPECT_FALSE(picture_.update());
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_EQ(tasks_.count(), 1U) << "the first band";
  EXPECT_EQ(picture_.rendered().width, kPicturePlace.w);
  tasks_.runAll();
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce({}));
}

TEST_F(BackgroundPictureTest, FollowsSelectionAndHighlightInAPictureThatDoesNotFit) {
  picture_.setGrowing(true);
  picture_.setRect(kLargePlace);
  picture_.update();
  const std::vector<std::uint32_t> plain = seenOf(picture_);
  picture_.setSelected(std::vector{folders_[0]});
  picture_.update();
  const std::vector<std::uint32_t> outlined = seenOf(picture_);
  EXPECT_FALSE(outlined == plain);
  picture_.setHighlight(sizewalk::KindIndex{6});
  picture_.update();
  EXPECT_FALSE(seenOf(picture_) == outlined);
  EXPECT_EQ(picture_.rendered().width, kPicturePlace.w);
}

}  // namespace
}  // namespace app
