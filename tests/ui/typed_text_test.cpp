#include "ui/typed_text.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

namespace ui {
namespace {

std::string textOf(unsigned long keysym, const std::string& text = {}) {
  return typedText({.keysym = keysym, .text = text});
}

TEST(TypedText, IsTheCharacterOfTheKey) {
  EXPECT_EQ(textOf(XK_a, "a"), "a");
  EXPECT_EQ(textOf(XK_A, "A"), "A");
  EXPECT_EQ(textOf(XK_space, " "), " ");
}

TEST(TypedText, IsUtf8WhereXlibGivesLatin1) { EXPECT_EQ(textOf(XK_eacute, "\xE9"), "é"); }

TEST(TypedText, KnowsEveryUnicodeSymbol) {
  EXPECT_EQ(textOf(0x01000000 + 0x4E2D), "中");
  EXPECT_EQ(textOf(0x01000000 + 0x1F600), "😀");
}

TEST(TypedText, KnowsTheOlderSymbolsOfCyrillicAndGreek) {
  EXPECT_EQ(textOf(XK_Cyrillic_yu), "ю");
  EXPECT_EQ(textOf(XK_Cyrillic_a), "а");
  EXPECT_EQ(textOf(XK_Cyrillic_hardsign), "ъ");
  EXPECT_EQ(textOf(XK_Cyrillic_YU), "Ю");
  EXPECT_EQ(textOf(XK_Cyrillic_HARDSIGN), "Ъ");
  EXPECT_EQ(textOf(XK_Cyrillic_io), "ё");
  EXPECT_EQ(textOf(XK_Cyrillic_IO), "Ё");
  EXPECT_EQ(textOf(XK_Greek_ALPHA), "Α");
  EXPECT_EQ(textOf(XK_Greek_SIGMA), "Σ");
  EXPECT_EQ(textOf(XK_Greek_TAU), "Τ");
  EXPECT_EQ(textOf(XK_Greek_OMEGA), "Ω");
  EXPECT_EQ(textOf(XK_Greek_alpha), "α");
  EXPECT_EQ(textOf(XK_Greek_finalsmallsigma), "ς");
  EXPECT_EQ(textOf(XK_Greek_omega), "ω");
}

TEST(TypedText, IsWhatXlibSaysForOtherKeys) {
  EXPECT_EQ(textOf(XK_Return, "\r"), "\r");
  EXPECT_EQ(textOf(XK_Left), "");
  EXPECT_EQ(textOf(0x7DA), "");
}

}  // namespace
}  // namespace ui
