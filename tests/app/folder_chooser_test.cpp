// The folder chooser over real folders, in a window.

#include "app/folder_chooser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/app/slow_folders.h"
#include "tests/app/views_on_window.h"
#include "tests/support/temp_directory.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

constexpr int kWidth = 1100;
constexpr int kHeight = 720;

class FolderChooserTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  explicit FolderChooserTest(const ui::Palette& palette = ui::kLightPalette, double scale = 1)
      : ViewsOnWindow(palette, scale) {
    for (const char* name : {"Music", "a", "b", "bb", "c"}) makeFolder(name);
    makeFolder("b/inner/innermost");
    makeFolder("hidden/.one");
    test::writeFile(home + "/file");
    show(kWidth, kHeight);
    open();
  }

  void makeFolder(const std::string& name) const { test::makeDirectory(home + "/" + name); }

  /// Opens a chooser at the home folder and waits for its listing.
  void open() { open({{"Home", home}, {"Filesystem", "/"}, {"Other", home + "/b"}}); }
  void open(std::vector<FolderPlace> places) {
    chooser.reset();  // two of them do not share a lister
    chooser = std::make_unique<FolderChooser>(style, std::move(places), lister);
    chooser->onChosen = [this](const std::string& path) { told.push_back("scan " + path); };
    chooser->onClosed = [this] { told.emplace_back("closed"); };
    chooser->setSize(kWidth, kHeight);
    EXPECT_TRUE(listed());
  }
  bool listed() {
    return chooser->listing() || runUntil([&] { return chooser->listing().has_value(); });
  }

  void press(const ui::Rect& rect, int clicks = 1, int button = 1) {
    ui::MouseEvent event = at(rect, button);
    event.clicks = clicks;
    chooser->press(event);
    chooser->release(event);
    const bool answers = !chooser->path().ends_with("slow");
    ASSERT_TRUE(!answers || listed());
  }
  void pressRow(std::size_t row, int clicks = 1, int button = 1) {
    press(chooser->listColumn().rowRect(row), clicks, button);
  }
  void pressPlace(std::size_t row) { press(chooser->placesColumn().rowRect(row)); }
  void key(ui::key::Keysym keysym, bool ctrl = false, bool shift = false) {
    chooser->key({.keysym = keysym, .text = {}, .shift = shift, .ctrl = ctrl});
    ASSERT_TRUE(listed());
  }
  void type(const std::string& text) {
    for (const char c : text) {
      chooser->key({.keysym = static_cast<unsigned char>(c), .text = std::string(1, c)});
    }
  }

  std::string path() const { return chooser->path(); }
  Told names() const {
    Told names;
    for (const SubFolder& folder : chooser->listing()->subFolders) names.push_back(folder.name);
    return names;
  }
  std::optional<std::string> selectedName() const {
    if (!chooser->selected()) return std::nullopt;
    return chooser->listing()->subFolders.at(*chooser->selected()).name;
  }
  Told taken() { return std::exchange(told, {}); }

  test::Picture picture() {
    return ViewsOnWindow::picture(kWidth, kHeight,
                                  [&](ui::Canvas& canvas) { chooser->paint(canvas); });
  }
  test::Picture pictureOf(const ui::Rect& rect) {
    return picture().part(rect.x, rect.y, rect.w, rect.h);
  }
  /// The colour of a place or row left of its text.
  std::uint32_t ground(const ui::Rect& rect) {
    return picture().at(rect.x + 4, rect.y + rect.h / 2);
  }
  /// Whether the text of a row has this colour: its boldest pixels do.
  bool hasInk(const ui::Rect& rect, ui::Colour colour) {
    return pictureOf(rect).count(rgb(colour)) > 0;
  }

  const std::string home = directory / "home";
  Told told;
  test::SlowFolders slow;
  FolderLister lister{[this](ui::Task task) { window.post(std::move(task)); }, slow.list()};
  std::unique_ptr<FolderChooser> chooser;
};

class DarkFolderChooserTest : public FolderChooserTest {
 protected:
  DarkFolderChooserTest() : FolderChooserTest(ui::kDarkPalette) {}
};

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

TEST_F(FolderChooserTest, FillsTheSelectedRow) {
  pressRow(1);
  EXPECT_EQ(ground(chooser->listColumn().rowRect(1)), rgb(style.palette().accent));
  EXPECT_EQ(ground(chooser->listColumn().rowRect(2)), rgb(style.palette().base));
}

TEST_F(DarkFolderChooserTest, DimsFoldersThatCannotBeEntered) {
  FolderLister fixed([this](ui::Task task) { window.post(std::move(task)); },
                     [](const std::string&) {
                       return FolderListing{true, {{"open", true}, {"shut", false}}};
                     });
  chooser = std::make_unique<FolderChooser>(style, std::vector{FolderPlace{"/", "/"}}, fixed);
  chooser->setSize(kWidth, kHeight);
  ASSERT_TRUE(listed());
  const auto row = [&](std::size_t number) { return chooser->listColumn().rowRect(number); };
  EXPECT_TRUE(hasInk(row(0), style.palette().text));
  EXPECT_FALSE(hasInk(row(1), style.palette().text));
  EXPECT_TRUE(hasInk(row(1), style.palette().dimText));
  chooser.reset();  // before its lister
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
  chooser->setSize(640, 420);
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
    chooser->setSize(width, height);
    picture();
    key(ui::key::kEnd);
    key(ui::key::kPageDown);
  }
}

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
  const RowColumn& list = chooser->listColumn();
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
  const RowColumn& column = chooser->placesColumn();
  ASSERT_TRUE(column.scroller().hasBar());
  chooser->wheel(at(column.view()), 1);
  EXPECT_GT(column.scroller().offset(), 0);
  chooser->press(at(column.scroller().thumb()));
  EXPECT_EQ(chooser->focused(), FolderChooser::kList) << "the press was on the bar";
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
  const RowColumn& list = chooser->listColumn();
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
  chooser->key({.keysym = 'b', .text = "b"});
  key(ui::key::kHome);
  key(ui::key::kKeypadEnter, true);
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home + "/Music"}));
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
  key(0xE9);  // é, of which the event's text is one byte
  EXPECT_EQ(selectedName(), "Éclair");
  open();
  key(0x6C2);  // б, of which it is none
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
  EXPECT_EQ(chooser->focused(), FolderChooser::kList);
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focused(), 3) << "Cancel";
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"closed"}));
  key(ui::key::kTab);
  key(' ');
  EXPECT_EQ(taken(), (Told{"closed", "scan " + home}));
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focused(), FolderChooser::kUp);
  key(' ');
  EXPECT_EQ(path(), directory.path());
  key(ui::key::kTab);
  EXPECT_EQ(chooser->focused(), FolderChooser::kPlaces);
  key(ui::key::kTab);
  key(ui::key::kLeftTab, false, true);
  EXPECT_EQ(chooser->focused(), FolderChooser::kPlaces);
}

TEST_F(FolderChooserTest, GoesToPlacesByKeys) {
  key(ui::key::kLeft);
  EXPECT_EQ(chooser->focused(), FolderChooser::kPlaces);
  key(ui::key::kDown);
  key(ui::key::kDown);
  EXPECT_EQ(path(), home) << "not before Enter";
  key(ui::key::kReturn);
  EXPECT_EQ(path(), home + "/b");
  key(ui::key::kHome);
  key(' ');
  EXPECT_EQ(path(), home);
  key(ui::key::kRight);
  EXPECT_EQ(chooser->focused(), FolderChooser::kList);
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

// Folders that take their time

TEST_F(FolderChooserTest, WaitsForASlowFolderWithoutHoldingUpTheWindow) {
  makeFolder("slow/inside");
  open();
  type("slow");
  chooser->key({.keysym = ui::key::kReturn, .text = {}});
  EXPECT_EQ(path(), home + "/slow");
  EXPECT_EQ(chooser->listing(), std::nullopt);
  EXPECT_EQ(chooser->message(), "");
  chooser->tick(ui::Window::now() + 1000);
  EXPECT_EQ(chooser->message(), "Waiting for this folder…");
  pressRow(0, 2);
  slow.release();
  ASSERT_TRUE(listed());
  EXPECT_EQ(names(), (Told{"inside"}));
  EXPECT_EQ(chooser->message(), "");
}

TEST_F(FolderChooserTest, DropsTheAnswerForAFolderThatWasLeft) {
  makeFolder("slow/inside");
  open({{"Home", home}, {"Slow", home + "/slow"}});
  pressPlace(1);
  ASSERT_EQ(chooser->listing(), std::nullopt);
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
  const RowColumn& list = chooser->listColumn();
  const ui::Rect row = list.rowRect(kCount - 1);
  EXPECT_EQ(ui::intersect(row, list.view()), row);
  EXPECT_EQ(ground(row), rgb(style.palette().accent));
  type("15");
  EXPECT_EQ(selectedName(), "150000");
}

}  // namespace
}  // namespace app
