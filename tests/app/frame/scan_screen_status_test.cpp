// A scan as the whole window: what the right end of the status line tells of.

#include <cstdint>
#include <string>

#include "app/model/format.h"
#include "app/model/kind_rows.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

constexpr std::int64_t kSecond = 1000;

class ScanScreenStatusTest : public ScanScreenTest {
 protected:
  bool type(const std::string& letter, std::int64_t atMs) {
    const bool known = screen_.key({.keysym = static_cast<unsigned char>(letter[0]),
                                    .text = {},
                                    .timeMs = atMs,
                                    .typed = letter});
    screen_.prepare();
    return known;
  }
  bool takeBack(std::int64_t atMs) {
    const bool known = screen_.key({.keysym = ui::key::kBackSpace, .text = {}, .timeMs = atMs});
    screen_.prepare();
    return known;
  }
  void tick(std::int64_t atMs) {
    screen_.tick(atMs);
    screen_.prepare();
  }
  std::string highlightText(std::size_t row) const {
    return "Only " + kindRowName(kinds().rows()[row].kind) + "; Escape ends it";
  }
};

// What was used last.

TEST_F(ScanScreenStatusTest, NamesWhatIsUnderThePointerAgainAfterTheWheel) {
  const ui::Rect& place = screen_.layout().list;
  fillEmpty(100, 1000);
  click(onMap(tree_->firstChild(empty_)));
  point(place);
  key(ui::key::kDown);
  ASSERT_NE(right(), tree_->path(list().hovered().value()));
  wheel(place, 1);
  EXPECT_EQ(right(), tree_->path(list().hovered().value()));
}

TEST_F(ScanScreenStatusTest, NamesNothingAfterAPressWhereNothingIs) {
  point(screen_.layout().status);
  key(ui::key::kDown);
  ASSERT_EQ(right(), "/r/big");
  changes_ = 0;
  screen_.press(at(screen_.layout().status));
  EXPECT_GT(changes_, 0);
  screen_.prepare();
  EXPECT_EQ(right(), "");
}

// Letters that are typed.

TEST_F(ScanScreenStatusTest, TellsOfTheLettersThatAreTypedUntilTheyAreForgotten) {
  point(inList(photo_));
  ASSERT_EQ(right(), "/r/photo.jpg");
  type("e", 5 * kSecond);
  EXPECT_EQ(right(), "Typed: e");
  type("m", 5 * kSecond + 900);
  EXPECT_EQ(right(), "Typed: em");
  tick(6 * kSecond + 899);
  EXPECT_EQ(right(), "Typed: em");
  changes_ = 0;
  tick(6 * kSecond + 900);
  EXPECT_GT(changes_, 0);
  EXPECT_EQ(right(), "/r/empty");
}

TEST_F(ScanScreenStatusTest, TellsOfLettersThatNoNameBeginsWith) {
  changes_ = 0;
  type("q", 0);
  EXPECT_GT(changes_, 0);
  EXPECT_EQ(right(), "Typed: q");
}

TEST_F(ScanScreenStatusTest, TakesALetterBackByBackspace) {
  type("e", 0);
  type("m", 100);
  EXPECT_TRUE(takeBack(200));
  EXPECT_EQ(right(), "Typed: e");
  EXPECT_TRUE(takeBack(300));
  EXPECT_EQ(right(), "/r/empty");
  EXPECT_TRUE(takeBack(400)) << "one too many goes nowhere";
  EXPECT_FALSE(takeBack(2 * kSecond)) << "the window goes out then";
}

TEST_F(ScanScreenStatusTest, TellsOfTypedLettersWhereverTheKeyboardIs) {
  for (int i = 0; i < 3; ++i) {
    key(ui::key::kTab);
    const std::int64_t now = (5 + 3 * i) * kSecond;
    type("l", now);
    EXPECT_EQ(right(), "Typed: l");
    takeBack(now + 100);
    EXPECT_NE(right(), "Typed: l");
    tick(now + 2 * kSecond);
  }
}

TEST_F(ScanScreenStatusTest, ForgetsTypedLettersWithAnotherKeyAndAPressInTheList) {
  type("e", 0);
  key(ui::key::kUp);
  EXPECT_EQ(right().find("Typed"), std::string::npos);
  type("e", 100);
  ASSERT_EQ(right(), "Typed: e");
  changes_ = 0;
  const ui::Rect place = screen_.layout().list;
  click(ui::MouseEvent{.x = place.x + 20, .y = place.y + place.h - 2, .button = 1});
  EXPECT_GT(changes_, 0);
  EXPECT_EQ(right().find("Typed"), std::string::npos);
}

TEST_F(ScanScreenStatusTest, TellsOfTypedLettersBeforeWhatIsSelected) {
  click(onMap(song_));
  click(onMap(photo_), 1, true);
  const std::string several = "2 selected · " + formatSize(90'000);
  ASSERT_EQ(right(), several);
  type("q", 0);
  EXPECT_EQ(right(), "Typed: q");
  tick(2 * kSecond);
  EXPECT_EQ(right(), several);
}

// A kind that is highlighted.

TEST_F(ScanScreenStatusTest, TellsOfTheHighlightedKindUntilItEnds) {
  point(inKinds(0));
  click(inKinds(0));
  ASSERT_TRUE(kinds().selectedKind());
  EXPECT_EQ(right(), highlightText(0));
  point(onMap(photo_));
  EXPECT_EQ(right(), "/r/photo.jpg") << "there is something under the pointer";
  point(screen_.layout().status);
  EXPECT_EQ(right(), highlightText(0));
  key(ui::key::kEscape);
  EXPECT_EQ(right().find("Only"), std::string::npos);
}

TEST_F(ScanScreenStatusTest, TellsOfTheKindThatTheKeyboardHighlights) {
  click(inKinds(1));
  key(ui::key::kEscape);
  ASSERT_FALSE(kinds().selectedKind());
  key(ui::key::kReturn);
  ASSERT_TRUE(kinds().selectedKind());
  EXPECT_EQ(right(), highlightText(1));
  click(inList(photo_));
  key(ui::key::kUp);
  EXPECT_EQ(right(), "/r/big") << "the keys are used elsewhere";
}

TEST_F(ScanScreenStatusTest, TellsOfWhatIsSelectedBeforeTheHighlightedKind) {
  click(inKinds(0));
  click(onMap(song_));
  click(onMap(photo_), 1, true);
  point(screen_.layout().status);
  EXPECT_EQ(right(), "2 selected · " + formatSize(90'000));
}

TEST_F(ScanScreenStatusTest, TellsWhatTheButtonUnderThePointerDoes) {
  point(screen_.toolbar().layout().place(Action::Rescan));
  EXPECT_EQ(right(), "Scan this folder again (F5)");
  point(inList(big_));
  EXPECT_EQ(right(), "/r/big");
}

}  // namespace
}  // namespace app
