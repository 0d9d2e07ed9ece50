#include "app/map/hover_card.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/ui/contrast.h"
#include "tests/ui/window_test_base.h"
#include "ui/text.h"

namespace app {
namespace {

constexpr ui::Rect kBounds{10, 20, 400, 300};
constexpr int kWidth = 100;
constexpr int kHeight = 60;
constexpr int kDistance = 16;
constexpr int kPaddingOfCard = 8;
constexpr ui::Palette kCardPalette = ui::kLightPalette;

ui::Rect place(int x, int y, const ui::Rect& bounds = kBounds) {
  return placeBeside(x, y, kWidth, kHeight, kDistance, bounds);
}

TEST(PlaceBeside, IsRightOfThePointerAndBelow) {
  EXPECT_EQ(place(10, 20), (ui::Rect{26, 36, kWidth, kHeight}));
  EXPECT_EQ(place(200, 150), (ui::Rect{216, 166, kWidth, kHeight}));
}

TEST(PlaceBeside, SlidesAlongTheEdgeWhereThereIsNoRoom) {
  EXPECT_EQ(place(400, 30), (ui::Rect{310, 46, kWidth, kHeight})) << "upper right";
  EXPECT_EQ(place(20, 310), (ui::Rect{36, 260, kWidth, kHeight})) << "lower left";
}

TEST(PlaceBeside, TakesTheLastPixelThatThereIs) {
  EXPECT_EQ(place(410 - kWidth - kDistance, 100).x, 410 - kWidth);
  EXPECT_EQ(place(410 - kWidth - kDistance + 1, 100).x, 410 - kWidth);
  EXPECT_EQ(place(100, 320 - kHeight - kDistance).y, 320 - kHeight);
  EXPECT_EQ(place(100, 320 - kHeight - kDistance + 1).y, 320 - kHeight);
}

TEST(PlaceBeside, IsAboveOrLeftOfAPointerInTheFarCorner) {
  EXPECT_EQ(place(400, 310), (ui::Rect{310, 234, kWidth, kHeight}));
  const ui::Rect low{10, 20, 400, 90};
  EXPECT_EQ(place(400, 60, low), (ui::Rect{284, 50, kWidth, kHeight})) << "no room above";
}

TEST(PlaceBeside, ComesNearerWhereThatKeepsItFromUnderThePointer) {
  const ui::Rect low{10, 20, 150, 90};
  EXPECT_EQ(place(80, 81, low), (ui::Rect{60, 20, kWidth, kHeight})) << "above, at 1 pixel";
  EXPECT_EQ(place(80, 49, low), (ui::Rect{60, 50, kWidth, kHeight})) << "below";
}

TEST(PlaceBeside, StaysInsideWhereItCannotButCoverThePointer) {
  const ui::Rect low{10, 20, 150, 90};
  EXPECT_EQ(place(80, 60, low), (ui::Rect{60, 50, kWidth, kHeight}));
}

TEST(PlaceBeside, BeginsAtTheNearEdgeOfBoundsThatAreTooSmall) {
  EXPECT_EQ(place(30, 40, {10, 20, 50, 40}), (ui::Rect{10, 20, kWidth, kHeight}));
}

/// There is a place in `bounds` with a pixel between the panel and (x, y).
bool hasRoomBeside(int x, int y, const ui::Rect& bounds) {
  return x - bounds.x > kWidth || bounds.x + bounds.w - x > kWidth || y - bounds.y > kHeight ||
         bounds.y + bounds.h - y > kHeight;
}

TEST(PlaceBeside, IsInsideAndNotUnderThePointerWhereThereIsRoom) {
  int covers = 0;
  for (const ui::Rect& bounds :
       {kBounds, ui::Rect{10, 20, 130, 300}, {10, 20, 400, 70}, {10, 20, 150, 90}}) {
    for (int x = bounds.x; x < bounds.x + bounds.w; ++x) {
      for (int y = bounds.y; y < bounds.y + bounds.h; ++y) {
        const ui::Rect rect = place(x, y, bounds);
        ASSERT_EQ(ui::intersect(rect, bounds), rect) << x << "," << y;
        ASSERT_EQ(rect.contains(x, y), !hasRoomBeside(x, y, bounds)) << x << "," << y;
        covers += rect.contains(x, y) ? 1 : 0;
      }
    }
  }
  EXPECT_GT(covers, 0);
}

class HoverCardTest : public test::WindowTest {
 protected:
  test::Picture painted() {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 600, 400}, 0xFF00FF00);
      card_.paint(canvas);
    });
  }

  /// Nothing is drawn outside `rect`.
  static void expectNothingOutside(const test::Picture& picture, const ui::Rect& rect) {
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        ASSERT_TRUE(rect.contains(x, y) || picture.at(x, y) == 0x00FF00) << x << "," << y;
      }
    }
  }

  static test::Picture partOf(const test::Picture& picture, const ui::Rect& rect) {
    return picture.part(rect.x, rect.y, rect.w, rect.h);
  }

  ui::Style style_{*connection, kCardPalette};
  HoverCard card_{style_};
  const ui::Rect bounds_{0, 0, 600, 400};
};

MapCard cardWithFolder(const std::string& folder) {
  return {
      "a.pdf",
      {{"Folder", folder, MapCard::Keeps::End}, {"Size", "1.00 kB"}, {"Share", "1.0 % of map"}}};
}

TEST_F(HoverCardTest, IsSeenBesideThePointerUntilItIsHidden) {
  show(600, 400);
  EXPECT_FALSE(card_.shown());
  EXPECT_FALSE(card_.hide());
  EXPECT_EQ(painted().count(0x00FF00), 600 * 400);
  card_.show(cardWithFolder("/map"), 50, 40, bounds_);
  EXPECT_TRUE(card_.shown());
  EXPECT_EQ(card_.rect().x, 50 + style_.scaled(kDistance));
  EXPECT_EQ(card_.rect().y, 40 + style_.scaled(kDistance));
  const auto picture = painted();
  expectNothingOutside(picture, card_.rect());
  EXPECT_EQ(picture.at(card_.rect().x + card_.rect().w / 2, card_.rect().y + 3), 0xFFFFFFu);
  EXPECT_GT(picture.count(kCardPalette.text & 0xFFFFFF), 0) << "there is text";
  EXPECT_TRUE(card_.hide());
  EXPECT_FALSE(card_.shown());
  EXPECT_EQ(painted().count(0x00FF00), 600 * 400);
}

TEST_F(HoverCardTest, HasALineForTheTitleAndOneForEachFact) {
  card_.show({"a", {{"Size", "1 B"}}}, 0, 0, bounds_);
  const int two = card_.rect().h;
  card_.show(cardWithFolder("/map"), 0, 0, bounds_);
  EXPECT_EQ(card_.rect().h, two + 2 * style_.lineHeight());
}

TEST_F(HoverCardTest, HasItsTitleInBold) {
  show(600, 400);
  const std::string title = "A title that is wider than all of its facts";
  card_.show({title, {{"Size", "1 B"}}}, 0, 0, bounds_);
  const int width = style_.textWidth(title, style_.strong());
  ASSERT_GT(width, style_.textWidth(title));
  EXPECT_EQ(card_.rect().w, width + 2 * kPaddingOfCard);
  const ui::Rect line{card_.rect().x + kPaddingOfCard, card_.rect().y + kPaddingOfCard, width,
                      style_.lineHeight()};
  const auto bold = paint([&](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, 600, 400}, kCardPalette.view);
    ui::drawText(canvas, line, title, style_.strong(), kCardPalette.text);
  });
  EXPECT_EQ(partOf(painted(), line), partOf(bold, line));
}

TEST_F(HoverCardTest, HasTheSwatchOfItsKindBesideTheTitle) {
  show(600, 400);
  constexpr std::uint32_t kKind = 0xFF123456;
  const std::string title = "A title that is wider than all of its facts";
  card_.show({title, {{"Size", "1 B"}}}, 0, 0, bounds_);
  const int plainWidth = card_.rect().w;
  card_.show({title, {{"Size", "1 B"}}, kKind}, 0, 0, bounds_);
  const int indent = card_.rect().w - plainWidth;
  ASSERT_GT(indent, 0);
  const auto picture = painted();
  const ui::Rect place{card_.rect().x + kPaddingOfCard, card_.rect().y + kPaddingOfCard, indent,
                       style_.lineHeight()};
  const auto beside = partOf(picture, place);
  EXPECT_EQ(beside.count(kKind & 0xFFFFFF), picture.count(kKind & 0xFFFFFF));
  EXPECT_EQ(beside.count(kKind & 0xFFFFFF), 9 * 9);
  EXPECT_EQ(beside.count(kKind & 0xFFFFFF) + beside.count(kCardPalette.view & 0xFFFFFF),
            long{place.w} * place.h)
      << "the title begins beside it";
  EXPECT_EQ(beside.at(0, place.h / 2), kKind & 0xFFFFFF);
}

TEST_F(HoverCardTest, HasABorderThatIsSeenInBothThemes) {
  show(600, 400);
  for (const ui::Palette& palette : {ui::kLightPalette, ui::kDarkPalette}) {
    const ui::Style style(*connection, palette);
    HoverCard card(style);
    card.show(cardWithFolder("/map"), 50, 40, bounds_);
    const auto picture = paint([&](ui::Canvas& canvas) { card.paint(canvas); });
    const ui::Rect& rect = card.rect();
    const int middle = rect.y + rect.h / 2;
    const std::uint32_t border = picture.at(rect.x, middle);
    EXPECT_EQ(picture.at(rect.x + 1, middle), palette.view & 0xFFFFFF);
    EXPECT_EQ(picture.at(rect.x + rect.w - 1, middle), border);
    EXPECT_EQ(picture.at(rect.x + rect.w / 2, rect.y), border);
    EXPECT_EQ(picture.at(rect.x + rect.w / 2, rect.y + rect.h - 1), border);
    EXPECT_GE(test::contrast(border, palette.view), 3) << (palette.dark ? "dark" : "light");
  }
}

/// What is drawn differs only in the path's beginning, which is not seen.
TEST_F(HoverCardTest, KeepsTheEndOfALongPath) {
  show(600, 400);
  const std::string end = std::string(300, 'm') + "/the end";
  const auto pictureOf = [&](const std::string& folder) {
    card_.show(cardWithFolder(folder), 0, 0, bounds_);
    return painted().pixels;
  };
  EXPECT_EQ(pictureOf("/one" + end), pictureOf("/two" + end));
  EXPECT_NE(pictureOf("/one" + end), pictureOf("/one" + end + "ing"));
}

TEST_F(HoverCardTest, KeepsTheBeginningOfOtherLongTexts) {
  show(600, 400);
  const std::string middle(300, 'm');
  const auto pictureOf = [&](const std::string& share) {
    card_.show({"a", {{"Share", share}}}, 0, 0, bounds_);
    return painted().pixels;
  };
  EXPECT_EQ(pictureOf("1 % of " + middle + "one"), pictureOf("1 % of " + middle + "two"));
  EXPECT_NE(pictureOf("1 % of " + middle), pictureOf("2 % of " + middle));
}

TEST_F(HoverCardTest, KeepsTheClosingMarkOfALongQuotation) {
  show(600, 400);
  const std::string begin = "1 % of “" + std::string(300, 'm');
  const auto pictureOf = [&](const std::string& share, MapCard::Keeps keeps) {
    card_.show({"a", {{"Share", share, keeps}}}, 0, 0, bounds_);
    return painted().pixels;
  };
  using enum MapCard::Keeps;
  EXPECT_EQ(pictureOf(begin + "one”", BeginningAndQuote),
            pictureOf(begin + "two”", BeginningAndQuote));
  EXPECT_NE(pictureOf(begin + "one”", BeginningAndQuote), pictureOf(begin + "one”", Beginning));
  EXPECT_EQ(pictureOf("1 % of “m”", BeginningAndQuote), pictureOf("1 % of “m”", Beginning));
}

TEST_F(HoverCardTest, KeepsOddNamesInOneLine) {
  show(600, 400);
  const auto below = [&](const std::string& name) {
    card_.show({name, {{"Folder", "/m/" + name, MapCard::Keeps::End}, {"Size", "1 B"}}}, 0, 0,
               bounds_);
    const ui::Rect rect = card_.rect();
    const int line = rect.y + kPaddingOfCard + 2 * style_.lineHeight();
    return std::pair(rect.h, partOf(painted(), {0, line, 60, rect.h - line}));
  };
  const auto usual = below("a b");
  for (const char* name : {"a\nb", "\n\n\n", "a\r\nb", "a\tb", "caf\xe9"}) {
    EXPECT_TRUE(below(name) == usual) << name;
  }
}

TEST_F(HoverCardTest, ShortensLongTitles) {
  card_.show({std::string(255, 'W'), {{"Size", "1 B"}}}, 0, 0, {0, 0, 5000, 400});
  EXPECT_LE(card_.rect().w, 460);
}

TEST_F(HoverCardTest, StaysInsideItsBoundsWhateverItsTexts) {
  show(600, 400);
  MapCard card = cardWithFolder(std::string(5000, 'f'));
  card.title = std::string(5000, 't');
  card.facts.push_back({"Kind", std::string(5000, 'k')});
  for (const ui::Rect& bounds : {bounds_, ui::Rect{100, 50, 300, 200}, ui::Rect{5, 5, 90, 390}}) {
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 1}, {0, 1}, {1, 0}}) {
      card_.show(card, bounds.x + x * (bounds.w - 1), bounds.y + y * (bounds.h - 1), bounds);
      EXPECT_EQ(ui::intersect(card_.rect(), bounds), card_.rect());
      expectNothingOutside(painted(), card_.rect());
    }
  }
}

TEST_F(HoverCardTest, SurvivesBoundsWithoutRoom) {
  show(600, 400);
  card_.show(cardWithFolder("/map"), 3, 3, {0, 0, 4, 4});
  expectNothingOutside(painted(), card_.rect());
  card_.show(cardWithFolder("/map"), 0, 0, {0, 0, 0, 0});
  EXPECT_EQ(painted().count(0x00FF00), 600 * 400);
}

}  // namespace
}  // namespace app
