#include "app/frame/welcome_layout.h"

#include <gtest/gtest.h>

#include <limits>

namespace app {
namespace {

using ui::Rect;

constexpr int kLine = 16;
constexpr int kButtonHeight = kLine + 6;
constexpr int kCardHeight = 12 + kLine + 2 + kLine + 8 + 6 + 12;
/// The cards of the view at scale 1 begin below 16 of padding, the icon and 16 of padding.
constexpr int kCardsTop = 16 + 44 + 16;

WelcomeRequest request(int width, int height, std::size_t cards, double scale = 1) {
  return {.view = {0, 0, width, height},
          .scale = scale,
          .lineHeight = static_cast<int>(kLine * scale),
          .headingHeight = static_cast<int>(24 * scale),
          .headingTextWidth = static_cast<int>(400 * scale),
          .noteTextWidth = static_cast<int>(300 * scale),
          .buttonTextWidth = static_cast<int>(110 * scale),
          .hintTextWidth = static_cast<int>(250 * scale),
          .cards = cards};
}

VolumeCard card(std::int64_t used, std::int64_t total) {
  return {"Volume", "/volume", VolumeFigures{used, total}};
}

// Cards

TEST(WelcomeLayout, MakesCardsAtMost330LogicalPixelsWide) {
  for (const double scale : {0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0}) {
    const int most = ui::scaled(330, scale);
    for (int width = 0; width < 6000; width += 7) {
      EXPECT_LE(layOutWelcome(request(width, 800, 0, scale)).cardWidth, most) << width;
    }
    EXPECT_EQ(layOutWelcome(request(8000, 800, 0, scale)).cardWidth, most);
  }
}

TEST(WelcomeLayout, SharesANarrowViewBetweenTwoCards) {
  const WelcomeLayout layout = layOutWelcome(request(640, 420, 2));
  EXPECT_EQ(layout.cardWidth, (640 - 5 * 16) / 2);
  EXPECT_EQ(layout.columns, 2);
}

TEST(WelcomeLayout, CutsTheHalfPixelOfAnOddWidth) {
  EXPECT_EQ(layOutWelcome(request(641, 420, 2)).cardWidth, 280);
}

TEST(WelcomeLayout, PutsAsManyColumnsIntoTheViewAsFit) {
  // (W - 32) / (330 + 16)
  EXPECT_EQ(layOutWelcome(request(32 + 3 * 346 - 1, 800, 0)).columns, 2);
  EXPECT_EQ(layOutWelcome(request(32 + 3 * 346, 800, 0)).columns, 3);
  EXPECT_EQ(layOutWelcome(request(1600, 800, 0)).columns, 4);
}

TEST(WelcomeLayout, HasOneColumnWhereTwoCardsHaveNoRoom) {
  for (const int width : {5 * 16 + 1, 5 * 16, 4 * 16, 3 * 16, 3 * 16 - 1, 33}) {
    const WelcomeLayout layout = layOutWelcome(request(width, 800, 3));
    EXPECT_EQ(layout.columns, 1) << width;
    EXPECT_EQ(layout.cardWidth, width - 32) << width;
    ASSERT_EQ(layout.cards.size(), 3u) << width;
    EXPECT_EQ(layout.cards[1].card.x, 16) << width;
  }
}

TEST(WelcomeLayout, SurvivesAViewWithoutRoom) {
  for (const int width : {32, 16, 1, 0, -5}) {
    for (const int height : {300, 10, 0, -5}) {
      const WelcomeLayout layout = layOutWelcome(request(width, height, 3));
      EXPECT_EQ(layout.columns, 1);
      EXPECT_EQ(layout.cardWidth, 0);
      EXPECT_TRUE(layout.cards.empty());
    }
  }
}

TEST(WelcomeLayout, CentresTheGrid) {
  for (int width = 100; width < 2000; width += 13) {
    const WelcomeLayout layout = layOutWelcome(request(width, 800, 8));
    const auto columns = static_cast<std::size_t>(layout.columns);
    ASSERT_GE(layout.cards.size(), columns) << width;
    const int left = layout.cards[0].card.x;
    const Rect& last = layout.cards[columns - 1].card;
    EXPECT_NEAR(left, width - (last.x + last.w), 1) << width;
    EXPECT_GE(left, 0) << width;
  }
}

TEST(WelcomeLayout, PlacesCardsRowByRow) {
  const WelcomeLayout layout = layOutWelcome(request(640, 420, 3));
  ASSERT_EQ(layout.cards.size(), 3u);
  const int top = layout.cardsView.y;
  EXPECT_EQ(layout.cards[0].card, (Rect{32, top, 280, kCardHeight}));
  EXPECT_EQ(layout.cards[1].card, (Rect{32 + 280 + 16, top, 280, kCardHeight}));
  EXPECT_EQ(layout.cards[2].card, (Rect{32, top + kCardHeight + 16, 280, kCardHeight}));
}

TEST(WelcomeLayout, PutsItsLinesAndItsBarIntoTheCard) {
  const CardPlaces places = layOutWelcome(request(640, 420, 1)).cards.at(0);
  const auto& [x, y, width, height] = places.card;
  EXPECT_EQ(width, 280);
  EXPECT_EQ(places.name, (Rect{x + 12, y + 12, 256, kLine}));
  EXPECT_EQ(places.figures, (Rect{x + 12, y + 12 + kLine + 2, 256, kLine}));
  EXPECT_EQ(places.track, (Rect{x + 12, y + kCardHeight - 12 - 6, 256, 6}));
}

TEST(WelcomeLayout, KeepsTheBarSixPixelsHighAtEveryScale) {
  for (const double scale : {0.75, 2.0, 4.0}) {
    EXPECT_EQ(layOutWelcome(request(2560, 1680, 1, scale)).cards.at(0).track.h, 6);
  }
}

TEST(WelcomeLayout, ShowsNoPartOfARowThatWouldPassTheButton) {
  const int twoRows = kCardsTop + 2 * kCardHeight + 16 + 16 + kButtonHeight + 16;
  const WelcomeLayout two = layOutWelcome(request(640, twoRows, 9));
  EXPECT_EQ(two.cardsView, (Rect{0, kCardsTop, 640, 2 * kCardHeight + 16}));
  EXPECT_EQ(two.cards.size(), 9u) << "the others are scrolled to";
  EXPECT_EQ(two.cardsHeight, 5 * kCardHeight + 4 * 16);
  const WelcomeLayout one = layOutWelcome(request(640, twoRows - 1, 9));
  EXPECT_EQ(one.cardsView.h, kCardHeight);
  EXPECT_LT(one.button.y, two.button.y);
}

TEST(WelcomeLayout, LeavesRoomForABarBesideTheCards) {
  for (const double scale : {0.75, 1.0, 2.0, 4.0}) {
    for (int width = 200; width < 3000; width += 13) {
      for (const CardPlaces& places : layOutWelcome(request(width, 2000, 4, scale)).cards) {
        EXPECT_LE(places.card.x + places.card.w, width - 10) << width;
      }
    }
  }
}

TEST(WelcomeLayout, MovesWithItsView) {
  WelcomeRequest moved = request(640, 420, 1);
  moved.view = {100, 34, 640, 420};
  const WelcomeLayout layout = layOutWelcome(moved);
  const WelcomeLayout plain = layOutWelcome(request(640, 420, 1));
  EXPECT_EQ(layout.cards.at(0).card.x, plain.cards.at(0).card.x + 100);
  EXPECT_EQ(layout.cards.at(0).card.y, plain.cards.at(0).card.y + 34);
  EXPECT_EQ(layout.button.x, plain.button.x + 100);
  EXPECT_EQ(layout.button.y, plain.button.y + 34);
}

// Heading and button

TEST(WelcomeLayout, PutsTheHeadingBesideTheIcon) {
  const WelcomeLayout layout = layOutWelcome(request(640, 420, 1));
  EXPECT_EQ(layout.icon.x, (640 - 44 - 12 - 400) / 2);
  EXPECT_EQ(layout.icon.w, 44);
  EXPECT_EQ(layout.icon.h, 44);
  EXPECT_EQ(layout.heading.x, layout.icon.x + 44 + 12);
  EXPECT_EQ(layout.heading.w, 400);
  EXPECT_EQ(layout.note.x, layout.heading.x);
  EXPECT_EQ(layout.note.y, layout.heading.y + layout.heading.h + 2);
  EXPECT_EQ(layout.heading.y - layout.icon.y,
            layout.icon.y + layout.icon.h - (layout.note.y + layout.note.h))
      << "centred on the icon";
}

TEST(WelcomeLayout, ScalesTheIconAndItsGap) {
  const WelcomeLayout layout = layOutWelcome(request(1280, 840, 1, 2));
  EXPECT_EQ(layout.icon.w, 88);
  EXPECT_EQ(layout.icon.h, 88);
  EXPECT_EQ(layout.heading.x - (layout.icon.x + layout.icon.w), 24);
}

TEST(WelcomeLayout, PutsTheButtonBelowTheCards) {
  const WelcomeLayout layout = layOutWelcome(request(640, 420, 1));
  EXPECT_EQ(layout.button,
            (Rect{(640 - 130) / 2, layout.cardsView.y + kCardHeight + 16, 130, kButtonHeight}));
}

TEST(WelcomeLayout, WidensTheButtonByTwentyAtEveryScale) {
  EXPECT_EQ(layOutWelcome(request(2560, 1680, 1, 4)).button.w, 440 + 20);
  EXPECT_EQ(layOutWelcome(request(2560, 1680, 1, 4)).button.h, 64 + 6);
}

TEST(WelcomeLayout, PutsTheButtonBelowTheHeadingWithoutCards) {
  const WelcomeLayout layout = layOutWelcome(request(640, 420, 0));
  EXPECT_EQ(layout.button.y, layout.icon.y + 44 + 16);
}

/// By how much a part stands off the middle of a view, in half pixels.
int offMiddle(int left, int right, int width) { return left + right - width; }

TEST(WelcomeLayout, StandsOnOneAxis) {
  for (int width = 500; width < 2400; width += 7) {
    for (const std::size_t cards : {0u, 1u, 2u, 3u}) {
      const WelcomeLayout layout = layOutWelcome(request(width, 700, cards));
      for (const Rect& part : {layout.button, layout.hint}) {
        EXPECT_NEAR(offMiddle(part.x, part.x + part.w, width), 0, 1) << width;
      }
      const Rect& heading = layout.heading;
      EXPECT_NEAR(offMiddle(layout.icon.x, heading.x + heading.w, width), 0, 1) << width;
      if (cards == 0 || cards > static_cast<std::size_t>(layout.columns)) continue;
      const Rect& last = layout.cards.back().card;
      EXPECT_NEAR(offMiddle(layout.cards[0].card.x, last.x + last.w, width), 0, 1) << width;
    }
  }
}

TEST(WelcomeLayout, LeavesTwiceAsMuchRoomBelowAsAbove) {
  for (int height = 300; height < 2000; height += 11) {
    const WelcomeLayout layout = layOutWelcome(request(1000, height, 2));
    const int above = layout.icon.y - 16;
    const int below = height - 16 - (layout.hint.y + layout.hint.h);
    EXPECT_NEAR(below, 2 * above, 2) << height;
  }
  EXPECT_EQ(layOutWelcome(request(640, 420, 50)).icon.y, 16) << "cards that are scrolled to";
}

bool within(const Rect& inner, const Rect& outer) { return ui::intersect(inner, outer) == inner; }

TEST(WelcomeLayout, KeepsTheButtonInsideTheViewAndClearOfEverything) {
  for (const double scale : {0.75, 1.0, 1.5, 2.0, 4.0}) {
    for (int height = 100; height < 2400; height += 11) {
      const WelcomeRequest asked = request(static_cast<int>(640 * scale), height, 50, scale);
      const WelcomeLayout layout = layOutWelcome(asked);
      EXPECT_TRUE(within(layout.button, asked.view)) << height << " at " << scale;
      EXPECT_TRUE(layout.cards.empty() || within(layout.cardsView, asked.view)) << height;
      EXPECT_TRUE(ui::intersect(layout.cardsView, layout.button).empty()) << height;
      for (const Rect& part : {layout.icon, layout.heading, layout.note}) {
        EXPECT_TRUE(ui::intersect(part, layout.button).empty()) << height;
      }
    }
  }
}

TEST(WelcomeLayout, ShowsCardsInTheLeastWindowAtEveryScale) {
  for (const double scale : {0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0}) {
    const auto layout =
        layOutWelcome(request(ui::scaled(640, scale), ui::scaled(420 - 34 - 24, scale), 50, scale));
    EXPECT_GE(layout.cardsView.h, layout.cards.at(2).track.y - layout.cardsView.y) << scale;
    EXPECT_GT(layout.icon.w, 0) << scale;
  }
}

TEST(WelcomeLayout, HasALineUnderTheButtonWhereCardsLeaveRoom) {
  for (const double scale : {0.75, 1.0, 2.0, 4.0}) {
    const auto layOut = [&](int height, std::size_t cards) {
      return layOutWelcome(
          request(ui::scaled(640, scale), ui::scaled(height, scale), cards, scale));
    };
    const WelcomeLayout roomy = layOut(420, 1);
    EXPECT_EQ(roomy.hint.y, roomy.button.y + roomy.button.h + ui::scaled(8, scale));
    EXPECT_FALSE(roomy.hint.empty());
    for (int height = 0; height < 500; ++height) {
      const WelcomeLayout layout = layOut(height, 20);
      if (layout.hint.empty() || layout.cards.empty()) continue;
      EXPECT_LE(layout.hint.y + layout.hint.h, ui::scaled(height, scale) - ui::scaled(16, scale));
      EXPECT_EQ(layout.button.y, layout.cardsView.y + layout.cardsView.h + ui::scaled(16, scale))
          << "no card gives way";
    }
  }
}

// Figures and bar

TEST(FiguresText, SaysHowMuchIsUsedOfHowMuch) {
  EXPECT_EQ(figuresText(card(1'500'000, 512'000'000'000)), "1.50 MB used of 512 GB");
  EXPECT_EQ(figuresText(card(0, 0)), "0 B used of 0 B");
}

TEST(FiguresText, IsCalmWhileThereAreNone) {
  EXPECT_EQ(figuresText({"Share", "/share", std::nullopt}), "Waiting for its size…");
}

TEST(UsageBar, IsFilledByTheShareInUse) {
  EXPECT_EQ(usageBar(card(50, 100), 201), (UsageBar{100, false}));
}

TEST(UsageBar, KeepsTheAccentColourAtExactlyNineTenths) {
  EXPECT_EQ(usageBar(card(90, 100), 200), (UsageBar{180, false}));
  EXPECT_EQ(usageBar(card(91, 100), 200), (UsageBar{182, true}));
}

TEST(UsageBar, TellsNineTenthsFromOneByteMoreInAnySize) {
  for (const std::int64_t tenth :
       {1LL, 3LL, 7LL, 1'000'003LL, 900'719'925'474'099LL, 922'337'203'685'477'580LL}) {
    EXPECT_FALSE(usageBar(card(9 * tenth, 10 * tenth), 200)->nearlyFull) << tenth;
    EXPECT_TRUE(usageBar(card(9 * tenth + 1, 10 * tenth), 200)->nearlyFull) << tenth;
  }
  EXPECT_FALSE(usageBar(card(13, 15), 200)->nearlyFull);
  EXPECT_TRUE(usageBar(card(14, 15), 200)->nearlyFull);
}

TEST(UsageBar, FillsTheWholeTrackWhenMoreIsUsedThanThereIs) {
  EXPECT_EQ(usageBar(card(101, 100), 200), (UsageBar{200, true}));
  EXPECT_EQ(usageBar(card(std::numeric_limits<std::int64_t>::max(), 1), 200),
            (UsageBar{200, true}));
  EXPECT_EQ(usageBar(card(100, 100), 200), (UsageBar{200, true}));
}

TEST(UsageBar, FillsAtLeastThreePixels) {
  EXPECT_EQ(usageBar(card(1, 1'000'000'000'000), 200), (UsageBar{3, false}));
  EXPECT_EQ(usageBar(card(2, 100), 200), (UsageBar{4, false}));
  EXPECT_EQ(usageBar(card(0, 100), 200), (UsageBar{3, false}));
}

TEST(UsageBar, StaysWithinItsTrack) {
  EXPECT_EQ(usageBar(card(1, 100), 2), (UsageBar{2, false}));
  EXPECT_EQ(usageBar(card(1, 100), 0), (UsageBar{0, false}));
}

TEST(UsageBar, IsMissingWithoutASize) {
  EXPECT_EQ(usageBar(card(0, 0), 200), std::nullopt);
  EXPECT_EQ(usageBar(card(5, 0), 200), std::nullopt);
  EXPECT_EQ(usageBar(card(5, -1), 200), std::nullopt);
  EXPECT_EQ(usageBar({"Share", "/share", std::nullopt}, 200), std::nullopt);
  EXPECT_TRUE(usageBar(card(0, 1), 200));
}

}  // namespace
}  // namespace app
