#include "ui/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "tests/ui/installed_fonts.h"
#include "tests/ui/window_test_base.h"
#include "ui/paragraph.h"
#include "ui/x_errors.h"

namespace test {
namespace {

using ui::Align;
using ui::FontWeight;

constexpr ui::Colour kLetters = 0xFFFFFFFF;
constexpr ui::Colour kBlack = 0xFF000000;
constexpr ui::Rect kAll{0, 0, 200, 100};

bool isBlank(const Picture& picture) { return picture.count(0xFFFFFF) == 200 * 100; }

/// The least rectangle that holds all that is not white.
ui::Rect inkOf(const Picture& picture) {
  int left = picture.width;
  int top = picture.height;
  int right = 0;
  int bottom = 0;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if (picture.at(x, y) == 0xFFFFFF) continue;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
  }
  return {left, top, right - left, bottom - top};
}

/// Draws in one font, on white ground.
class TextTest : public WindowTest {
 protected:
  using Draw = std::function<void(ui::Canvas&)>;

  /// Fails when the server takes offence at anything drawn.
  Picture onWhite(const Draw& draw) {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect(kAll, kLetters);
      ui::ErrorTrap trap(connection->native().display);
      draw(canvas);
      EXPECT_FALSE(trap.caught());
    });
  }
  Picture run(int x, int baseline, std::string_view text) {
    return onWhite(
        [&](ui::Canvas& canvas) { ui::drawRun(canvas, x, baseline, text, font_, kBlack); });
  }
  Picture inside(const ui::Rect& rect, std::string_view text, Align align = Align::Left) {
    return onWhite(
        [&](ui::Canvas& canvas) { ui::drawText(canvas, rect, text, font_, kBlack, align); });
  }
  int width(std::string_view text) { return ui::textWidth(*connection, font_, text); }
  /// The baseline in the middle of `rect`.
  int baseline(const ui::Rect& rect) const {
    return rect.y + (rect.h - font_.height) / 2 + font_.ascent;
  }

  InstalledFonts fonts_{{fontFile("DejaVu Sans")}};
  ui::Font font_ = connection->font(9, FontWeight::Regular);
};

TEST_F(TextTest, HasAWidth) {
  EXPECT_EQ(width(""), 0);
  EXPECT_GT(width("a"), 0);
  EXPECT_EQ(width("aé中"), width("a") + width("é") + width("中"));
  EXPECT_EQ(width("a\xFFz"), width("a\uFFFDz"));
}

TEST_F(TextTest, RunStandsOnItsBaselineAndReturnsItsAdvance) {
  int advance = 0;
  const Picture picture = onWhite(
      [&](ui::Canvas& canvas) { advance = ui::drawRun(canvas, 30, 60, "HH", font_, kBlack); });
  EXPECT_EQ(advance, width("HH"));
  const ui::Rect ink = inkOf(picture);
  EXPECT_EQ(ink.y + ink.h, 60);
  EXPECT_GE(ink.x, 30);
  EXPECT_LE(ink.x + ink.w, 30 + advance);
  EXPECT_GT(ink.w, advance / 2);
}

TEST_F(TextTest, HasItsColour) {
  const auto drawn = [&](ui::Colour colour) {
    return onWhite([&](ui::Canvas& canvas) { ui::drawRun(canvas, 30, 60, "HHH", font_, colour); });
  };
  EXPECT_GT(drawn(0xFF2040C0).count(0x2040C0), 0);
  EXPECT_EQ(drawn(0x802040C0).count(0x2040C0), 0);
  EXPECT_FALSE(isBlank(drawn(0x802040C0)));
  EXPECT_TRUE(isBlank(drawn(0x002040C0)));
}

TEST_F(TextTest, StandsLeftInTheMiddleOrRight) {
  for (const int spare : {0, 20, 21}) {
    const ui::Rect rect{15, 10, width("label") + spare, 30};
    const int y = baseline(rect);
    EXPECT_EQ(inside(rect, "label", Align::Left).pixels, run(15, y, "label").pixels);
    EXPECT_EQ(inside(rect, "label", Align::Centre).pixels, run(15 + spare / 2, y, "label").pixels);
    EXPECT_EQ(inside(rect, "label", Align::Right).pixels, run(15 + spare, y, "label").pixels);
  }
}

TEST_F(TextTest, IsCentredVertically) {
  for (const int spare : {40, 41, 1, 0, -1, -3, -8}) {
    const ui::Rect rect{15, 20, 100, font_.height + spare};
    EXPECT_EQ(inside(rect, "label").pixels, run(15, 20 + spare / 2 + font_.ascent, "label").pixels)
        << spare;
  }
}

TEST_F(TextTest, ThatFitsIsWhole) {
  const ui::Rect rect{10, 10, width("a long label"), 30};
  EXPECT_EQ(inside(rect, "a long label").pixels, run(10, baseline(rect), "a long label").pixels);
}

TEST_F(TextTest, OnePixelTooWideGetsAnEllipsis) {
  const std::string text = "a long label";
  const ui::Rect rect{10, 10, width(text) - 1, 30};
  std::size_t length = text.size();
  while (width(text.substr(0, length)) > rect.w - width("…")) --length;
  ASSERT_GT(length, 0u);
  const std::string shown = text.substr(0, length) + "…";
  EXPECT_EQ(inside(rect, text).pixels, run(10, baseline(rect), shown).pixels);
  EXPECT_EQ(inside(rect, text, Align::Right).pixels,
            run(10 + rect.w - width(shown), baseline(rect), shown).pixels);
}

TEST_F(TextTest, InARectangleNoWiderThanAnEllipsisIsNothing) {
  const int ellipsis = width("…");
  EXPECT_TRUE(isBlank(inside({10, 10, ellipsis - 1, 30}, "label")));
  EXPECT_TRUE(isBlank(inside({10, 10, ellipsis, 30}, "label")));
  EXPECT_EQ(inside({10, 10, ellipsis + 1, 30}, "label").pixels,
            run(10, baseline({10, 10, 9, 30}), "…").pixels);
}

TEST_F(TextTest, WithoutFontAreaOrCharactersIsNothing) {
  EXPECT_TRUE(isBlank(inside({10, 10, 0, 30}, "label")));
  EXPECT_TRUE(isBlank(inside({10, 10, 50, 0}, "label")));
  EXPECT_TRUE(isBlank(inside({10, 10, 50, -7}, "label")));
  EXPECT_TRUE(isBlank(inside({10, 10, 50, 30}, "")));
  EXPECT_TRUE(isBlank(run(10, 40, "")));
  font_ = {};
  EXPECT_TRUE(isBlank(inside({10, 10, 50, 30}, "label")));
  EXPECT_TRUE(isBlank(run(10, 40, "label")));
  EXPECT_EQ(width("label"), 0);
}

TEST_F(TextTest, ShowsAByteOfNoCharacterAsReplacementAndGoesOn) {
  const Picture expected = run(10, 40, "a\uFFFDz");
  EXPECT_EQ(run(10, 40, "a\xFFz").pixels, expected.pixels);
  EXPECT_EQ(inside({10, 10, 150, 30}, "a\xFFz").pixels,
            inside({10, 10, 150, 30}, "a\uFFFDz").pixels);
  EXPECT_NE(expected.pixels, run(10, 40, "a\uFFFD").pixels);
  EXPECT_NE(expected.pixels, run(10, 40, "az").pixels);
}

/// Within `clip` the pictures are equal, and outside of it `part` is white.
void expectClipped(const Picture& part, const Picture& whole, const ui::Rect& clip) {
  for (int y = 0; y < whole.height; ++y) {
    for (int x = 0; x < whole.width; ++x) {
      const bool within = x >= clip.x && x < clip.x + clip.w && y >= clip.y && y < clip.y + clip.h;
      ASSERT_EQ(part.at(x, y), within ? whole.at(x, y) : 0xFFFFFF) << x << "," << y;
    }
  }
}

TEST_F(TextTest, ObeysTheClip) {
  const ui::Rect rect{10, 30, 120, 20};
  const ui::Rect clip{20, 35, 9, 5};
  const Picture whole = inside(rect, "Wide label");
  const Picture part = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip(clip);
    ui::drawText(canvas, rect, "Wide label", font_, kBlack);
  });
  expectClipped(part, whole, clip);
  EXPECT_FALSE(isBlank(part));
}

TEST_F(TextTest, ThatReachesBeyondItsRectangleIsShownThereAsWell) {
  const ui::Rect rect{10, 40, 120, 3};
  const ui::Rect below{0, 43, 200, 57};
  const Picture part = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip(below);
    ui::drawText(canvas, rect, "gypsy", font_, kBlack);
  });
  expectClipped(part, inside(rect, "gypsy"), below);
  EXPECT_FALSE(isBlank(part));
}

TEST_F(TextTest, FarOutsideDoesNotWrapAround) {
  EXPECT_TRUE(isBlank(run(65536 + 10, 50, "label")));
  EXPECT_TRUE(isBlank(run(10, 65536 + 50, "label")));
  EXPECT_TRUE(isBlank(inside({10, 10 - 65536, 100, 30}, "label")));
}

TEST_F(TextTest, BegunFarOutsideIsSeenWhereItPasses) {
  const int before = 5000 * width("m");
  ASSERT_GT(before, 40'000);
  EXPECT_EQ(run(20 - before, 50, std::string(5000, 'm') + "xyz").pixels,
            run(20 - 5 * width("m"), 50, "mmmmmxyz").pixels);
}

TEST_F(TextTest, OfEnormousLengthIsDrawn) {
  const std::string text(500'000, 'm');
  EXPECT_EQ(run(10, 50, text).pixels, run(10, 50, text.substr(0, 100)).pixels);
  const ui::Rect rect{10, 10, 100, 30};
  EXPECT_EQ(inside(rect, text).pixels, inside(rect, text.substr(0, 100)).pixels);
}

TEST_F(TextTest, OfAnyBytesIsTakenByTheServer) {
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  const std::vector<std::string> texts = {"Latin",
                                          "Ελληνικά",
                                          "Кириллица",
                                          "中文 日本語 한국어",
                                          "العربية",
                                          "עברית",
                                          "हिन्दी",
                                          "🚀😀👩‍👩‍👧🇪🇺",
                                          "a\nb\tc\r",
                                          "\x01\x1B[0m\x7F",
                                          everyByte,
                                          "\xED\xA0\x80\xC0\xAF\xF5\xFE",
                                          "e\u0301\u0302\u0303",
                                          "\u202Eright to left",
                                          "\U0010FFFF\U000E0001\uFEFF"};
  for (const std::string& text : texts) {
    const Picture picture = run(10, 40, text);
    EXPECT_FALSE(isBlank(picture)) << text;
    EXPECT_FALSE(isBlank(inside({0, 0, 60, 40}, text))) << text;
  }
}

TEST_F(TextTest, WrapsIntoAParagraphAndDrawsItsLinesOneBelowAnother) {
  const int wide = width("two words");
  const ui::Paragraph paragraph(*connection, "two words more\nend", font_, wide);
  EXPECT_EQ(paragraph.lines(), (std::vector<std::string>{"two words", "more", "end"}));
  EXPECT_EQ(paragraph.height(), 3 * font_.height);
  for (const Align align : {Align::Left, Align::Right}) {
    const Picture drawn =
        onWhite([&](ui::Canvas& canvas) { paragraph.draw(canvas, 30, 5, kBlack, align); });
    const Picture expected = onWhite([&](ui::Canvas& canvas) {
      int y = 5;
      for (const std::string& line : paragraph.lines()) {
        ui::drawText(canvas, {30, y, wide, font_.height}, line, font_, kBlack, align);
        y += font_.height;
      }
    });
    EXPECT_EQ(drawn.pixels, expected.pixels);
    EXPECT_FALSE(isBlank(drawn));
  }
}

TEST_F(TextTest, OfNoParagraphIsNothing) {
  const ui::Paragraph none;
  EXPECT_EQ(none.height(), 0);
  EXPECT_TRUE(isBlank(onWhite([&](ui::Canvas& canvas) { none.draw(canvas, 5, 5, kBlack); })));
}

TEST(TextWithoutFonts, IsNothingAndHarmless) {
  const InstalledFonts none({});
  WindowOnServer screen;
  const ui::Font font = screen.connection->font(9, FontWeight::Regular);
  const Picture picture = screen.paint([&](ui::Canvas& canvas) {
    canvas.fillRect(kAll, kLetters);
    EXPECT_EQ(ui::drawRun(canvas, 10, 40, "label", font, kBlack), 0);
    ui::drawText(canvas, {10, 10, 100, 30}, "label", font, kBlack, Align::Centre);
    ui::Paragraph(canvas.connection(), "two\nlines", font, 50).draw(canvas, 0, 0, kBlack);
  });
  EXPECT_TRUE(isBlank(picture));
}

/// True when `rgb` is no shade of grey.
bool isColourful(std::uint32_t rgb) {
  return (rgb >> 16) != (rgb >> 8 & 0xFF) || (rgb & 0xFF) != (rgb >> 8 & 0xFF);
}

TEST(ColourEmoji, AreDrawnInTheirColoursHoweverMany) {
  const std::string emoji = colourEmojiFile();
  if (emoji.empty()) GTEST_SKIP() << "this machine has no font with coloured emoji";
  const InstalledFonts fonts({fontFile("DejaVu Sans"), emoji}, {{"sans-serif", "DejaVu Sans"}});
  WindowOnServer screen;
  const ui::Font font = screen.connection->font(9, FontWeight::Regular);
  const Picture picture = screen.paint([&](ui::Canvas& canvas) {
    canvas.fillRect(kAll, kLetters);
    ui::ErrorTrap trap(screen.connection->native().display);
    for (int row = 0; row < 5; ++row) {
      ui::drawText(canvas, {0, row * 20, 200, 20}, "🚀🚁🚂🚃🚄🚅🚆🚇🚈🚉", font, kBlack);
    }
    EXPECT_FALSE(trap.caught());
  });
  if (XftGetVersion() >= 20305) {
    EXPECT_GT(std::ranges::count_if(picture.pixels, isColourful), 500);
  }
  EXPECT_FALSE(isBlank(picture));
}

/// A line of text as the server's `resources` have it.
Picture withResources(const std::string& resources) {
  const InstalledFonts fonts({fontFile("DejaVu Sans")});
  WindowOnServer screen({.resources = resources});
  const ui::Font font = screen.connection->font(9, FontWeight::Regular);
  return screen.paint([&](ui::Canvas& canvas) {
    canvas.fillRect(kAll, kLetters);
    ui::drawRun(canvas, 10, 40, "Some label", font, kBlack);
  });
}

TEST(XResources, DecideWhetherTextIsSmooth) {
  const Picture plain = withResources("");
  const Picture sharp = withResources("Xft.antialias:\t0\n");
  EXPECT_LT(plain.count(0xFFFFFF) + plain.count(0), 200 * 100);
  EXPECT_EQ(sharp.count(0xFFFFFF) + sharp.count(0), 200 * 100);
  EXPECT_FALSE(isBlank(sharp));
}

TEST(DeepScreen, ShowsTextInItsColour) {
  const InstalledFonts fonts({fontFile("DejaVu Sans")});
  WindowOnServer deep({.depth = 30});
  const ui::Font font = deep.connection->font(60, FontWeight::Regular);
  deep.paint([&](ui::Canvas& canvas) {
    canvas.fillRect(kAll, kLetters);
    ui::drawRun(canvas, 0, 90, "█", font, 0xFFFF0000);
  });
  EXPECT_EQ(deep.other.screenPixel(deep.window.xid(), 20, 60), 0x3FFul << 20);
}

}  // namespace
}  // namespace test
