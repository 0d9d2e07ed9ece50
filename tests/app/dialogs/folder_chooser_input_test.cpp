// The folder chooser over real folders, under the pointer and the keys.

#include "app/dialogs/folder_chooser.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/app/dialogs/folder_chooser_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

// The pointer

TEST_F(FolderChooserTest, GoesToThePlaceThatIsPressed) {
  pressRow(1);
  pressPlace(2);
  EXPECT_EQ(path(), home + "/b");
  EXPECT_EQ(chooser->selected(), std::nullopt);
  pressPlace(1);
  EXPECT_EQ(path(), "/");
}

TEST_F(FolderChooserTest, GoesUp) {
  pressPlace(2);
  press(chooser->upButton());
  EXPECT_EQ(path(), home);
  EXPECT_EQ(chooser->selected(), std::nullopt);
}

TEST_F(FolderChooserTest, GoesUpNoFurtherThanTheRoot) {
  for (int i = 0; i < 30 && path() != "/"; ++i) press(chooser->upButton());
  EXPECT_EQ(path(), "/");
  press(chooser->upButton());
  key(ui::key::kBackSpace);
  EXPECT_EQ(path(), "/");
}

TEST_F(FolderChooserTest, SelectsTheRowThatIsPressed) {
  pressRow(2);
  EXPECT_EQ(selectedName(), "b");
  EXPECT_EQ(path(), home);
  pressRow(3);
  EXPECT_EQ(selectedName(), "bb");
}

TEST_F(FolderChooserTest, GoesIntoARowThatIsPressedTwiceOrMore) {
  pressRow(2);
  pressRow(2, 2);
  EXPECT_EQ(path(), home + "/b");
  EXPECT_EQ(names(), (Told{"inner"}));
  EXPECT_EQ(chooser->selected(), std::nullopt);
  pressRow(0, 3);
  EXPECT_EQ(path(), home + "/b/inner");
}

TEST_F(FolderChooserTest, TakesOnlyTheLeftButton) {
  for (const int button : {2, 3, 8}) {
    pressRow(2, 2, button);
    press(chooser->placesColumn().rowRect(1), 1, button);
    press(chooser->upButton(), 1, button);
    press(chooser->buttonRect(FolderChooser::kScan), 1, button);
    press(chooser->buttonRect(FolderChooser::kCancel), 1, button);
  }
  EXPECT_EQ(path(), home);
  EXPECT_EQ(chooser->selected(), std::nullopt);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(FolderChooserTest, ScansTheSelectedFolder) {
  pressRow(2);
  press(chooser->buttonRect(FolderChooser::kScan));
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/b"}));
}

TEST_F(FolderChooserTest, ScansTheShownFolderWhenNoneIsSelected) {
  pressRow(2);
  pressRow(2, 2);
  press(chooser->buttonRect(FolderChooser::kScan));
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/b"}));
}

TEST_F(FolderChooserTest, ScansNothingWhenCancelled) {
  pressRow(2);
  press(chooser->buttonRect(FolderChooser::kCancel));
  EXPECT_EQ(taken(), (Told{"closed"}));
  key(ui::key::kEscape);
  EXPECT_EQ(taken(), (Told{"closed"}));
}

TEST_F(FolderChooserTest, MayEndWhileItIsClosed) {
  chooser->onClosed = [this] { chooser.reset(); };
  ui::MouseEvent event = at(chooser->buttonRect(FolderChooser::kScan));
  chooser->press(event);
  chooser->release(event);
  EXPECT_EQ(chooser, nullptr);
  EXPECT_EQ(taken(), (Told{"scan " + home}));
  open();
  chooser->onClosed = [this] { chooser.reset(); };
  chooser->key({.keysym = ui::key::kEscape, .text = {}});
  EXPECT_EQ(chooser, nullptr);
}

TEST_F(FolderChooserTest, ScrollsTheListUnderThePointer) {
  for (int i = 0; i < 40; ++i) makeFolder("many/" + std::to_string(100 + i));
  open({{"Many", home + "/many"}, {"Home", home}});
  const ui::RowList& list = chooser->listColumn();
  ASSERT_TRUE(list.scroller().hasBar());
  chooser->wheel(at(list.view()), 2);
  EXPECT_EQ(list.scroller().offset(), 6 * style.rowHeight());
  pressRow(8);
  EXPECT_EQ(selectedName(), "108");
  chooser->wheel(at(chooser->placesColumn().view()), 2);
  chooser->wheel({.x = 1, .y = 1}, 2);
  EXPECT_EQ(list.scroller().offset(), 6 * style.rowHeight());
}

TEST_F(FolderChooserTest, ScrollsTheListByItsBar) {
  for (int i = 0; i < 60; ++i) makeFolder("many/" + std::to_string(100 + i));
  open({{"Many", home + "/many"}});
  const ui::Scroller& scroller = chooser->listColumn().scroller();
  const ui::Rect thumb = scroller.thumb();
  chooser->press(at(thumb));
  chooser->motion({.x = thumb.x, .y = thumb.y + 1000});
  EXPECT_EQ(scroller.offset(), scroller.contentHeight() - scroller.view().h);
  EXPECT_EQ(chooser->selected(), std::nullopt);
  chooser->release({.x = thumb.x, .y = thumb.y + 1000, .button = 1});
  chooser->motion(at(thumb));
  EXPECT_EQ(scroller.offset(), scroller.contentHeight() - scroller.view().h) << "was let go";
  const ui::Rect row = chooser->listColumn().rowRect(50);
  EXPECT_EQ(picture().at(scroller.bar().x, row.y + 10), rgb(style.palette().raised));
}

TEST_F(FolderChooserTest, ScrollsManyPlaces) {
  std::vector<FolderPlace> places;
  for (int i = 0; i < 40; ++i) places.push_back({std::to_string(i), home});
  open(places);
  const ui::RowList& column = chooser->placesColumn();
  ASSERT_TRUE(column.scroller().hasBar());
  chooser->wheel(at(column.view()), 1);
  EXPECT_GT(column.scroller().offset(), 0);
  chooser->press(at(column.scroller().thumb()));
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kList) << "the press was on the bar";
}

// Keys

TEST_F(FolderChooserTest, MovesThroughTheListByKeys) {
  key(ui::key::kDown);
  EXPECT_EQ(selectedName(), "Music");
  key(ui::key::kDown);
  EXPECT_EQ(selectedName(), "a");
  key(ui::key::kEnd);
  EXPECT_EQ(selectedName(), "hidden");
  key(ui::key::kUp);
  EXPECT_EQ(selectedName(), "c");
  key(ui::key::kHome);
  EXPECT_EQ(selectedName(), "Music");
}

TEST_F(FolderChooserTest, KeepsTheSelectedRowInView) {
  for (int i = 0; i < 200; ++i) makeFolder("many/" + std::to_string(100 + i));
  open({{"Many", home + "/many"}});
  const ui::RowList& list = chooser->listColumn();
  for (const auto keysym : {ui::key::kEnd, ui::key::kPageUp, ui::key::kPageUp, ui::key::kUp,
                            ui::key::kHome, ui::key::kPageDown}) {
    key(keysym);
    const ui::Rect row = list.rowRect(*chooser->selected());
    EXPECT_EQ(ui::intersect(row, list.view()), row) << keysym;
  }
}

TEST_F(FolderChooserTest, GoesInByEnterAndUpByBackspace) {
  type("b");
  key(ui::key::kReturn);
  EXPECT_EQ(path(), home + "/b");
  key(ui::key::kBackSpace);
  EXPECT_EQ(path(), home);
  key(ui::key::kUp, true);
  EXPECT_EQ(path(), directory.path());
  EXPECT_EQ(taken(), Told{});
}

TEST_F(FolderChooserTest, ScansByEnterWhenNothingIsSelected) {
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home}));
}

TEST_F(FolderChooserTest, ScansByCtrlAndEnterFromAnywhere) {
  for (int control = 0; control < 5; ++control) {
    key(ui::key::kReturn, true);
    EXPECT_EQ(taken(), (Told{"closed", "scan " + home}));
    key(ui::key::kTab);
  }
  chooser->key({.keysym = 'b', .text = {}, .typed = "b"});
  key(ui::key::kHome);
  key(ui::key::kKeypadEnter, true);
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/Music"}));
}

TEST_F(FolderChooserTest, TakesBackWhatWasTypedBeforeItGoesUp) {
  type("b");
  type("x");
  key(ui::key::kBackSpace);
  EXPECT_EQ(path(), home);
  type("b");
  EXPECT_EQ(selectedName(), "bb");
  key(ui::key::kHome);
  key(ui::key::kBackSpace);
  EXPECT_NE(path(), home);
}

TEST_F(FolderChooserTest, FindsNamesThatAreTyped) {
  type("b");
  EXPECT_EQ(selectedName(), "b");
  type("b");
  EXPECT_EQ(selectedName(), "bb") << "the search goes on";
  key(ui::key::kHome);
  type("m");
  EXPECT_EQ(selectedName(), "Music") << "in any case, round the end";
  type("x");
  EXPECT_EQ(selectedName(), "Music") << "nothing matches";
}

TEST_F(FolderChooserTest, FindsNamesOfOtherAlphabets) {
  makeFolder("Éclair");
  makeFolder("булка");
  open();
  chooser->key({.keysym = 0xE9, .text = "\xE9", .typed = "é"});
  EXPECT_EQ(selectedName(), "Éclair");
  open();
  chooser->key({.keysym = 0x6C2, .text = {}, .typed = "б"});
  EXPECT_EQ(selectedName(), "булка");
}

TEST_F(FolderChooserTest, TypesSpacesIntoASearch) {
  makeFolder("b b");
  open();
  type("b b");
  EXPECT_EQ(selectedName(), "b b");
  type(" ");
  EXPECT_EQ(path(), home);
}

TEST_F(FolderChooserTest, BeginsASearchAnewInAnotherFolder) {
  type("b");
  key(ui::key::kReturn);
  type("i");
  EXPECT_EQ(selectedName(), "inner");
}

TEST_F(FolderChooserTest, GoesRoundItsControlsByTab) {
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kList);
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focusedControl(), 3) << "Cancel";
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"closed"}));
  key(ui::key::kTab);
  key(' ');
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home}));
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kUp);
  key(' ');
  EXPECT_EQ(path(), directory.path());
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kPlaces);
  key(ui::key::kTab);
  key(ui::key::kLeftTab, false, true);
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kPlaces);
}

TEST_F(FolderChooserTest, GoesToPlacesByKeys) {
  key(ui::key::kLeft);
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kPlaces);
  key(ui::key::kDown);
  key(ui::key::kDown);
  EXPECT_EQ(path(), home) << "not before Enter";
  key(ui::key::kReturn);
  EXPECT_EQ(path(), home + "/b");
  key(ui::key::kHome);
  key(' ');
  EXPECT_EQ(path(), home);
  key(ui::key::kRight);
  EXPECT_EQ(chooser->focusedControl(), FolderChooser::kList);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(FolderChooserTest, ShowsWhatHasTheKeyboard) {
  const auto ringed = [&](const ui::Rect& rect) {
    return picture().at(rect.x + rect.w / 2, rect.y) == rgb(style.palette().accent);
  };
  ui::Rect frame = chooser->listColumn().view();
  frame.y -= 2;
  EXPECT_TRUE(ringed(frame));
  EXPECT_FALSE(ringed(chooser->upButton()));
  key(ui::key::kTab, false, true);
  EXPECT_FALSE(ringed(frame));
  EXPECT_TRUE(ringed(chooser->placesColumn().rowRect(0)));
  key(ui::key::kTab, false, true);
  EXPECT_TRUE(ringed(chooser->upButton()));
}

}  // namespace
}  // namespace app
