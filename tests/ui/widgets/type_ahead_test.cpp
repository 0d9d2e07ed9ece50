#include "ui/widgets/type_ahead.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

/// What has been typed, a key every hundredth of a second.
TypeAhead typed(std::string_view text) {
  TypeAhead search;
  std::int64_t now = 5000;
  for (const char c : text) search.type({&c, 1}, now += 10);
  return search;
}

TEST(TypeAhead, MatchesBeginnings) {
  EXPECT_TRUE(typed("pic").matches("pictures"));
  EXPECT_TRUE(typed("pic").matches("pic"));
  EXPECT_FALSE(typed("pic").matches("pi"));
  EXPECT_FALSE(typed("pic").matches("my pictures"));
  EXPECT_FALSE(typed("p").matches(""));
}

TEST(TypeAhead, MatchesInAnyCase) {
  EXPECT_TRUE(typed("PiC").matches("pIctures"));
  TypeAhead search;
  search.type("ÉΣж", 0);
  EXPECT_TRUE(search.matches("éσЖук"));
  search.type("×", 5000);
  EXPECT_FALSE(search.matches("÷")) << "which are no letters";
}

TEST(TypeAhead, LooksAtNamesThatAreNoText) {
  EXPECT_TRUE(typed("a").matches("a\xFF"));
  EXPECT_FALSE(typed("ab").matches("a\xFF"));
}

TEST(TypeAhead, ForgetsAfterASecond) {
  TypeAhead search;
  EXPECT_TRUE(search.type("a", 1000));
  EXPECT_FALSE(search.type("b", 1999));
  EXPECT_TRUE(search.matches("abc"));
  EXPECT_TRUE(search.type("c", 2999));
  EXPECT_TRUE(search.matches("cab"));
  search.forget();
  EXPECT_TRUE(search.type("d", 3000));
}

TEST(TypeAhead, TellsWhatIsTypedUntilItIsForgotten) {
  TypeAhead search;
  EXPECT_EQ(search.typed(), "");
  EXPECT_FALSE(search.forgetOld(5000));
  search.type("a", 1000);
  search.type("é", 1500);
  EXPECT_EQ(search.typed(), "aé");
  EXPECT_FALSE(search.forgetOld(2499));
  EXPECT_EQ(search.typed(), "aé");
  EXPECT_TRUE(search.forgetOld(2500));
  EXPECT_EQ(search.typed(), "");
  EXPECT_FALSE(search.forgetOld(2600)) << "once";
}

TEST(TypeAhead, TellsNothingWhenAllWasTakenBack) {
  TypeAhead search;
  search.type("a", 1000);
  EXPECT_TRUE(search.takeBack(1100));
  EXPECT_EQ(search.typed(), "");
  EXPECT_FALSE(search.forgetOld(3000)) << "nothing looks different";
}

TEST(TypeAhead, TakesABlankOnlyWithinASearch) {
  TypeAhead search;
  EXPECT_FALSE(search.accepts(" ", 0));
  search.type("my", 0);
  EXPECT_TRUE(search.accepts(" ", 500));
  EXPECT_FALSE(search.accepts(" ", 1000));
}

TEST(TypeAhead, TakesNothingThatControls) {
  const TypeAhead search;
  for (const char* text : {"", "\r", "\t", "\x1B", "\x7F", "\xFF"}) {
    EXPECT_FALSE(search.accepts(text, 0));
  }
  EXPECT_TRUE(search.accepts("7", 0));
  EXPECT_TRUE(search.accepts("é", 0));
}

}  // namespace
}  // namespace ui
