#include "app/treemap_view.h"

#include <gtest/gtest.h>

#include "app/cushion_shading.h"
#include "tests/app/map_tree.h"
#include "tests/ui/window_test_base.h"

namespace app {
namespace {

using sizewalk::kRootNode;

constexpr ui::Rect kPlace{20, 10, 120, 80};

/// A view of a tree of two files, in a window of 200 x 100.
class TreemapViewTest : public test::WindowTest {
 protected:
  TreemapViewTest() {
    test::fillRoot(tree_, {test::file(1000, 5), {.kind = 6, .apparent = 10, .allocated = 1000}});
    view_.setRect(kPlace);
  }

  /// What the view leaves on white ground.
  test::Picture painted() {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, 0xFFFFFFFF);
      view_.paint(canvas);
    });
  }

  sizewalk::FileTree tree_{test::mapTreeOptions()};
  KindColours colours_{true};
  TreemapView view_{colours_};
};

/// White around `kPlace`, `inside` in it.
void expectPlaceFilledWith(const test::Picture& picture, std::uint32_t inside) {
  EXPECT_EQ(picture.count(inside), kPlace.w * kPlace.h);
  EXPECT_EQ(picture.at(kPlace.x, kPlace.y), inside);
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPlace.w * kPlace.h);
}

TEST_F(TreemapViewTest, PaintsTheBackgroundInItsPlaceBeforeTheFirstPicture) {
  EXPECT_FALSE(view_.update()) << "nothing is shown";
  expectPlaceFilledWith(painted(), kMapBackground);
  view_.show(&tree_, kRootNode);
  expectPlaceFilledWith(painted(), kMapBackground);
}

TEST_F(TreemapViewTest, PaintsTheLastPictureInItsPlace) {
  view_.show(&tree_, kRootNode);
  ASSERT_TRUE(view_.update());
  const test::Picture picture = painted();
  ASSERT_EQ(view_.rendered().pixels.size(), static_cast<std::size_t>(kPlace.w * kPlace.h));
  for (int y = 0; y < kPlace.h; ++y) {
    for (int x = 0; x < kPlace.w; ++x) {
      ASSERT_EQ(picture.at(kPlace.x + x, kPlace.y + y),
                view_.rendered().pixels[static_cast<std::size_t>(y * kPlace.w + x)]);
    }
  }
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPlace.w * kPlace.h);
}

TEST_F(TreemapViewTest, MakesNoNewPictureWhenNothingChanged) {
  view_.show(&tree_, kRootNode);
  EXPECT_TRUE(view_.update());
  EXPECT_FALSE(view_.update());
  view_.setRect(kPlace);
  view_.setMeasure({});
  EXPECT_FALSE(view_.update());
}

TEST_F(TreemapViewTest, MakesANewPictureOfANewSizeButNotOfANewPlace) {
  view_.show(&tree_, kRootNode);
  view_.update();
  view_.setRect({0, 0, kPlace.w, kPlace.h});
  EXPECT_FALSE(view_.update());
  view_.setRect({0, 0, 150, 90});
  EXPECT_TRUE(view_.update());
  EXPECT_EQ(view_.rendered().width, 150);
  EXPECT_EQ(view_.rendered().height, 90);
}

TEST_F(TreemapViewTest, PaintsTheBackgroundUntilThereIsAPictureOfTheNewSize) {
  view_.show(&tree_, kRootNode);
  view_.setRect({0, 0, 50, 50});
  view_.update();
  view_.setRect(kPlace);
  expectPlaceFilledWith(painted(), kMapBackground);
}

TEST_F(TreemapViewTest, MakesANewPictureWhenItIsMarkedOrMeasuresOtherwise) {
  view_.show(&tree_, kRootNode);
  view_.update();
  const auto byLength = view_.rendered().pixels;
  view_.markDirty();
  EXPECT_TRUE(view_.update());
  EXPECT_EQ(view_.rendered().pixels, byLength);
  view_.setMeasure({Measure::CurrentSize, true});
  EXPECT_TRUE(view_.update());
  EXPECT_NE(view_.rendered().pixels, byLength);
}

TEST_F(TreemapViewTest, MakesNoPictureWithoutAreaAndKeepsItDue) {
  view_.setRect({0, 0, 0, 80});
  view_.show(&tree_, kRootNode);
  EXPECT_FALSE(view_.update());
  view_.setRect(kPlace);
  EXPECT_TRUE(view_.update());
}

TEST_F(TreemapViewTest, ForgetsItsPictureWhenNothingIsShownAnyMore) {
  view_.show(&tree_, kRootNode);
  view_.update();
  view_.show(nullptr, kRootNode);
  EXPECT_FALSE(view_.update());
  expectPlaceFilledWith(painted(), kMapBackground);
}

}  // namespace
}  // namespace app
