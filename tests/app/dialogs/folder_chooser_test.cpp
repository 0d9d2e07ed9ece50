// The folder chooser over real folders, in a window: what it shows.

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

// What is shown

TEST_F(FolderChooserTest, BeginsWithItsFirstPlace) {
  EXPECT_EQ(path(), home);
  EXPECT_EQ(names(), (Told{"Music", "a", "b", "bb", "c", "hidden"}));
  EXPECT_EQ(chooser->selected(), std::nullopt);
  EXPECT_EQ(chooser->message(), "");
}

TEST_F(FolderChooserTest, BeginsAtTheRootWithoutAHomeFolder) {
  open(folderPlaces("", {}));
  EXPECT_EQ(path(), "/");
}

TEST_F(FolderChooserTest, SaysThatThereAreNoFolders) {
  const auto [first, hidden] = std::pair(0u, 5u);
  pressRow(hidden, 2);
  EXPECT_EQ(path(), home + "/hidden");
  EXPECT_EQ(chooser->message(), "No folders here.");
  key(ui::key::kBackSpace);
  EXPECT_EQ(chooser->message(), "");
  pressRow(first, 2);
  EXPECT_EQ(chooser->message(), "No folders here.");
}

TEST_F(FolderChooserTest, StaysOnAFolderThatCannotBeRead) {
  open({{"Gone", home + "/gone"}, {"Home", home}});
  EXPECT_EQ(path(), home + "/gone");
  EXPECT_EQ(chooser->message(), "This folder cannot be read.");
  press(chooser->buttonRect(FolderChooser::kScan));
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/gone"}));
}

TEST_F(FolderChooserTest, KeepsTheBytesOfAPathThatIsNoText) {
  makeFolder("~no\xfftext");
  open();
  pressRow(6);
  EXPECT_EQ(selectedName(), "~no\xfftext");
  pressRow(6, 2);
  EXPECT_EQ(path(), home + "/~no\xfftext");
  press(chooser->buttonRect(FolderChooser::kScan));
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/~no\xfftext"}));
}

TEST_F(FolderChooserTest, DrawsNamesThatAreNoTextAsNumbers) {
  makeFolder("~\xff");
  open();
  const test::Picture bytes = pictureOf(chooser->listColumn().rowRect(6));
  ASSERT_EQ(rmdir((home + "/~\xff").c_str()), 0);
  makeFolder("~\\377");
  open();
  EXPECT_TRUE(bytes == pictureOf(chooser->listColumn().rowRect(6)));
}

// Drawing

TEST_F(FolderChooserTest, DimsTheWindowAroundItsPanel) {
  const test::Picture shown = picture();
  EXPECT_EQ(shown.at(2, 2), 0x990099u);
  const ui::Rect& panel = chooser->panel();
  EXPECT_EQ(shown.at(panel.x + panel.w / 2, panel.y), rgb(style.palette().border));
  EXPECT_EQ(shown.at(panel.x + panel.w / 2, panel.y + 1), rgb(style.palette().window));
}

TEST_F(FolderChooserTest, HighlightsThePlaceThatIsShown) {
  const auto place = [&](std::size_t row) { return ground(chooser->placesColumn().rowRect(row)); };
  EXPECT_EQ(place(0), rgb(style.palette().pressed));
  EXPECT_EQ(place(1), rgb(style.palette().window));
  pressPlace(1);
  chooser->leave();
  EXPECT_EQ(place(0), rgb(style.palette().window));
  pressPlace(2);
  key(ui::key::kBackSpace);
  EXPECT_EQ(place(0), rgb(style.palette().pressed)) << "come to by going up";
}

TEST_F(FolderChooserTest, HighlightsThePlaceUnderThePointer) {
  const ui::Rect place = chooser->placesColumn().rowRect(1);
  chooser->motion(at(place));
  EXPECT_EQ(ground(place), rgb(style.palette().raised));
  EXPECT_EQ(picture().at(place.x, place.y), rgb(style.palette().window)) << "a rounded corner";
  chooser->leave();
  EXPECT_EQ(ground(place), rgb(style.palette().window));
}

TEST_F(FolderChooserTest, HasNothingUnderThePointerOnceItIsCovered) {
  const auto plain = picture();
  for (const ui::RowList* column : {&chooser->placesColumn(), &chooser->listColumn()}) {
    chooser->motion(at(column->rowRect(1)));
    EXPECT_FALSE(picture() == plain);
    chooser->releasePointer();
    EXPECT_TRUE(picture() == plain);
  }
}

TEST_F(FolderChooserTest, FillsTheSelectedRow) {
  pressRow(1);
  EXPECT_EQ(ground(chooser->listColumn().rowRect(1)), rgb(style.palette().accent));
  EXPECT_EQ(ground(chooser->listColumn().rowRect(2)), rgb(style.palette().base));
}

TEST_F(DarkFolderChooserTest, DimsFoldersThatCannotBeEntered) {
  SubFolderReader fixed([this](ui::Task task) { window.post(std::move(task)); },
                        [](const std::string&) {
                          return SubFolders{true, {{"open", true}, {"shut", false}}};
                        });
  chooser = std::make_unique<FolderChooser>(style, std::vector{FolderPlace{"/", "/"}}, fixed);
  chooser->setRect({0, 0, kWidth, kHeight});
  ASSERT_TRUE(answered());
  const auto row = [&](std::size_t number) { return chooser->listColumn().rowRect(number); };
  EXPECT_TRUE(hasInk(row(0), style.palette().text));
  EXPECT_FALSE(hasInk(row(1), style.palette().text));
  EXPECT_TRUE(hasInk(row(1), style.palette().dimText));
  chooser.reset();  // before its reader
}

TEST_F(FolderChooserTest, CutsALongPathAtItsStart) {
  std::string deep = "/b";
  for (int i = 0; i < 8; ++i) deep += "/" + std::string(40, static_cast<char>('a' + i));
  makeFolder(deep.substr(1) + "/end");
  open({{"Deep", home + deep + "/end"}});
  const test::Picture one = pictureOf(chooser->pathBox());
  makeFolder(deep.substr(1) + "/other");
  open({{"Deep", home + deep + "/other"}});
  EXPECT_FALSE(one == pictureOf(chooser->pathBox())) << "the end is not seen";
  const ui::Rect& box = chooser->pathBox();
  const test::Picture shown = picture();
  for (int y = box.y + 5; y < box.y + box.h - 5; ++y) {
    EXPECT_EQ(shown.at(box.x + box.w - 3, y), rgb(style.palette().base)) << "past its room";
  }
}

TEST_F(FolderChooserTest, KeepsAllInsideTheSmallestWindow) {
  chooser->setRect({0, 0, 640, 420});
  const ui::Rect& panel = chooser->panel();
  EXPECT_EQ(panel, (ui::Rect{12, 12, 616, 396}));
  const ui::Rect rects[] = {chooser->pathBox(),
                            chooser->upButton(),
                            chooser->listColumn().view(),
                            chooser->placesColumn().view(),
                            chooser->buttonRect(FolderChooser::kCancel),
                            chooser->buttonRect(FolderChooser::kScan)};
  for (const ui::Rect& rect : rects) {
    EXPECT_FALSE(rect.empty());
    EXPECT_EQ(ui::intersect(rect, panel), rect);
    for (const ui::Rect* next = &rect + 1; next != std::end(rects); ++next) {
      EXPECT_TRUE(ui::intersect(rect, *next).empty());
    }
  }
  EXPECT_GE(chooser->listColumn().view().h, 8 * style.rowHeight());
}

TEST_F(FolderChooserTest, SurvivesAWindowWithoutRoom) {
  for (const auto& [width, height] : {std::pair(1, 1), std::pair(60, 40), std::pair(300, 90)}) {
    chooser->setRect({0, 0, width, height});
    picture();
    key(ui::key::kEnd);
    key(ui::key::kPageDown);
  }
}

// Folders that take their time

TEST_F(FolderChooserTest, WaitsForASlowFolderWithoutHoldingUpTheWindow) {
  makeFolder("slow/inside");
  open();
  type("slow");
  chooser->key({.keysym = ui::key::kReturn, .text = {}});
  EXPECT_EQ(path(), home + "/slow");
  EXPECT_EQ(chooser->subFolders(), std::nullopt);
  EXPECT_EQ(chooser->message(), "");
  chooser->tick(ui::Window::now() + 1000);
  EXPECT_EQ(chooser->message(), "Waiting for this folder…");
  pressRow(0, 2);
  slow.release();
  ASSERT_TRUE(answered());
  EXPECT_EQ(names(), (Told{"inside"}));
  EXPECT_EQ(chooser->message(), "");
}

TEST_F(FolderChooserTest, GoesOnWithWhatWasTypedWhileTheFolderWasAwaited) {
  makeFolder("slow/inside");
  makeFolder("slow/noise");
  open();
  type("slow");
  chooser->key({.keysym = ui::key::kReturn, .text = {}});
  ASSERT_EQ(chooser->subFolders(), std::nullopt);
  type("i");
  slow.release();
  ASSERT_TRUE(answered());
  EXPECT_EQ(selectedName(), std::nullopt);
  type("n");
  EXPECT_EQ(selectedName(), "inside");
}

TEST_F(FolderChooserTest, DropsTheAnswerForAFolderThatWasLeft) {
  makeFolder("slow/inside");
  open({{"Home", home}, {"Slow", home + "/slow"}});
  pressPlace(1);
  ASSERT_EQ(chooser->subFolders(), std::nullopt);
  pressPlace(0);
  bool posted = false;
  slow.release();
  ASSERT_TRUE(runUntil([&] { return slow.answers() == 1; }));
  window.post([&] { posted = true; });
  ASSERT_TRUE(runUntil([&] { return posted; }));
  EXPECT_EQ(path(), home);
  EXPECT_NE(names(), (Told{"inside"}));
}

TEST_F(FolderChooserTest, MayEndBeforeASlowFolderAnswers) {
  makeFolder("slow");
  open({{"Home", home}, {"Slow", home + "/slow"}});
  pressPlace(1);
  chooser.reset();
  slow.release();
  ASSERT_TRUE(runUntil([&] { return slow.answers() == 1; }));
  settle();
}

TEST_F(FolderChooserTest, CanScanAFolderThatHasNotAnswered) {
  makeFolder("slow");
  open({{"Home", home}, {"Slow", home + "/slow"}});
  pressPlace(1);
  chooser->key({.keysym = ui::key::kReturn, .text = {}, .ctrl = true});
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/slow"}));
}

TEST_F(FolderChooserTest, ShowsAHundredThousandFolders) {
  const test::TempDirectory big(test::TempDirectory::Place::Memory);
  constexpr int kCount = 100'000;
  for (int i = 0; i < kCount; ++i) {
    ASSERT_EQ(mkdir((big / std::to_string(kCount + i)).c_str(), 0700), 0);
  }
  open({{"Big", big.path()}});
  ASSERT_EQ(chooser->listColumn().count(), std::size_t{kCount});
  key(ui::key::kEnd);
  EXPECT_EQ(selectedName(), "199999");
  const ui::RowList& list = chooser->listColumn();
  const ui::Rect row = list.rowRect(kCount - 1);
  EXPECT_EQ(ui::intersect(row, list.view()), row);
  EXPECT_EQ(ground(row), rgb(style.palette().accent));
  type("15");
  EXPECT_EQ(selectedName(), "150000");
}

}  // namespace
}  // namespace app
