// Rows that scroll, in a window.

#include "ui/widgets/row_list.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"

namespace ui {
namespace {

using test::at;
using test::rgb;

constexpr int kRow = 20;
constexpr Rect kPlace = {10, 100, 200, 100};
constexpr Palette kPalette = kLightPalette;

/// Rows that each show a letter, drawn as a red square at their left end.
class Letters : public RowList {
 public:
  explicit Letters(const Style& style) : RowList(style, kRow) {}
  using RowList::firstInView;
  using RowList::isInView;
  using RowList::reveal;
  using RowList::scrollToTop;

  void set(const std::string& letters) {
    letters_ = letters;
    setCount(letters.size());
  }
  void set(int count) { set(std::string(static_cast<std::size_t>(count), 'x')); }
  void changeAround(std::optional<std::size_t> kept, const std::string& letters) {
    changeRowsAround(
        kept, [this](std::size_t row) { return letters_[row]; },
        [this](char letter) { return rowOf(letter); }, [&] { set(letters); });
  }
  std::optional<std::size_t> rowOf(char letter) const {
    const std::size_t row = letters_.find(letter);
    return row == std::string::npos ? std::nullopt : std::optional(row);
  }
  int placeOf(char letter) const { return rowRect(rowOf(letter).value()).y; }

  std::optional<std::size_t> selected;
  std::optional<std::size_t> current;

 protected:
  void paintRow(Canvas& canvas, std::size_t /*row*/, const Rect& place) const override {
    canvas.fillRect({place.x + 4, place.y + 4, 4, 4}, 0xFFFF0000);
  }
  bool isSelected(std::size_t row) const override { return selected == row; }
  bool isCurrent(std::size_t row) const override { return current == row; }

 private:
  std::string letters_;
};

class RowListTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  RowListTest() {
    list_.setRect(kPlace);
    list_.set(50);
    list_.onChanged = [this] { ++changes_; };
  }
  MouseEvent inRow(std::size_t row) const { return at(list_.rowRect(row)); }
  test::Picture picture() {
    return ViewsOnWindow::picture(240, 240, [this](Canvas& canvas) { list_.paint(canvas); });
  }
  std::uint32_t pixel(int x, int y) { return picture().at(x, y); }

  Letters list_{style};
  int changes_ = 0;
};

// Rows and places.

TEST_F(RowListTest, HasItsRowsOneBelowTheOther) {
  list_.set(3);
  EXPECT_EQ(list_.rowRect(0), (Rect{10, 100, 200, 20}));
  EXPECT_EQ(list_.rowRect(2), (Rect{10, 140, 200, 20}));
  EXPECT_EQ(list_.rowAt(10, 159), 2u);
  EXPECT_EQ(list_.rowAt(10, 160), std::nullopt);
  EXPECT_EQ(list_.rowAt(10, 99), std::nullopt);
  EXPECT_EQ(list_.rowAt(210, 100), std::nullopt);
}

TEST_F(RowListTest, LeavesRoomForItsBar) {
  EXPECT_EQ(list_.rowRect(0).w, 200 - Scroller::kBarWidth);
  EXPECT_EQ(list_.rowAt(205, 110), std::nullopt);
  EXPECT_EQ(list_.rowAt(195, 110), 0u);
}

TEST_F(RowListTest, KnowsWhichRowsAreInView) {
  list_.wheel({}, 1);
  EXPECT_FALSE(list_.isInView(2));
  EXPECT_TRUE(list_.isInView(3));
  EXPECT_TRUE(list_.isInView(7));
  EXPECT_FALSE(list_.isInView(8));
  EXPECT_EQ(list_.firstInView([](std::size_t) { return true; }), 3u);
  EXPECT_EQ(list_.firstInView([](std::size_t row) { return row > 5; }), 6u);
  EXPECT_EQ(list_.firstInView([](std::size_t row) { return row > 7; }), std::nullopt);
}

// Scrolling.

TEST_F(RowListTest, RevealsARowByScrollingAsLittleAsPossible) {
  list_.reveal(4);
  EXPECT_EQ(list_.scrollOffset(), 0);
  list_.reveal(10);
  EXPECT_EQ(list_.scrollOffset(), 11 * kRow - 100);
  list_.reveal(2);
  EXPECT_EQ(list_.scrollOffset(), 2 * kRow);
}

TEST_F(RowListTest, ScrollsThreeRowsAStepOfTheWheel) {
  list_.wheel({}, 1);
  EXPECT_EQ(list_.scrollOffset(), 3 * kRow);
  EXPECT_EQ(list_.rowAt(10, 100), 3u);
  list_.wheel({}, -5);
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(changes_, 2);
}

TEST_F(RowListTest, StaysWhereItIsWithAnotherCountAsFarAsThereAreRows) {
  list_.wheel({}, 2);
  list_.set(40);
  EXPECT_EQ(list_.scrollOffset(), 6 * kRow);
  list_.set(7);
  EXPECT_EQ(list_.scrollOffset(), 2 * kRow);
  list_.set(0);
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(RowListTest, LetsGoOfTheBarAtItsTop) {
  ASSERT_TRUE(list_.pressBar({.x = 205, .y = 105, .button = 1}));
  list_.motion({.x = 205, .y = 150});
  ASSERT_GT(list_.scrollOffset(), 0);
  list_.scrollToTop();
  EXPECT_EQ(list_.scrollOffset(), 0);
  list_.motion({.x = 205, .y = 160});
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(RowListTest, TakesOnlyThePrimaryButtonOnItsBar) {
  EXPECT_FALSE(list_.pressBar({.x = 205, .y = 190, .button = 3}));
  EXPECT_FALSE(list_.pressBar({.x = 100, .y = 190, .button = 1}));
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(changes_, 0);
  EXPECT_TRUE(list_.pressBar({.x = 205, .y = 190, .button = 1}));
  EXPECT_EQ(list_.scrollOffset(), 100);
  EXPECT_EQ(changes_, 1);
}

TEST_F(RowListTest, KeepsARowInPlaceWhileOthersComeAndGoAroundIt) {
  list_.set("abcdefghijklmnop");
  list_.wheel({}, 1);
  const int place = list_.placeOf('f');
  list_.changeAround(list_.rowOf('f'), "XYZabcdefghijklmnop");
  EXPECT_EQ(list_.placeOf('f'), place);
  list_.changeAround(list_.rowOf('f'), "bdefghijklmnopq");
  EXPECT_EQ(list_.placeOf('f'), place);
}

TEST_F(RowListTest, KeepsARowInPlaceOnlyAsFarAsItCanScroll) {
  list_.set("abcdefghijklmnop");
  list_.wheel({}, 1);
  list_.changeAround(list_.rowOf('f'), "fabcdeghijklmnop");
  EXPECT_EQ(list_.scrollOffset(), 0);
  list_.changeAround(list_.rowOf('f'), "abcdeghijklmnopf");
  EXPECT_EQ(list_.scrollOffset(), 11 * kRow) << "it can be no higher";
}

TEST_F(RowListTest, StaysPutWhenTheRowToKeepVanishesOrThereIsNone) {
  list_.set("abcdefghijklmnop");
  list_.wheel({}, 1);
  list_.changeAround(list_.rowOf('f'), "bcdeghijklmnop");
  EXPECT_EQ(list_.scrollOffset(), 3 * kRow);
  list_.changeAround(std::nullopt, "Xbcdeghijklmnop");
  EXPECT_EQ(list_.scrollOffset(), 3 * kRow);
}

TEST_F(RowListTest, KeepsARowInPlaceAmongMillionsOfRows) {
  list_.set(50'000'000);
  list_.reveal(40'000'000);
  const int y = list_.rowRect(40'000'000).y;
  EXPECT_TRUE(list_.isInView(40'000'000));
  list_.changeAround(std::nullopt, std::string(50'000'001, 'x'));
  EXPECT_EQ(list_.rowRect(40'000'000).y, y);
}

// The pointer.

TEST_F(RowListTest, HasARowUnderThePointer) {
  list_.motion({.x = 20, .y = 125});
  EXPECT_EQ(list_.hoveredRow(), 1u);
  EXPECT_EQ(changes_, 1);
  list_.motion({.x = 25, .y = 126});
  EXPECT_EQ(changes_, 1) << "the same row";
  list_.leave();
  EXPECT_EQ(list_.hoveredRow(), std::nullopt);
  EXPECT_EQ(changes_, 2);
  list_.leave();
  EXPECT_EQ(changes_, 2);
}

TEST_F(RowListTest, HasAnotherRowUnderAPointerThatRestsWhileItScrolls) {
  list_.motion({.x = 20, .y = 125});
  list_.wheel({}, 1);
  EXPECT_EQ(list_.hoveredRow(), 4u);
}

TEST_F(RowListTest, HasNoRowUnderThePointerThatHoldsTheBar) {
  list_.pressBar({.x = 205, .y = 105, .button = 1});
  list_.motion({.x = 100, .y = 150});
  EXPECT_GT(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.hoveredRow(), std::nullopt);
  list_.release({.button = 3});
  list_.motion({.x = 100, .y = 151});
  EXPECT_EQ(list_.hoveredRow(), std::nullopt) << "another button";
  list_.release({.button = 1});
  list_.motion({.x = 100, .y = 150});
  EXPECT_TRUE(list_.hoveredRow());
}

TEST_F(RowListTest, LetsGoOfEverythingWhenSomethingCoversIt) {
  list_.pressBar({.x = 205, .y = 105, .button = 1});
  list_.releasePointer();
  list_.motion({.x = 100, .y = 150});
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_TRUE(list_.hoveredRow());
  list_.releasePointer();
  EXPECT_EQ(list_.hoveredRow(), std::nullopt);
}

// Keys.

TEST_F(RowListTest, MovesByKeys) {
  using namespace ui::key;
  EXPECT_EQ(list_.rowAfterKey(kDown, 3), 4u);
  EXPECT_EQ(list_.rowAfterKey(kUp, 3), 2u);
  EXPECT_EQ(list_.rowAfterKey(kPageDown, 3), 7u);
  EXPECT_EQ(list_.rowAfterKey(kPageUp, 7), 3u);
  EXPECT_EQ(list_.rowAfterKey(kHome, 7), 0u);
  EXPECT_EQ(list_.rowAfterKey(kEnd, 7), 49u);
  EXPECT_EQ(list_.rowAfterKey(kLeft, 7), std::nullopt);
}

TEST_F(RowListTest, StaysWithinItsRows) {
  using namespace ui::key;
  EXPECT_EQ(list_.rowAfterKey(kDown, 49), 49u);
  EXPECT_EQ(list_.rowAfterKey(kPageDown, 48), 49u);
  EXPECT_EQ(list_.rowAfterKey(kUp, 0), 0u);
  EXPECT_EQ(list_.rowAfterKey(kPageUp, 1), 0u);
  list_.set(0);
  EXPECT_EQ(list_.rowAfterKey(kDown, std::nullopt), std::nullopt);
}

TEST_F(RowListTest, BeginsWithItsFirstRow) {
  for (const auto key : {key::kDown, key::kUp, key::kPageDown, key::kHome}) {
    EXPECT_EQ(list_.rowAfterKey(key, std::nullopt), 0u);
  }
  EXPECT_EQ(list_.rowAfterKey(key::kEnd, std::nullopt), 49u);
}

// Drawing.

TEST_F(RowListTest, DrawsItsRowsInItsPlaceOnly) {
  list_.wheel({}, 1);
  list_.reveal(8);  // the uppermost and the lowermost row are cut
  list_.setRect({10, 105, 200, 90});
  const test::Picture picture = this->picture();
  for (int y = 0; y < 240; ++y) {
    for (int x = 0; x < 240; ++x) {
      if (list_.rect().contains(x, y)) continue;
      ASSERT_EQ(picture.at(x, y), rgb(test::kNothingDrawn));
    }
  }
  EXPECT_GT(picture.count(0xFF0000), 4 * 4 * 3);
}

TEST_F(RowListTest, DrawsTheGroundOfARowThatIsSelectedOrUnderThePointer) {
  list_.selected = 1;
  list_.motion(inRow(2));
  EXPECT_EQ(pixel(10, 110), rgb(test::kNothingDrawn));
  EXPECT_EQ(pixel(10, 120), rgb(kPalette.accent));
  EXPECT_EQ(pixel(199, 139), rgb(kPalette.accent));
  const std::uint32_t veiled = pixel(10, 140);
  EXPECT_NE(veiled, rgb(test::kNothingDrawn));
  EXPECT_NE(veiled, rgb(kPalette.accent));
  list_.motion(inRow(1));
  EXPECT_EQ(pixel(10, 120), rgb(kPalette.accent)) << "without a veil";
}

TEST_F(RowListTest, DrawsItsBar) {
  EXPECT_EQ(pixel(200, 199), rgb(kPalette.raised));
  EXPECT_EQ(pixel(205, 105), rgb(kPalette.dimText));
  list_.set(3);
  EXPECT_EQ(pixel(205, 105), rgb(test::kNothingDrawn));
}

TEST_F(RowListTest, RingsTheCurrentRowWhileItHasTheKeyboard) {
  list_.current = 1;
  EXPECT_EQ(pixel(10, 120), rgb(test::kNothingDrawn));
  list_.setFocused(true);
  EXPECT_EQ(pixel(10, 120), rgb(kPalette.accent));
  EXPECT_EQ(pixel(199, 139), rgb(kPalette.accent));
  EXPECT_EQ(pixel(11, 121), rgb(test::kNothingDrawn));
  EXPECT_EQ(pixel(10, 199), rgb(test::kNothingDrawn)) << "not the whole list";
  list_.selected = 1;
  EXPECT_EQ(pixel(11, 121), rgb(kPalette.accentText));
}

TEST_F(RowListTest, IsRingedItselfWhileNoPartOfTheCurrentRowShows) {
  list_.setFocused(true);
  for (const std::optional<std::size_t> current : {std::optional<std::size_t>{}, {5}, {40}}) {
    list_.current = current;
    EXPECT_EQ(pixel(10, 199), rgb(kPalette.accent)) << current.value_or(0);
    EXPECT_EQ(pixel(209, 100), rgb(kPalette.accent)) << "round the bar too";
  }
  list_.current = 4;
  EXPECT_EQ(pixel(209, 100), rgb(kPalette.raised));
  list_.set(0);
  EXPECT_EQ(pixel(10, 199), rgb(kPalette.accent));
}

}  // namespace
}  // namespace ui
