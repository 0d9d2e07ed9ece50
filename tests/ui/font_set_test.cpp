// Before Xlib, whose macros it does not bear.
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "tests/ui/installed_fonts.h"
#include "tests/ui/window_test_base.h"
#include "ui/font_set.h"

namespace test {
namespace {

using ui::FontWeight;

/// Has Latin letters and others, but no Hebrew and no Chinese ones.
std::string mono() { return fontFile("DejaVu Sans Mono"); }
/// Has Hebrew letters, but no Chinese ones.
std::string sans() { return fontFile("DejaVu Sans"); }
std::string boldSans() { return fontFile("DejaVu Sans", FontWeight::Bold); }

const std::map<std::string, std::string> kSansSerifIsMono = {{"sans-serif", "DejaVu Sans Mono"}};

std::string file(const XftFont* font) {
  FcChar8* name = nullptr;
  FcPatternGetString(font->pattern, FC_FILE, 0, &name);
  return reinterpret_cast<const char*>(name);
}

double number(const XftFont* font, const char* property) {
  double value = -1;
  FcPatternGetDouble(font->pattern, property, 0, &value);
  return value;
}

class FontSetTest : public WindowTest {
 protected:
  ui::FontSet& setOf(const ui::Font& font) {
    return *connection->native().fontSets[static_cast<std::size_t>(font.set)];
  }
  ui::FontSet& regular() { return setOf(connection->font(9, FontWeight::Regular)); }
};

TEST_F(FontSetTest, IsOpenedOnceForASizeAndWeight) {
  const ui::Font font = connection->font(9, FontWeight::Regular);
  const ui::Font again = connection->font(9, FontWeight::Regular);
  EXPECT_NE(font.font, nullptr);
  EXPECT_EQ(font.font, again.font);
  EXPECT_EQ(font.set, again.set);
  EXPECT_EQ(connection->native().fontSets.size(), 1u);
}

TEST_F(FontSetTest, IsAnotherForAnotherSizeOrWeight) {
  const ui::Font font = connection->font(9, FontWeight::Regular);
  const ui::Font bold = connection->font(9, FontWeight::Bold);
  const ui::Font larger = connection->font(9.5, FontWeight::Regular);
  EXPECT_EQ(font.set, 0);
  EXPECT_EQ(bold.set, 1);
  EXPECT_EQ(larger.set, 2);
  EXPECT_NE(bold.font, font.font);
  EXPECT_NE(larger.font, font.font);
  EXPECT_EQ(connection->font(9, FontWeight::Bold).set, 1);
  EXPECT_EQ(connection->native().fontSets.size(), 3u);
}

TEST_F(FontSetTest, HandsOutTheLengthsOfItsBaseFont) {
  const ui::Font font = connection->font(20, FontWeight::Regular);
  EXPECT_EQ(font.ascent, font.font->ascent);
  EXPECT_EQ(font.descent, font.font->descent);
  EXPECT_EQ(font.height, font.ascent + font.descent);
  EXPECT_GT(font.ascent, font.descent);
}

TEST_F(FontSetTest, AsksForTheWeight) {
  const InstalledFonts fonts({sans(), boldSans()});
  EXPECT_EQ(file(connection->font(9, FontWeight::Regular).font), sans());
  EXPECT_EQ(file(connection->font(9, FontWeight::Bold).font), boldSans());
}

TEST_F(FontSetTest, AsksForTheWeightOfAFallbackToo) {
  const InstalledFonts fonts({mono(), sans(), boldSans()}, kSansSerifIsMono);
  EXPECT_EQ(file(setOf(connection->font(9, FontWeight::Regular)).runs("א")[0].font), sans());
  EXPECT_EQ(file(setOf(connection->font(9, FontWeight::Bold)).runs("א")[0].font), boldSans());
}

TEST(FontSize, IsPointsAtTheScaleOfTheInterface) {
  for (const int dpi : {96, 144}) {
    const WindowOnServer screen({.resources = "Xft.dpi:\t" + std::to_string(dpi) + '\n'});
    const XftFont* font = screen.connection->font(9, FontWeight::Regular).font;
    EXPECT_EQ(number(font, FC_PIXEL_SIZE), dpi / 8);
  }
}

TEST_F(FontSetTest, IsRecordedWithoutAnyFont) {
  const InstalledFonts none({});
  const ui::Font font = connection->font(9, FontWeight::Regular);
  EXPECT_EQ(font.font, nullptr);
  EXPECT_EQ(font.ascent, 0);
  EXPECT_EQ(font.descent, 0);
  EXPECT_EQ(font.height, 0);
  EXPECT_EQ(font.set, 0);
  EXPECT_EQ(connection->font(9, FontWeight::Regular).set, 0);
  EXPECT_TRUE(regular().runs("text").empty());
  EXPECT_EQ(regular().width("text"), 0);
}

TEST_F(FontSetTest, TakesSansWhereSansSerifDoesNotOpen) {
  const std::string lost = directory / "lost.ttf";
  writeFile(lost, readFile(mono()));
  const InstalledFonts fonts({lost, sans()},
                             {{"sans-serif", "DejaVu Sans Mono"}, {"sans", "DejaVu Sans"}});
  writeFile(lost);
  const ui::Font font = connection->font(9, FontWeight::Regular);
  ASSERT_NE(font.font, nullptr);
  EXPECT_EQ(file(font.font), sans());
}

TEST_F(FontSetTest, SearchesNothingForWhatTheBaseFontHas) {
  const InstalledFonts fonts({mono(), sans()}, kSansSerifIsMono);
  EXPECT_EQ(regular().runs("name").size(), 1u);
  EXPECT_TRUE(regular().fallbacks().empty());
  EXPECT_TRUE(regular().missing().empty());
}

TEST_F(FontSetTest, FindsAFontForACharacterThatTheBaseFontLacks) {
  const InstalledFonts fonts({mono(), sans()}, kSansSerifIsMono);
  const auto runs = regular().runs("א");
  ASSERT_EQ(regular().fallbacks().size(), 1u);
  XftFont* fallback = regular().fallbacks()[0];
  EXPECT_EQ(runs, (std::vector<ui::TextRun>{{fallback, 0, 2}}));
  EXPECT_EQ(file(fallback), sans());
  EXPECT_EQ(number(fallback, FC_PIXEL_SIZE), 12 * connection->scale());
  EXPECT_TRUE(regular().missing().empty());
}

TEST_F(FontSetTest, FindsNothingTwice) {
  {
    const InstalledFonts fonts({mono(), sans()}, kSansSerifIsMono);
    regular().runs("א");
  }
  const InstalledFonts none({});
  EXPECT_EQ(regular().runs("בא").size(), 1u);
  EXPECT_EQ(regular().runs("ב")[0].font, regular().fallbacks()[0]);
  EXPECT_EQ(regular().fallbacks().size(), 1u);
  EXPECT_TRUE(regular().missing().empty());
}

TEST_F(FontSetTest, SearchesForAHopelessCharacterOnlyOnce) {
  XftFont* base = nullptr;
  {
    const InstalledFonts fonts({mono()});
    base = connection->font(9, FontWeight::Regular).font;
    EXPECT_EQ(regular().runs("אa中"), (std::vector<ui::TextRun>{{base, 0, 6}}));
    EXPECT_EQ(regular().missing(), (std::vector<char32_t>{U'א', U'中'}));
  }
  // Another search would find it now.
  const InstalledFonts fonts({mono(), sans()});
  EXPECT_EQ(regular().runs("א"), (std::vector<ui::TextRun>{{base, 0, 2}}));
  EXPECT_TRUE(regular().fallbacks().empty());
  EXPECT_EQ(regular().missing(), (std::vector<char32_t>{U'א', U'中'}));
}

TEST_F(FontSetTest, RemembersHopelessCharactersInAnyOrder) {
  const InstalledFonts fonts({mono()});
  for (int round = 0; round < 2; ++round) regular().runs("中文א日");
  EXPECT_EQ(regular().missing(), (std::vector<char32_t>{U'א', U'中', U'文', U'日'}));
}

TEST_F(FontSetTest, TakesAFallbackThatDoesNotOpenForNone) {
  const std::string lost = directory / "lost.ttf";
  writeFile(lost, readFile(sans()));
  const InstalledFonts fonts({mono(), lost}, kSansSerifIsMono);
  writeFile(lost);
  const ui::Font font = connection->font(9, FontWeight::Regular);
  EXPECT_EQ(regular().runs("א")[0].font, font.font);
  EXPECT_EQ(regular().missing(), std::vector<char32_t>{U'א'});
  EXPECT_TRUE(regular().fallbacks().empty());
}

TEST_F(FontSetTest, SplitsRunsWhereTheFontChanges) {
  const InstalledFonts fonts({mono(), sans()}, kSansSerifIsMono);
  XftFont* base = connection->font(9, FontWeight::Regular).font;
  const auto runs = regular().runs("abאבc中");
  XftFont* fallback = regular().fallbacks().at(0);
  EXPECT_EQ(runs, (std::vector<ui::TextRun>{{base, 0, 2}, {fallback, 2, 6}, {base, 6, 10}}));
}

TEST_F(FontSetTest, SplitsLongRuns) {
  const InstalledFonts fonts({sans()});
  XftFont* base = connection->font(9, FontWeight::Regular).font;
  std::string text;
  for (int i = 0; i < 300; ++i) text += "é";
  EXPECT_EQ(regular().runs(text),
            (std::vector<ui::TextRun>{{base, 0, 256}, {base, 256, 512}, {base, 512, 600}}));
}

TEST_F(FontSetTest, AddsUpLongTexts) {
  const int one = regular().width("m");
  EXPECT_GT(one, 0);
  EXPECT_EQ(regular().width(std::string(3000, 'm')), 3000 * one);
}

TEST_F(FontSetTest, AddsUpWideLetters) {
  const InstalledFonts fonts({sans()});
  ui::FontSet& huge = setOf(connection->font(400, FontWeight::Regular));
  EXPECT_GT(huge.width("m"), 400);
  EXPECT_EQ(huge.width(std::string(100, 'm')), 100 * huge.width("m"));
}

TEST_F(FontSetTest, CountsAByteOfNoCharacterAsOneReplacement) {
  const int expected = regular().width("a") + 2 * regular().width("\uFFFD") + regular().width("b");
  EXPECT_EQ(regular().width("a\xFF\xE4"
                            "b"),
            expected);
  EXPECT_EQ(regular().width("ab\xE4\xB8"), expected);
}

TEST_F(FontSetTest, RemembersWidths) {
  int boxed = 0;
  {
    const InstalledFonts fonts({mono()});
    boxed = regular().width("א");
  }
  const InstalledFonts fonts({mono(), sans()});
  regular().width("ב");  // brings a font that has the first letter as well
  const auto runs = regular().runs("א");
  ASSERT_NE(regular().measure(runs[0], "א"), boxed);
  EXPECT_EQ(regular().width("א"), boxed);
}

/// The base font and a fallback font for the server's `resources`.
std::vector<XftFont*> baseAndFallback(const WindowOnServer& screen) {
  const InstalledFonts fonts({mono(), sans()}, kSansSerifIsMono);
  const ui::Font font = screen.connection->font(9, FontWeight::Regular);
  const auto runs = screen.connection->native().fontSets[0]->runs("aא");
  EXPECT_EQ(runs.size(), 2u);
  return {font.font, runs.back().font};
}

int glyphMemory(const XftFont* font) {
  int bytes = -1;
  FcPatternGetInteger(font->pattern, XFT_MAX_GLYPH_MEMORY, 0, &bytes);
  return bytes;
}

TEST(GlyphMemory, IsEnoughForEmojiInEveryFont) {
  const WindowOnServer screen;
  for (const XftFont* font : baseAndFallback(screen)) EXPECT_EQ(glyphMemory(font), 64 << 20);
}

TEST(GlyphMemory, IsWhatTheUserSays) {
  const WindowOnServer screen({.resources = "Xft.maxglyphmemory:\t3000000\n"});
  for (const XftFont* font : baseAndFallback(screen)) EXPECT_EQ(glyphMemory(font), 3000000);
}

TEST(XResources, HoldForEveryFont) {
  const WindowOnServer screen(
      {.resources = "Xft.antialias:\t0\nXft.hintstyle:\thintslight\nXft.autohint:\ttrue\n"
                    "Xft.rgba:\tbgr\nXft.lcdfilter:\tlcdlegacy\nXft.embolden:\t1\n"
                    "Xft.minspace:\t1\nXft.hinting:\t0\n"});
  for (const XftFont* font : baseAndFallback(screen)) {
    const auto flag = [&](const char* name) {
      FcBool value = FcDontCare;
      FcPatternGetBool(font->pattern, name, 0, &value);
      return value;
    };
    EXPECT_EQ(flag(FC_ANTIALIAS), FcFalse);
    EXPECT_EQ(flag(FC_AUTOHINT), FcTrue);
    EXPECT_EQ(flag(FC_EMBOLDEN), FcTrue);
    EXPECT_EQ(flag(FC_MINSPACE), FcTrue);
    EXPECT_EQ(flag(FC_HINTING), FcFalse);
    EXPECT_EQ(number(font, FC_HINT_STYLE), FC_HINT_SLIGHT);
    EXPECT_EQ(number(font, FC_RGBA), FC_RGBA_BGR);
    EXPECT_EQ(number(font, FC_LCD_FILTER), FC_LCD_LEGACY);
  }
}

}  // namespace
}  // namespace test
