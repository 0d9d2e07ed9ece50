#include "app/frame/divider.h"

#include <optional>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"

namespace app {
namespace {

using enum Divider::Direction;
using Shares = std::vector<std::optional<double>>;

constexpr ui::Rect kBefore = {0, 40, 400, 500};
constexpr ui::Rect kLine = {400, 40, 5, 500};
constexpr ui::Rect kAfter = {405, 40, 600, 500};

class DividerTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  DividerTest() {
    divider.onMoved = [this](std::optional<double> share) { shares.push_back(share); };
    divider.setRect(kLine);
    divider.setPanes(Across, kBefore, kAfter, 0.4);
  }

  void press(int clicks = 1, int button = 1) {
    divider.press({.x = kLine.x + 1, .y = 100, .button = button, .clicks = clicks});
  }
  void drag(int x, int y = 300) { divider.motion({.x = x, .y = y}); }

  Divider divider{style};
  Shares shares;
};

TEST_F(DividerTest, FollowsThePointerWhereItWasTakenHoldOf) {
  press();
  drag(501);
  drag(101);
  EXPECT_EQ(shares, (Shares{0.5, 0.1}));
  divider.release({.button = 1});
  shares.clear();
  drag(600);
  EXPECT_TRUE(shares.empty());
}

TEST_F(DividerTest, StaysWhereItIsSeenWhenItIsLetGoFurtherOff) {
  press();
  drag(-50);
  divider.setPanes(Across, {0, 40, 200, 500}, {205, 40, 800, 500}, 0.0);
  divider.release({.button = 1});
  EXPECT_EQ(shares, (Shares{0.0, 0.2}));
}

TEST_F(DividerTest, KeepsItsOwnPlaceWhenItIsOnlyPressed) {
  divider.setPanes(Across, kBefore, kAfter, {});
  press();
  divider.release({.button = 1});
  EXPECT_TRUE(shares.empty());
}

TEST_F(DividerTest, GoesBackToWhereItsDragBegan) {
  for (const std::optional<double> place : {std::optional(0.4), std::optional<double>()}) {
    const auto begin = [&] {
      divider.setPanes(Across, kBefore, kAfter, place);
      press();
      drag(501);
      divider.setPanes(Across, {0, 40, 500, 500}, {505, 40, 500, 500}, 0.5);
      shares.clear();
    };
    begin();
    EXPECT_TRUE(divider.takeBack());
    EXPECT_EQ(shares, Shares{place});
    EXPECT_FALSE(divider.takeBack()) << "nothing is held any more";
    begin();
    press(1, 3);
    EXPECT_EQ(shares, Shares{place});
    begin();
    divider.pointerLost();
    EXPECT_EQ(shares, Shares{place});
  }
}

TEST_F(DividerTest, DoesNothingMoreOnceItWasTakenBack) {
  press();
  drag(501);
  divider.takeBack();
  shares.clear();
  drag(600);
  press(1, 3);
  divider.release({.button = 3});
  divider.pointerLost();
  divider.release({.button = 1});
  EXPECT_TRUE(shares.empty());
}

TEST_F(DividerTest, HasNothingToTakeBackOutsideOfADrag) {
  EXPECT_FALSE(divider.takeBack());
  press(1, 3);
  divider.pointerLost();
  EXPECT_FALSE(divider.takeBack());
  EXPECT_TRUE(shares.empty());
}

TEST_F(DividerTest, MovesDownBetweenPanesOneAboveTheOther) {
  divider.setRect({0, 240, 300, 5});
  divider.setPanes(Down, {0, 40, 300, 200}, {0, 245, 300, 300}, 0.4);
  divider.press({.x = 10, .y = 242, .button = 1});
  drag(77, 292);
  EXPECT_EQ(shares, (Shares{0.5}));
}

TEST_F(DividerTest, StaysBetweenItsPanes) {
  press();
  drag(-50);
  drag(5000);
  EXPECT_EQ(shares, (Shares{0.0, 1.0}));
}

TEST_F(DividerTest, GoesBackToItsOwnPlaceOnADoublePress) {
  press();
  press(2);
  EXPECT_EQ(shares, Shares{std::nullopt});
  drag(600);
  EXPECT_EQ(shares.size(), 1u) << "nothing is held";
}

TEST_F(DividerTest, IsHeldByThePrimaryButtonAlone) {
  press(1, 3);
  drag(600);
  EXPECT_TRUE(shares.empty());
  press();
  divider.release({.button = 3});
  drag(501);
  EXPECT_EQ(shares, Shares{0.5});
}

TEST_F(DividerTest, ShowsWhichWayItMoves) {
  EXPECT_EQ(divider.pointer(), ui::PointerShape::ResizeHorizontal);
  divider.setPanes(Down, kBefore, kAfter, {});
  EXPECT_EQ(divider.pointer(), ui::PointerShape::ResizeVertical);
}

TEST_F(DividerTest, DoesNothingWithoutRoomOnItsSides) {
  divider.setPanes(Across, {}, {}, {});
  press();
  drag(600);
  EXPECT_TRUE(shares.empty());
}

}  // namespace
}  // namespace app
