#include "base/utf8.h"

#include <gtest/gtest.h>

namespace base {
namespace {

void expectFirst(std::string_view text, char32_t codePoint, std::size_t length) {
  const auto character = firstCharacter(text);
  ASSERT_TRUE(character) << text;
  EXPECT_EQ(character->codePoint, codePoint);
  EXPECT_EQ(character->length, length);
}

TEST(FirstCharacter, DecodesSequencesOfOneToFourBytes) {
  expectFirst("a", U'a', 1);
  expectFirst("é!", U'é', 2);
  expectFirst("中文", U'中', 3);
  expectFirst("😀x", U'😀', 4);
  expectFirst(std::string_view("\0", 1), 0, 1);
  expectFirst("\xF4\x8F\xBF\xBF", 0x10FFFF, 4);
}

TEST(FirstCharacter, IsNothingWhereNoCharacterBegins) {
  EXPECT_FALSE(firstCharacter(""));
  EXPECT_FALSE(firstCharacter("\x80"));              // a continuation
  EXPECT_FALSE(firstCharacter("\xFFx"));             // no lead byte
  EXPECT_FALSE(firstCharacter("\xE4\xB8"));          // cut short
  EXPECT_FALSE(firstCharacter("\xE4x\xAD"));         // a bad continuation
  EXPECT_FALSE(firstCharacter("\xC0\xAF"));          // overlong
  EXPECT_FALSE(firstCharacter("\xED\xA0\x80"));      // a surrogate
  EXPECT_FALSE(firstCharacter("\xF4\x90\x80\x80"));  // past the last code point
}

TEST(Encoded, IsWhatFirstCharacterDecodes) {
  for (const char32_t codePoint :
       {U'a', U'\x7F', U'\x80', U'\x7FF', U'\x800', U'\xFFFF', U'\x10000', U'\x10FFFF'}) {
    const std::string bytes = encoded(codePoint);
    expectFirst(bytes, codePoint, bytes.size());
  }
}

TEST(WithReplacements, KeepsValidText) {
  EXPECT_EQ(withReplacements(""), "");
  EXPECT_EQ(withReplacements("aé中😀"), "aé中😀");
}

TEST(WithReplacements, ReplacesEveryByteOfNoCharacterAndGoesOn) {
  EXPECT_EQ(withReplacements("caf\xE9s"), "caf\uFFFDs");
  EXPECT_EQ(withReplacements("\xC0\xAFz"), "\uFFFD\uFFFDz");
  EXPECT_EQ(withReplacements("x\xE4\xB8"), "x\uFFFD\uFFFD");
}

TEST(CharacterStart, MovesBackToWhereACharacterBegins) {
  const std::string_view text = "a中b";
  EXPECT_EQ(characterStart(text, 0), 0u);
  EXPECT_EQ(characterStart(text, 1), 1u);
  EXPECT_EQ(characterStart(text, 2), 1u);
  EXPECT_EQ(characterStart(text, 3), 1u);
  EXPECT_EQ(characterStart(text, 4), 4u);
  EXPECT_EQ(characterStart(text, 5), 5u);
  EXPECT_EQ(characterStart(text, 99), 5u);
}

}  // namespace
}  // namespace base
