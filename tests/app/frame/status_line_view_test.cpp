// The status line in a window.

#include "app/frame/status_line.h"
#include "tests/ui/widgets/views_on_window.h"

namespace app {
namespace {

using test::rgb;

constexpr ui::Rect kStatusPlace = {0, 60, 400, 24};

class StatusLineTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  test::Picture picture() {
    return ViewsOnWindow::picture(400, 100, [&](ui::Canvas& canvas) { line.paint(canvas); });
  }
  /// Whether `act` made the line ask for a frame.
  bool changedBy(const std::function<void()>& act) {
    int changes = 0;
    line.onChanged = [&] { ++changes; };
    act();
    line.onChanged = nullptr;
    return changes > 0;
  }
  StatusLine line{style};
};

TEST_F(StatusLineTest, FillsItsRectUnderALineInTheBorderColour) {
  line.setRect(kStatusPlace);
  const test::Picture shown = picture();
  EXPECT_EQ(shown.count(rgb(style.palette().border)), 400);
  EXPECT_EQ(shown.at(0, 60), rgb(style.palette().border));
  EXPECT_EQ(shown.at(399, 60), rgb(style.palette().border));
  EXPECT_EQ(shown.count(rgb(style.palette().window)), 400 * 23);
  EXPECT_EQ(shown.at(0, 59), rgb(test::kNothingDrawn));
  EXPECT_EQ(shown.at(0, 84), rgb(test::kNothingDrawn));
}

TEST_F(StatusLineTest, DrawsBothTexts) {
  line.setRect(kStatusPlace);
  line.setTexts("1.20 GB in 12,345 items", {"/home/u"});
  const test::Picture shown = picture();
  int left = 0;
  int right = 0;
  for (int y = 61; y < 84; ++y) {
    for (int x = 0; x < 400; ++x) {
      if (shown.at(x, y) != rgb(style.palette().window)) ++(x < 200 ? left : right);
    }
  }
  EXPECT_GT(left, 50);
  EXPECT_GT(right, 20);
}

TEST_F(StatusLineTest, SaysWhetherItChanged) {
  EXPECT_TRUE(changedBy([&] { line.setRect(kStatusPlace); }));
  EXPECT_FALSE(changedBy([&] { line.setRect(kStatusPlace); }));
  EXPECT_TRUE(changedBy([&] { line.setTexts("left", {"right"}); }));
  EXPECT_FALSE(changedBy([&] { line.setTexts("left", {"right"}); }));
  EXPECT_TRUE(changedBy([&] { line.setTexts("left", {"other"}); }));
}

TEST_F(StatusLineTest, MakesAPathOfBrokenBytesReadable) {
  line.setRect(kStatusPlace);
  line.setTexts("", {"/caf\xe9"});
  EXPECT_EQ(line.layout().rightText, "/caf\\351");
}

}  // namespace
}  // namespace app
