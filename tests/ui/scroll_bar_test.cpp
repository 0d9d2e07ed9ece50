#include "ui/scroll_bar.h"

#include "tests/ui/window_test_base.h"

namespace ui {
namespace {

constexpr Colour kTrack = 0xFF102030;
constexpr Colour kThumb = 0xFFA0B0C0;

class ScrollBarTest : public test::WindowTest {
 protected:
  test::Picture painted(int contentHeight, int offset = 0) {
    Scroller scroller;
    scroller.setView({20, 10, 100, 80});
    scroller.setContentHeight(contentHeight);
    scroller.scrollTo(offset);
    return paint([&](Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, 0xFFFFFFFF);
      drawScrollBar(canvas, scroller, kTrack, kThumb);
    });
  }
};

TEST_F(ScrollBarTest, IsATrackWithAThumbInsetByTwoPixels) {
  const test::Picture picture = painted(160);
  EXPECT_EQ(picture.at(109, 50), 0xFFFFFFu);
  EXPECT_EQ(picture.at(110, 10), 0x102030u);
  EXPECT_EQ(picture.at(119, 89), 0x102030u);
  EXPECT_EQ(picture.at(120, 50), 0xFFFFFFu);
  EXPECT_EQ(picture.at(115, 11), 0x102030u);
  EXPECT_EQ(picture.at(115, 12), 0xA0B0C0u);
  EXPECT_EQ(picture.at(111, 30), 0x102030u);
  EXPECT_EQ(picture.at(112, 30), 0xA0B0C0u);
  EXPECT_EQ(picture.at(117, 30), 0xA0B0C0u);
  EXPECT_EQ(picture.at(118, 30), 0x102030u);
  EXPECT_EQ(picture.at(115, 47), 0xA0B0C0u);
  EXPECT_EQ(picture.at(115, 48), 0x102030u);
  EXPECT_EQ(picture.at(112, 12), 0x102030u) << "its corners are round";
}

TEST_F(ScrollBarTest, FollowsTheContent) {
  const test::Picture picture = painted(160, 80);
  EXPECT_EQ(picture.at(115, 20), 0x102030u);
  EXPECT_EQ(picture.at(115, 87), 0xA0B0C0u);
}

TEST_F(ScrollBarTest, IsNotThereWhenAllIsInView) {
  EXPECT_EQ(painted(80).count(0xFFFFFF), 200 * 100);
}

}  // namespace
}  // namespace ui
