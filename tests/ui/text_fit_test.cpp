#include "ui/text_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "base/utf8.h"

namespace ui {
namespace {

/// Every character is ten pixels wide; "…" too.
int tenEach(std::string_view text) {
  return 10 * static_cast<int>(
                  std::ranges::count_if(text, [](char c) { return !base::isContinuation(c); }));
}

std::string atEnd(std::string_view text, int width) { return shortenedAtEnd(text, width, tenEach); }

std::string atStart(std::string_view text, int width) {
  return shortenedAtStart(text, width, tenEach);
}

TEST(Shortened, IsTheWholeTextWhereItFits) {
  EXPECT_EQ(atEnd("abcde", 50), "abcde");
  EXPECT_EQ(atStart("abcde", 50), "abcde");
  EXPECT_EQ(atEnd("", 0), "");
  EXPECT_EQ(atStart("", 0), "");
}

TEST(Shortened, LosesAsManyCharactersAsItMustForOnePixel) {
  EXPECT_EQ(atEnd("abcde", 49), "abc…");
  EXPECT_EQ(atStart("abcde", 49), "…cde");
  EXPECT_EQ(atEnd("abcde", 40), "abc…");
  EXPECT_EQ(atStart("abcde", 40), "…cde");
}

TEST(Shortened, IsTheEllipsisAloneWhereItLeavesRoomForNoCharacter) {
  for (int width = 11; width < 20; ++width) {
    EXPECT_EQ(atEnd("abcde", width), "…") << width;
    EXPECT_EQ(atStart("abcde", width), "…") << width;
  }
}

TEST(Shortened, IsNothingWhereTheEllipsisLeavesNoPixel) {
  for (const int width : {-5, 0, 1, 9, 10}) {
    EXPECT_EQ(atEnd("abcde", width), "") << width;
    EXPECT_EQ(atStart("abcde", width), "") << width;
  }
}

TEST(Shortened, CutsBetweenCharactersOnly) {
  EXPECT_EQ(atEnd("é中😀é中😀", 40), "é中😀…");
  EXPECT_EQ(atStart("é中😀é中😀", 40), "…é中😀");
}

TEST(Shortened, KeepsALongCharacterBesideAShortOne) {
  EXPECT_EQ(atEnd("中abcdef", 20), "中…");
  EXPECT_EQ(atEnd("😀é中", 20), "😀…");
  EXPECT_EQ(atStart("ba中", 20), "…中");
}

TEST(Shortened, CountsAByteOfNoCharacterAsOneReplacement) {
  EXPECT_EQ(atEnd("a\xFF"
                  "bc",
                  40),
            "a\uFFFDbc");
  EXPECT_EQ(atEnd("a\xFF"
                  "bc",
                  30),
            "a\uFFFD…");
  EXPECT_EQ(atStart("ab\xE4\xB8", 30), "…\uFFFD\uFFFD");
}

TEST(Shortened, MeasuresTextThatFitsOnce) {
  int calls = 0;
  const auto counted = [&](std::string_view text) {
    ++calls;
    return tenEach(text);
  };
  shortenedAtEnd("abcde", 50, counted);
  EXPECT_EQ(calls, 1);
  shortenedAtStart("abcde", 50, counted);
  EXPECT_EQ(calls, 2);
}

TEST(Shortened, MeasuresLongTextByBisection) {
  const std::string text(1 << 16, 'x');
  int calls = 0;
  const auto counted = [&](std::string_view part) {
    ++calls;
    return tenEach(part);
  };
  shortenedAtEnd(text, 300, counted);
  EXPECT_LE(calls, 2 + 17);
  calls = 0;
  shortenedAtStart(text, 300, counted);
  EXPECT_LE(calls, 2 + 17);
}

/// A text of characters of one to four bytes, and where its characters begin, its end included.
struct RandomText {
  explicit RandomText(std::mt19937& random) {
    constexpr std::array<std::string_view, 5> kCharacters = {"a", "é", "中", "😀", "i"};
    for (auto left = random() % 12; left > 0; --left) {
      bytes += kCharacters[random() % kCharacters.size()];
      boundaries.push_back(bytes.size());
    }
  }
  std::string bytes;
  std::vector<std::size_t> boundaries = {0};
};

/// Characters have one of five widths.
int byCharacter(std::string_view text) {
  int width = 0;
  while (const auto character = base::firstCharacter(text)) {
    width += 1 + static_cast<int>(character->codePoint % 5);
    text.remove_prefix(character->length);
  }
  return width;
}

TEST(Shortened, KeepsTheLongestPartThatFitsOfAnyText) {
  std::mt19937 random(20);
  for (int round = 0; round < 2000; ++round) {
    const RandomText text(random);
    const int width = static_cast<int>(random() % 40);
    const int available = width - byCharacter("…");
    if (byCharacter(text.bytes) <= width || available < 1) continue;
    const std::string_view whole = text.bytes;
    std::string_view beginning;
    std::string_view end = whole;
    for (const std::size_t boundary : text.boundaries) {
      if (byCharacter(whole.substr(0, boundary)) <= available)
        beginning = whole.substr(0, boundary);
      if (byCharacter(end) > available) end = whole.substr(boundary);
    }
    ASSERT_EQ(shortenedAtEnd(whole, width, byCharacter), std::string(beginning) + "…")
        << whole << " in " << width;
    ASSERT_EQ(shortenedAtStart(whole, width, byCharacter), "…" + std::string(end))
        << whole << " in " << width;
  }
}

}  // namespace
}  // namespace ui
