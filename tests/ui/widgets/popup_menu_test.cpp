// The pop-up menu in a window.

#include "ui/widgets/popup_menu.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace ui {
namespace {

using test::at;
using test::rgb;

constexpr int kWidth = 640;
constexpr int kHeight = 420;

class PopupMenuTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  /// "first", a separator, "greyed", "second" and "third".
  PopupMenuTest() { openWith({entry("first"), {}, greyed(), entry("second"), entry("third")}); }

  MenuEntry entry(const std::string& label) {
    return {.label = label, .action = [this, label] { told.push_back(label); }};
  }
  MenuEntry greyed() {
    MenuEntry entry = PopupMenuTest::entry("greyed");
    entry.enabled = false;
    return entry;
  }
  MenuEntry keyed(const std::string& label, const std::string& key) {
    MenuEntry entry = PopupMenuTest::entry(label);
    entry.key = key;
    return entry;
  }
  void openWith(std::vector<MenuEntry> entries, int x = 100, int y = 50) {
    menu = std::make_unique<PopupMenu>(style, std::move(entries), x, y);
    menu->onClosed = [this] {
      told.emplace_back("closed");
      menu.reset();
    };
    menu->setRect({0, 0, kWidth, kHeight});
  }

  ui::MouseEvent over(std::size_t entry, int button = 1) const {
    return at(menu->entryRect(entry), button);
  }
  void click(std::size_t entry) {
    menu->press(over(entry));
    menu->release(over(entry));
  }
  void keys(std::initializer_list<unsigned long> keysyms) {
    for (const unsigned long keysym : keysyms) menu->key({.keysym = keysym, .text = {}});
  }
  std::vector<std::string> taken() { return std::exchange(told, {}); }
  test::Picture picture() {
    return ViewsOnWindow::picture(kWidth, kHeight,
                                  [&](ui::Canvas& canvas) { menu->paint(canvas); });
  }

  std::unique_ptr<PopupMenu> menu;
  std::vector<std::string> told;
};

using Told = std::vector<std::string>;

bool isInside(const ui::Rect& rect, int width, int height) {
  return rect.x >= 0 && rect.y >= 0 && rect.x + rect.w <= width && rect.y + rect.h <= height;
}

TEST_F(PopupMenuTest, OpensAtThePointer) {
  EXPECT_EQ(menu->panel().x, 100);
  EXPECT_EQ(menu->panel().y, 50);
  EXPECT_TRUE(isInside(menu->panel(), kWidth, kHeight));
}

TEST_F(PopupMenuTest, IsAsWideAsItsWidestTextAndTheRoomBesideIt) {
  const std::string widest(40, 'm');
  openWith({entry(widest), entry("second")});
  const int text = style.textWidth(widest);
  ASSERT_GT(text, style.scaled(160)) << "wider than the least menu";
  EXPECT_EQ(menu->panel().w, text + 2 * style.scaled(4) + 2 * style.scaled(12));
  EXPECT_EQ(menu->entryRect(0).w, text + 2 * style.scaled(12));
}

TEST_F(PopupMenuTest, IsAsHighAsItsEntriesAndTheRoomAroundThem) {
  const ui::Rect panel = menu->panel();
  const ui::Rect first = menu->entryRect(0);
  const ui::Rect last = menu->entryRect(4);
  EXPECT_EQ(first.y - panel.y, style.scaled(4));
  EXPECT_EQ(panel.y + panel.h - (last.y + last.h), style.scaled(4));
}

TEST_F(PopupMenuTest, OpensInsideTheWindowWhereverThePointerIs) {
  for (const int x : {0, 1, 320, 600, 639}) {
    for (const int y : {0, 1, 200, 400, 419}) {
      openWith({entry("first"), entry("second"), entry("third")}, x, y);
      EXPECT_TRUE(isInside(menu->panel(), kWidth, kHeight)) << x << ", " << y;
    }
  }
}

TEST_F(PopupMenuTest, OpensAboveAPointerNearTheLowerEdge) {
  openWith({entry("first"), entry("second")}, 100, 400);
  EXPECT_EQ(menu->panel().y + menu->panel().h, 400);
}

TEST_F(PopupMenuTest, RunsAnEntryThatIsPressedOnceItIsClosed) {
  click(3);
  EXPECT_EQ(taken(), (Told{"closed", "second"}));
}

TEST_F(PopupMenuTest, ChoosesWhereThePressIsLetGo) {
  menu->press(over(0));
  menu->motion(over(4, 0));
  menu->release(over(4));
  EXPECT_EQ(taken(), (Told{"closed", "third"}));
}

TEST_F(PopupMenuTest, IgnoresTheEndOfThePressThatOpenedIt) {
  menu->release(over(0));
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PopupMenuTest, ChoosesOnlyWithThePrimaryButton) {
  menu->press(over(0, 3));
  menu->release(over(0, 3));
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PopupMenuTest, StaysOpenOverWhatCannotBeChosen) {
  click(1);
  click(2);
  EXPECT_EQ(taken(), Told{});
  EXPECT_TRUE(menu);
}

TEST_F(PopupMenuTest, IsClosedByAPressOutsideWithAnyButton) {
  for (const int button : {1, 2, 3}) {
    openWith({entry("first")});
    menu->press({.x = 99, .y = 60, .button = button});
    EXPECT_EQ(taken(), Told{"closed"});
  }
}

TEST_F(PopupMenuTest, IsClosedByEscape) {
  keys({ui::key::kDown, ui::key::kEscape});
  EXPECT_EQ(taken(), Told{"closed"});
}

TEST_F(PopupMenuTest, IsClosedByTheKeysThatOpenMenus) {
  keys({ui::key::kF10});
  EXPECT_EQ(taken(), Told{"closed"});
  openWith({entry("first")});
  keys({ui::key::kMenu});
  EXPECT_EQ(taken(), Told{"closed"});
}

TEST_F(PopupMenuTest, WalksWithTheKeysOverWhatCanBeChosen) {
  EXPECT_EQ(menu->current(), std::nullopt);
  keys({ui::key::kDown});
  EXPECT_EQ(menu->current(), 0u);
  keys({ui::key::kDown});
  EXPECT_EQ(menu->current(), 3u);
  keys({ui::key::kUp, ui::key::kUp});
  EXPECT_EQ(menu->current(), 4u);
  keys({ui::key::kHome});
  EXPECT_EQ(menu->current(), 0u);
  keys({ui::key::kEnd});
  EXPECT_EQ(menu->current(), 4u);
}

TEST_F(PopupMenuTest, ChoosesTheCurrentEntryWithEnterOrSpace) {
  keys({ui::key::kEnd, ui::key::kReturn});
  EXPECT_EQ(taken(), (Told{"closed", "third"}));
  openWith({entry("first")});
  keys({ui::key::kHome, ' '});
  EXPECT_EQ(taken(), (Told{"closed", "first"}));
}

TEST_F(PopupMenuTest, ChoosesNothingWithEnterWhileNothingIsCurrent) {
  keys({ui::key::kReturn});
  EXPECT_EQ(taken(), Told{});
  EXPECT_TRUE(menu);
}

TEST_F(PopupMenuTest, BeginsAtItsFirstEntryWhenItIsOpenedByAKey) {
  openWith({greyed(), entry("second")});
  menu->goToFirst();
  EXPECT_EQ(menu->current(), 1u);
}

TEST_F(PopupMenuTest, StaysAtItsFirstEntryUnderAPointerThatRests) {
  openWith({entry("first"), entry("second")});
  menu->goToFirst();
  menu->motion({.x = 5, .y = 5});
  menu->motion({.x = 5, .y = 5});
  EXPECT_EQ(menu->current(), 0u);
  menu->motion(over(1, 0));
  EXPECT_EQ(menu->current(), 1u);
  menu->motion({.x = 5, .y = 5});
  EXPECT_EQ(menu->current(), std::nullopt) << "the last of the two to move decides";
}

TEST_F(PopupMenuTest, FollowsThePointer) {
  menu->motion(over(3, 0));
  EXPECT_EQ(menu->current(), 3u);
  menu->motion(over(2, 0));
  EXPECT_EQ(menu->current(), std::nullopt);
  menu->motion(over(0, 0));
  menu->leave();
  EXPECT_EQ(menu->current(), std::nullopt);
}

TEST_F(PopupMenuTest, ShowsTheCurrentEntryInTheAccentColour) {
  menu->motion(over(3, 0));
  const ui::Rect current = menu->entryRect(3);
  const ui::Rect beside = menu->entryRect(4);
  const test::Picture frame = picture();
  EXPECT_EQ(frame.at(current.x + 6, current.y + 6), rgb(style.palette().accent));
  EXPECT_EQ(frame.at(beside.x + 6, beside.y + 6), rgb(style.palette().view));
}

TEST_F(PopupMenuTest, ShowsATickAndWhatCannotBeChosenDimmed) {
  const auto part = [this](std::size_t entry) {
    const ui::Rect rect = menu->entryRect(entry);
    return picture().part(rect.x, rect.y, rect.w, rect.h);
  };
  openWith({entry("same"), entry("same"), entry("same")});
  EXPECT_TRUE(part(0) == part(1));
  MenuEntry ticked = entry("same");
  ticked.ticked = true;
  MenuEntry disabled = entry("same");
  disabled.enabled = false;
  openWith({entry("same"), ticked, disabled});
  EXPECT_FALSE(part(0) == part(1));
  EXPECT_FALSE(part(0) == part(2));
  EXPECT_GT(part(0).count(rgb(style.palette().text)), 0);
  EXPECT_EQ(part(2).count(rgb(style.palette().text)), 0);
}

TEST_F(PopupMenuTest, ScrollsToItsEntriesInALowWindow) {
  menu->setRect({0, 0, kWidth, 80});
  EXPECT_TRUE(isInside(menu->panel(), kWidth, 80));
  EXPECT_GT(menu->entryRect(4).y, 80);
  keys({ui::key::kEnd});
  EXPECT_LE(menu->entryRect(4).y + menu->entryRect(4).h, menu->panel().y + menu->panel().h);
  menu->wheel({.x = 110, .y = 40}, -3);
  EXPECT_GE(menu->entryRect(0).y, menu->panel().y);
  click(0);
  EXPECT_EQ(taken(), (Told{"closed", "first"}));
}

TEST_F(PopupMenuTest, DoesNotChooseWhatIsScrolledOutOfItsOutline) {
  menu->setRect({0, 0, kWidth, 80});
  menu->motion({.x = 110, .y = menu->panel().y + menu->panel().h - 1});
  EXPECT_EQ(menu->current(), std::nullopt);
}

// Keys beside the entries.

TEST_F(PopupMenuTest, ShowsKeysDimmedAtTheRight) {
  const std::string longest(30, 'm');
  openWith({keyed("first", "Ctrl+O"), keyed(longest, "F5"), entry("third")});
  EXPECT_EQ(menu->entryRect(0).w, style.textWidth(longest) + style.scaled(24) +
                                      style.textWidth("F5") + 2 * style.scaled(12));
  const auto keyPart = [&](std::size_t number) {
    const ui::Rect rect = menu->entryRect(number);
    const int width = style.textWidth("Ctrl+O");
    return picture().part(rect.x + rect.w - style.scaled(12) - width, rect.y, width, rect.h);
  };
  EXPECT_GT(keyPart(0).count(rgb(style.palette().dimText)), 10);
  EXPECT_EQ(keyPart(2).count(rgb(style.palette().dimText)), 0);
  menu->motion(over(0, 0));
  EXPECT_GT(keyPart(0).count(rgb(style.palette().accentText)), 10) << "legible on the accent";
}

TEST_F(PopupMenuTest, StaysInTheWindowAndKeepsLabelsRatherThanKeys) {
  const std::string wide(200, 'm');
  for (const std::string& label : {std::string("short"), wide}) {
    openWith({keyed(label, "Ctrl+O"), entry(label)}, 600, 50);
    EXPECT_TRUE(isInside(menu->panel(), kWidth, kHeight));
    const ui::Rect first = menu->entryRect(0);
    const ui::Rect second = menu->entryRect(1);
    const test::Picture frame = picture();
    const bool same = frame.part(first.x, first.y, first.w, first.h) ==
                      frame.part(second.x, second.y, second.w, second.h);
    EXPECT_EQ(same, label == wide) << "the key gives way";
  }
}

}  // namespace
}  // namespace ui
