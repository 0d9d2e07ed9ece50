#include "ui/widgets/list_cursor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/keys.h"

namespace ui {
namespace {

/// Rows with a letter each, which is their key.
class ListCursorTest : public testing::Test {
 protected:
  std::optional<std::size_t> rowOf(char letter) const {
    const std::size_t row = letters_.find(letter);
    return row == std::string::npos ? std::nullopt : std::optional(row);
  }
  RowRange rangeTo(std::size_t row) {
    return cursor_.rangeTo(row, [this](char letter) { return rowOf(letter); });
  }
  void handOn(const std::string& remaining) {
    cursor_.handOn(
        rowOf(*cursor_.current()).value(), letters_.size(),
        [this](std::size_t row) { return letters_[row]; },
        [&](char letter) { return remaining.find(letter) != std::string::npos; });
  }

  std::string letters_ = "abcdef";
  ListCursor<char> cursor_;
};

TEST_F(ListCursorTest, BeginsWithoutAnything) {
  EXPECT_EQ(cursor_.current(), std::nullopt);
  EXPECT_EQ(rangeTo(3), (RowRange{3, 4}));
}

// Ranges.

TEST_F(ListCursorTest, RangesFromTheAnchorWhichStays) {
  cursor_.setAnchor('c');
  EXPECT_EQ(rangeTo(4), (RowRange{2, 5}));
  EXPECT_EQ(rangeTo(0), (RowRange{0, 3}));
  EXPECT_EQ(rangeTo(2), (RowRange{2, 3}));
}

TEST_F(ListCursorTest, RangesFromTheCurrentRowWithoutAnAnchor) {
  cursor_.setCurrent('b');
  EXPECT_EQ(rangeTo(3), (RowRange{1, 4}));
  cursor_.setCurrent('d');
  EXPECT_EQ(rangeTo(4), (RowRange{1, 5})) << "where the range began stays";
}

TEST_F(ListCursorTest, RangesFromTheAnchorWhereverItsRowIsByNow) {
  cursor_.setAnchor('c');
  letters_ = "cabdef";
  EXPECT_EQ(rangeTo(2), (RowRange{0, 3}));
  letters_ = "abdef";
  cursor_.setCurrent('b');
  EXPECT_EQ(rangeTo(3), (RowRange{1, 4})) << "it has no row any more";
}

TEST_F(ListCursorTest, ForgetsTheAnchorAndTheSearchWhenItIsReset) {
  const auto nameAt = [](std::size_t) { return "xy"; };
  const KeyEvent x = {.keysym = 'x', .text = {}, .timeMs = 100, .typed = "x"};
  const KeyEvent y = {.keysym = 'y', .text = {}, .timeMs = 110, .typed = "y"};
  cursor_.setAnchor('c');
  ASSERT_TRUE(cursor_.type(x, 6, 0, nameAt).row);
  cursor_.reset('e');
  EXPECT_EQ(cursor_.current(), 'e');
  EXPECT_EQ(rangeTo(5), (RowRange{4, 6}));
  EXPECT_FALSE(cursor_.type(y, 6, 0, nameAt).row) << "nothing begins with y";
}

// Handing on.

TEST_F(ListCursorTest, StaysOnARowThatRemains) {
  cursor_.setCurrent('c');
  handOn("c");
  EXPECT_EQ(cursor_.current(), 'c');
}

TEST_F(ListCursorTest, GoesToTheNearestRowThatRemainsAndBelowFirst) {
  cursor_.setCurrent('c');
  handOn("abdef");
  EXPECT_EQ(cursor_.current(), 'd');
  handOn("abc");
  EXPECT_EQ(cursor_.current(), 'c');
  handOn("af");
  EXPECT_EQ(cursor_.current(), 'a');
}

TEST_F(ListCursorTest, LooksAtAllRowsFromEitherEnd) {
  cursor_.setCurrent('f');
  handOn("a");
  EXPECT_EQ(cursor_.current(), 'a');
  handOn("f");
  EXPECT_EQ(cursor_.current(), 'f');
}

TEST_F(ListCursorTest, IsNowhereWhenNothingRemains) {
  cursor_.setCurrent('c');
  handOn("");
  EXPECT_EQ(cursor_.current(), std::nullopt);
}

// Searching.

class ListCursorSearchTest : public testing::Test {
 protected:
  /// The name that a letter leads to from the row of `current_`, which goes along.
  std::string type(const std::string& text, bool ctrl = false) {
    now_ += 10;
    const KeyEvent event = {.keysym = static_cast<unsigned char>(text[0]),
                            .text = {},
                            .ctrl = ctrl,
                            .timeMs = now_,
                            .typed = text};
    const auto search = cursor_.type(event, names_.size(), current_,
                                     [this](std::size_t row) { return names_[row]; });
    if (!search.taken) return "not taken";
    if (!search.row) return "none";
    current_ = search.row;
    return names_[*search.row];
  }

  bool takesBack() {
    now_ += 10;
    return cursor_
        .type({.keysym = key::kBackSpace, .text = "\b", .timeMs = now_}, names_.size(), current_,
              [this](std::size_t row) { return names_[row]; })
        .taken;
  }

  std::vector<std::string> names_ = {"alpha", "beta", "bethel", "charlie"};
  std::optional<std::size_t> current_;
  std::int64_t now_ = 5000;
  ListCursor<int> cursor_;
};

TEST_F(ListCursorSearchTest, GoesOnFromTheCurrentRowAndRoundTheEnd) {
  EXPECT_EQ(type("b"), "beta");
  now_ += 1000;
  EXPECT_EQ(type("B"), "bethel");
  now_ += 1000;
  EXPECT_EQ(type("b"), "beta");
}

TEST_F(ListCursorSearchTest, StaysWhileWhatIsTypedGoesOnToFit) {
  current_ = 0;
  EXPECT_EQ(type("b"), "beta");
  EXPECT_EQ(type("e"), "beta");
  EXPECT_EQ(type("x"), "none");
  cursor_.forgetTyped();
  EXPECT_EQ(type("c"), "charlie");
}

TEST_F(ListCursorSearchTest, TakesBackALetter) {
  EXPECT_FALSE(takesBack()) << "nothing was typed";
  EXPECT_EQ(type("b"), "beta");
  EXPECT_EQ(type("x"), "none");
  EXPECT_TRUE(takesBack());
  EXPECT_EQ(type("e"), "beta");
  EXPECT_EQ(type("é"), "none");
  EXPECT_TRUE(takesBack()) << "a whole letter";
  EXPECT_EQ(type("t"), "beta");
  EXPECT_EQ(type("h"), "bethel");
}

TEST_F(ListCursorSearchTest, TakesBackNothingOnceTheSearchIsForgotten) {
  type("b");
  now_ += 1000;
  EXPECT_FALSE(takesBack());
  type("b");
  cursor_.forgetTyped();
  EXPECT_FALSE(takesBack());
}

TEST_F(ListCursorSearchTest, KeepsABackspaceTooManyFromMeaningSomethingElse) {
  type("b");
  EXPECT_TRUE(takesBack());
  EXPECT_TRUE(takesBack());
  EXPECT_EQ(type(" "), "not taken") << "no search begins with a blank";
  EXPECT_EQ(type("c"), "charlie");
  takesBack();
  now_ += 1000;
  EXPECT_FALSE(takesBack());
}

TEST_F(ListCursorSearchTest, BeginsWithTheFirstRowWithoutACurrentOne) {
  EXPECT_EQ(type("a"), "alpha");
}

TEST_F(ListCursorSearchTest, TakesKeysThatFindNothingAmongNoNames) {
  names_.clear();
  EXPECT_EQ(type("a"), "none");
}

TEST_F(ListCursorSearchTest, TakesNoKeysThatMeanSomethingElse) {
  EXPECT_EQ(type("a", true), "not taken");
  EXPECT_EQ(type(" "), "not taken");
  EXPECT_EQ(type("b"), "beta") << "neither has begun a search";
  EXPECT_FALSE(cursor_
                   .type({.keysym = key::kDown, .text = {}, .timeMs = now_}, 4, 0,
                         [](std::size_t) { return ""; })
                   .taken);
}

}  // namespace
}  // namespace ui
