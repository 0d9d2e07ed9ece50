#include "ui/paragraph.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/utf8.h"

namespace ui {
namespace {

using Lines = std::vector<std::string>;

/// Lines for a width of `columns` characters that are equally wide.
Lines wrapped(std::string_view text, int columns) {
  const Lines lines = wrappedLines(text, columns, [](std::string_view part) {
    return static_cast<int>(
        std::ranges::count_if(part, [](char c) { return !base::isContinuation(c); }));
  });
  return lines;
}

TEST(WrappedLines, OfNoTextAreNone) { EXPECT_EQ(wrapped("", 10), Lines{}); }

TEST(WrappedLines, AreOneWhereTheTextFits) { EXPECT_EQ(wrapped("one two", 7), Lines{"one two"}); }

TEST(WrappedLines, BreakBeforeTheWordThatDoesNotFit) {
  EXPECT_EQ(wrapped("one two", 6), (Lines{"one", "two"}));
  EXPECT_EQ(wrapped("a bb ccc dddd", 5), (Lines{"a bb", "ccc", "dddd"}));
}

TEST(WrappedLines, BreakAWordWiderThanALineBetweenCharacters) {
  EXPECT_EQ(wrapped("abcdefgh", 3), (Lines{"abc", "def", "gh"}));
  EXPECT_EQ(wrapped("中文😀é!", 2), (Lines{"中文", "😀é", "!"}));
}

TEST(WrappedLines, GoOnBehindTheRestOfABrokenWord) {
  EXPECT_EQ(wrapped("a bcdefg h", 4), (Lines{"a", "bcde", "fg h"}));
}

TEST(WrappedLines, EndAtNewlines) {
  EXPECT_EQ(wrapped("one\ntwo", 10), (Lines{"one", "two"}));
  EXPECT_EQ(wrapped("one\n\ntwo", 10), (Lines{"one", "", "two"}));
  EXPECT_EQ(wrapped("\n", 10), (Lines{"", ""}));
}

TEST(WrappedLines, GiveACharacterWiderThanTheWidthALineOfItsOwn) {
  EXPECT_EQ(wrapped("ab c", 0), (Lines{"a", "b", "c"}));
  EXPECT_EQ(wrapped("ab", -3), (Lines{"a", "b"}));
}

TEST(WrappedLines, KeepSpacesWithinALine) {
  EXPECT_EQ(wrapped("  one  two", 10), Lines{"  one  two"});
}

TEST(WrappedLines, LeaveOutSpacesThatDoNotFitAtTheEndOfALine) {
  EXPECT_EQ(wrapped("one   two", 3), (Lines{"one", "two"}));
  EXPECT_EQ(wrapped("one  ", 3), Lines{"one"});
}

TEST(WrappedLines, AreValidUtf8) {
  EXPECT_EQ(wrapped("a\xFF\xE4 b", 3), (Lines{"a\uFFFD\uFFFD", "b"}));
}

}  // namespace
}  // namespace ui
