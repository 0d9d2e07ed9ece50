// Frames that paint and show a part of the window alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "tests/ui/window_test_base.h"

namespace test {
namespace {

using ui::Rect;

constexpr ui::Colour kPainted = 0xFF123456;
constexpr unsigned long kScribble = 0xABCDEF;

class PartialFrame : public WindowTest {
 protected:
  explicit PartialFrame(const XServerOptions& options = {}) : WindowTest(options) {}

  /// A window that is painted in one colour over and over, and writes down which parts are.
  void showPainted(int width = 200, int height = 100) {
    window.onPaint = [this](ui::Canvas& canvas) {
      parts.push_back(canvas.clip());
      canvas.fillRect({0, 0, canvas.width(), canvas.height()}, colour);
    };
    show(width, height);
    settle();
    parts.clear();
  }
  /// How many pixels of the screen have that colour.
  long seen(unsigned long pixel) {
    return std::ranges::count(
        other.screenPixels(window.xid(), 0, 0, window.width(), window.height()), pixel);
  }

  ui::Colour colour = kPainted;
  std::vector<Rect> parts;
};

TEST_F(PartialFrame, PaintsTheInvalidatedRectangleAlone) {
  showPainted();
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{10, 20, 30, 40}}));
}

TEST_F(PartialFrame, ShowsTheInvalidatedRectangleAlone) {
  showPainted();
  other.scribbleOver(window.xid(), kScribble);
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 30 * 40);
  EXPECT_EQ(seen(kScribble), 200 * 100 - 30 * 40);
  EXPECT_EQ(other.screenPixel(window.xid(), 10, 20), kPainted & 0xFFFFFF);
  EXPECT_EQ(other.screenPixel(window.xid(), 39, 59), kPainted & 0xFFFFFF);
}

TEST_F(PartialFrame, LeavesTheRestOfTheFrameAsItWas) {
  showPainted();
  colour = 0xFF654321;
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  const Picture frame = capture();
  EXPECT_EQ(frame.count(0x654321), 30 * 40);
  EXPECT_EQ(frame.count(kPainted & 0xFFFFFF), 200 * 100 - 30 * 40);
}

TEST_F(PartialFrame, PaintsRectanglesFarFromEachOtherOneByOne) {
  showPainted(1000, 600);
  other.scribbleOver(window.xid(), kScribble);
  window.invalidate(Rect{0, 0, 10, 10});
  window.invalidate(Rect{900, 500, 10, 10});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{0, 0, 10, 10}, {900, 500, 10, 10}}));
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 200);
}

TEST_F(PartialFrame, PaintsAllWhereThatIsAskedForAsWell) {
  showPainted();
  window.invalidate(Rect{10, 20, 30, 40});
  window.invalidate();
  window.invalidate(Rect{50, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{0, 0, 200, 100}}));
}

TEST_F(PartialFrame, NeedsNoFrameForAnEmptyRectangle) {
  showPainted();
  int prepared = 0;
  window.onPrepare = [&] { ++prepared; };
  window.invalidate(Rect{});
  window.invalidate(Rect{5, 5, 0, 10});
  window.invalidate(Rect{5, 5, 10, -1});
  settle();
  EXPECT_EQ(prepared, 0);
  EXPECT_TRUE(parts.empty());
}

TEST_F(PartialFrame, PaintsNothingOutsideTheWindow) {
  showPainted();
  window.invalidate(Rect{200, 0, 50, 50});
  window.invalidate(Rect{-60, -60, 50, 50});
  settle();
  EXPECT_TRUE(parts.empty());
  window.invalidate(Rect{190, 90, 50, 50});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{190, 90, 10, 10}}));
}

TEST_F(PartialFrame, PaintsAllTheFirstTimeWhateverWasInvalidatedBefore) {
  window.invalidate(Rect{10, 20, 30, 40});
  window.onPaint = [this](ui::Canvas& canvas) { parts.push_back(canvas.clip()); };
  show(200, 100);
  ASSERT_FALSE(parts.empty());
  EXPECT_EQ(parts.front(), (Rect{0, 0, 200, 100}));
}

TEST_F(PartialFrame, KeepsWhatIsInvalidatedBeforeTheWindowIsShown) {
  ASSERT_TRUE(window.create("Window under test", 200, 100));
  window.onPaint = [this](ui::Canvas& canvas) {
    parts.push_back(canvas.clip());
    canvas.fillRect({0, 0, 200, 100}, colour);
  };
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{0, 0, 200, 100}}));
  window.show();
  ASSERT_TRUE(runUntil([&] { return parts.size() > 1; }));
  settle();
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 200 * 100);
}

TEST_F(PartialFrame, PaintsAllOfANewSize) {
  showPainted();
  window.invalidate(Rect{10, 20, 30, 40});
  other.resizeWindow(window.xid(), 150, 120);
  settle();
  EXPECT_EQ(parts.front(), (Rect{0, 0, 150, 120}));
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 150 * 120);
}

TEST_F(PartialFrame, PaintsWhatIsInvalidatedWhileItIsPreparedInThatFrame) {
  showPainted();
  int prepared = 0;
  window.onPrepare = [&] {
    ++prepared;
    window.invalidate(Rect{10, 20, 30, 40});
  };
  window.requestFrame();
  settle();
  EXPECT_EQ(prepared, 1);
  EXPECT_EQ(parts, (std::vector<Rect>{{10, 20, 30, 40}}));
}

TEST_F(PartialFrame, PaintsWhatIsInvalidatedWhileItIsPaintedInTheNextFrame) {
  showPainted();
  window.onPaint = [&](ui::Canvas& canvas) {
    parts.push_back(canvas.clip());
    if (parts.size() == 1) window.invalidate(Rect{1, 2, 3, 4});
  };
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{10, 20, 30, 40}, {1, 2, 3, 4}}));
}

TEST_F(PartialFrame, PaintsAllInTheNextFrameWhenThatIsAskedForWhilePreparing) {
  showPainted();
  bool first = true;
  window.onPrepare = [&] {
    if (std::exchange(first, false)) window.invalidate();
  };
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{10, 20, 30, 40}, {0, 0, 200, 100}}));
}

TEST_F(PartialFrame, WithNothingToPaintIsPreparedAlone) {
  showPainted();
  int prepared = 0;
  window.onPrepare = [&] { ++prepared; };
  other.scribbleOver(window.xid(), kScribble);
  window.requestFrame();
  settle();
  EXPECT_EQ(prepared, 1);
  EXPECT_TRUE(parts.empty());
  EXPECT_EQ(seen(kScribble), 200 * 100);
}

TEST_F(PartialFrame, ShowsAgainWhatAnotherWindowHadCovered) {
  showPainted(600, 400);
  const unsigned long cover = other.showWindow();  // 300 x 200
  settle();
  parts.clear();
  other.destroyWindow(cover);
  ASSERT_TRUE(runUntil([&] { return !parts.empty(); }));
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{0, 0, 300, 200}}));
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 600 * 400);
}

class PartialFrameOnDenseScreen : public PartialFrame {
 protected:
  PartialFrameOnDenseScreen() : PartialFrame({.resources = "Xft.dpi:\t192\n"}) {}
};

TEST_F(PartialFrameOnDenseScreen, TakesDevicePixels) {
  showPainted();
  ASSERT_EQ(connection->scale(), 2);
  other.scribbleOver(window.xid(), kScribble);
  window.invalidate(Rect{10, 20, 30, 40});
  settle();
  EXPECT_EQ(parts, (std::vector<Rect>{{10, 20, 30, 40}}));
  EXPECT_EQ(seen(kPainted & 0xFFFFFF), 30 * 40);
}

}  // namespace
}  // namespace test
