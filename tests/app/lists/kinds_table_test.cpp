#include "app/lists/kinds_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"
#include "tests/ui/window_test_base.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::add;
using test::Listing;

constexpr int kWidth = 400;
constexpr int kHeight = 300;

std::uint32_t rgb(ui::Colour colour) { return colour & 0xFFFFFF; }

TEST(KindColumns, StandAtTheRightButForTheName) {
  const KindColumns columns = kindColumns(20, 360, 22);
  EXPECT_EQ(columns.swatchX, 28);
  EXPECT_EQ(columns.files, (ui::Rect{360 - 70 - 8, 0, 70, 0}));
  EXPECT_EQ(columns.size, (ui::Rect{282 - 90, 0, 82, 0}));
  EXPECT_EQ(columns.name, (ui::Rect{44, 0, 192 - 44 - 8, 0}));
}

TEST(KindColumns, GrowWithTheRowHeight) {
  const KindColumns columns = kindColumns(0, 500, 44);
  EXPECT_EQ(columns.files, (ui::Rect{500 - 140 - 8, 0, 140, 0}));
  EXPECT_EQ(columns.size, (ui::Rect{352 - 180, 0, 172, 0}));
  EXPECT_EQ(columns.swatchX, 8);
  EXPECT_EQ(kindColumns(0, 500, 23).files.w, 73) << "rounded";
}

/// A table of the kinds 10, 20 and 30, the last of them largest and the first of most files, on a
/// server of its own.
struct TableOnServer : test::WindowOnServer {
  explicit TableOnServer(const ui::Palette& palette = ui::kLightPalette)
      : style_(*connection, palette) {
    table_.onChanged = [this] { ++changes_; };
    table_.onKindSelected = [this](std::optional<sizewalk::KindIndex> kind) {
      selections_.push_back(kind);
    };
    table_.setRect(place_);
    table_.setRows({{10, 1000, 300}, {20, 2000, 200}, {30, 3000, 100}});
    changes_ = 0;
  }

  std::string order() const {
    std::string result;
    for (const KindRow& row : table_.rows()) result += std::to_string(row.kind) + " ";
    return result;
  }
  int rowY(std::size_t row) const { return table_.rowRect(row).y + 3; }
  void press(std::size_t row) {
    table_.press({.x = 100, .y = rowY(row), .button = 1});
    table_.release({.button = 1});
  }
  void pressHeader(int x) { table_.press({.x = x, .y = 12, .button = 1}); }
  bool key(unsigned long keysym, bool ctrl = false) {
    return table_.key({.keysym = keysym, .text = {}, .ctrl = ctrl});
  }
  /// So many kinds that the table has a scroll bar, the smaller the later.
  void fillUp(int kinds = 40) {
    std::vector<KindRow> rows;
    for (int i = 0; i < kinds; ++i) {
      rows.push_back(
          {static_cast<sizewalk::KindIndex>(i), 100000u - static_cast<unsigned>(i) * 100, 1});
    }
    table_.setRows(rows);
  }
  test::Picture painted(const KindsTable& table) {
    if (window.xid() == 0) show(kWidth, kHeight);
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, kWidth, kHeight}, 0xFF010203);
      table.paint(canvas);
    });
  }
  test::Picture painted() { return painted(table_); }

  ui::Style style_;
  const int h_ = style_.rowHeight();
  /// A header and five rows.
  const ui::Rect place_{20, 10, 340, 6 * h_};
  KindColours colours_{true};
  KindsTable table_{style_, &colours_};
  int changes_ = 0;
  std::vector<std::optional<sizewalk::KindIndex>> selections_;
};

class KindsTableTest : public ::testing::Test, protected TableOnServer {
 protected:
  /// How many pixels of `part` are not `background`.
  static int ink(const test::Picture& picture, const ui::Rect& part,
                 ui::Colour background = ui::kLightPalette.view) {
    int count = 0;
    for (int y = part.y; y < part.y + part.h; ++y) {
      for (int x = part.x; x < part.x + part.w; ++x) count += picture.at(x, y) != rgb(background);
    }
    return count;
  }
  ui::Rect cell(const ui::Rect& column, std::size_t row) const {
    const ui::Rect place = table_.rowRect(row);
    return {column.x, place.y, column.w, place.h};
  }
};

// Drawing.

TEST_F(KindsTableTest, FillsItsPlaceAndNothingElse) {
  fillUp();
  table_.wheel({}, 1);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - place_.w * place_.h);
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.view));
}

TEST_F(KindsTableTest, HasAHeaderWithALineBelow) {
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.border));
  EXPECT_EQ(picture.at(359, 10 + h_ - 1), rgb(ui::kLightPalette.border));
  EXPECT_EQ(picture.at(20, 10 + h_), rgb(ui::kLightPalette.view));
  const KindColumns columns = table_.columns();
  const auto header = [&](const ui::Rect& column) {
    return ui::Rect{column.x, 10, column.w, h_ - 1};
  };
  const int kindWidth = style_.textWidth("Kind");
  EXPECT_GT(ink(picture, {columns.name.x, 10, kindWidth, h_ - 1}), 20);
  EXPECT_EQ(ink(picture, {columns.name.x + kindWidth + 1, 10, 40, h_ - 1}), 0) << "no arrow";
  EXPECT_GT(ink(picture, header(columns.size)), 20);
  EXPECT_GT(ink(picture, header(columns.files)), 20);
}

TEST_F(KindsTableTest, MarksTheSortedColumnWithAnArrow) {
  const KindColumns columns = table_.columns();
  const ui::Rect kind = {columns.name.x + style_.textWidth("Kind") + 1, 10, 40, h_ - 1};
  pressHeader(columns.name.x);
  EXPECT_GT(ink(painted(), kind), 5);
}

TEST_F(KindsTableTest, DrawsSwatchNameSizeAndFiles) {
  const test::Picture picture = painted();
  const std::uint32_t colour = rgb(colours_.colourForKind(30));
  const int y = 10 + h_ + h_ / 2 - 4;
  EXPECT_EQ(picture.at(28, y), colour);
  EXPECT_EQ(picture.at(36, y + 8), colour);
  for (const auto& [x, dy] : {std::pair{27, 0}, {37, 8}, {28, -1}, {36, 9}}) {
    EXPECT_EQ(picture.at(x, y + dy), rgb(ui::kLightPalette.view));
  }
  const KindColumns columns = table_.columns();
  EXPECT_GT(ink(picture, {44, 10 + h_, style_.textWidth(kindRowName(30)), h_}), 20);
  const int sizeRight = columns.size.x + columns.size.w;
  const int sizeWidth = style_.textWidth("3.00 kB");
  EXPECT_GT(ink(picture, {sizeRight - sizeWidth, 10 + h_, sizeWidth, h_}), 30);
  EXPECT_EQ(ink(picture, {sizeRight + 1, 10 + h_, 6, h_}), 0);
  const int filesRight = columns.files.x + columns.files.w;
  const int filesWidth = style_.textWidth("100");
  EXPECT_EQ(filesRight, 360 - 8);
  EXPECT_GT(ink(picture, {filesRight - filesWidth, 10 + h_, filesWidth, h_}), 20);
  EXPECT_EQ(ink(picture, {columns.files.x, 10 + h_, columns.files.w - filesWidth - 2, h_}), 0);
}

TEST_F(KindsTableTest, DrawsNoSwatchesWithoutColoursAndKeepsTheNamesInPlace) {
  KindsTable plain(style_, nullptr);
  plain.setRect(place_);
  plain.setRows(table_.rows());
  const test::Picture without = painted(plain);
  const test::Picture with = painted();
  EXPECT_EQ(ink(without, {21, 10 + h_, 22, 3 * h_}), 0);
  for (int y = 10 + h_; y < 10 + 4 * h_; ++y) {
    for (int x = 44; x < 200; ++x) ASSERT_EQ(without.at(x, y), with.at(x, y));
  }
}

TEST_F(KindsTableTest, CallsAKindBeyondTheListOther) {
  table_.setRows({{76, 10, 1}});
  const test::Picture beyond = painted();
  table_.setRows({{sizewalk::otherKind, 10, 1}});
  const test::Picture listed = painted();
  for (int y = 10 + h_; y < 10 + 2 * h_; ++y) {
    for (int x = 44; x < 360; ++x) ASSERT_EQ(beyond.at(x, y), listed.at(x, y));
  }
}

TEST_F(KindsTableTest, DrawsTheSelectedRowInTheAccentColours) {
  press(1);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + 2 * h_), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(359, 10 + 3 * h_ - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(20, 10 + 2 * h_ - 1), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(20, 10 + 3 * h_), rgb(ui::kLightPalette.view));
  const ui::Rect files = cell(table_.columns().files, 1);
  EXPECT_GT(ink(picture, files, ui::kLightPalette.accent), 20);
  for (int y = files.y; y < files.y + files.h; ++y) {
    for (int x = files.x; x < files.x + files.w; ++x) {
      EXPECT_GE(picture.at(x, y) >> 16, 0x35u) << "light on accent";
    }
  }
}

TEST_F(KindsTableTest, VeilsTheRowUnderThePointer) {
  table_.motion({.x = 100, .y = rowY(2)});
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(painted().at(20, 10 + 3 * h_), 0xF5F5F5u);
  table_.motion({.x = 100, .y = 12});
  EXPECT_EQ(changes_, 2);
  EXPECT_EQ(painted().at(20, 11), rgb(ui::kLightPalette.view)) << "not the header";
  table_.motion({.x = 100, .y = rowY(2)});
  table_.leave();
  EXPECT_EQ(painted().at(20, 10 + 3 * h_), rgb(ui::kLightPalette.view));
}

TEST_F(KindsTableTest, MakesRoomForItsBar) {
  EXPECT_EQ(table_.columns().files.x + table_.columns().files.w, 352);
  fillUp();
  EXPECT_EQ(table_.columns().files.x + table_.columns().files.w, 342);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(350, 10 + h_), rgb(ui::kLightPalette.raised));
  EXPECT_EQ(picture.at(355, 10 + h_ + 8), rgb(ui::kLightPalette.dimText));
  EXPECT_NE(picture.at(355, 12), rgb(ui::kLightPalette.raised)) << "the header has none";
}

TEST_F(KindsTableTest, ClipsItsRowsToTheBody) {
  fillUp();
  press(0);
  table_.press({.x = 355, .y = rowY(4), .button = 1});
  table_.wheel({}, -1);
  table_.setRect({20, 10, 340, 6 * h_ - 5});
  table_.wheel({}, 100);
  const int part = table_.scrollOffset() % h_;
  EXPECT_NE(part, 0);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.border));
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - 340 * (6 * h_ - 5));
}

TEST_F(KindsTableTest, RingsTheCurrentRowWhileItHasTheFocus) {
  table_.setFocused(true);
  EXPECT_EQ(painted().at(20, 10 + h_), rgb(ui::kLightPalette.accent));
  press(0);
  EXPECT_EQ(painted().at(21, 11 + h_), rgb(ui::kLightPalette.accentText));
  table_.setFocused(false);
  EXPECT_EQ(painted().at(21, 11 + h_), rgb(ui::kLightPalette.accent));
}

TEST_F(KindsTableTest, IsRingedItselfWhileTheCurrentRowIsOutOfSight) {
  fillUp();
  key(ui::key::kHome);
  table_.setFocused(true);
  const auto corner = [&] { return painted().at(20, 10 + h_); };
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.accent)) << "of the first row";
  table_.wheel({}, 100);
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.accent)) << "of all rows";
  table_.setFocused(false);
  EXPECT_EQ(corner(), rgb(ui::kLightPalette.view));
}

// Sorting.

TEST_F(KindsTableTest, SortsByTheHeaderThatIsPressed) {
  EXPECT_EQ(order(), "30 20 10 ");
  const KindColumns columns = table_.columns();
  pressHeader(columns.files.x + 3);
  EXPECT_EQ(order(), "10 20 30 ") << "the most files first";
  EXPECT_EQ(table_.sort(), (KindSort{KindColumn::Files, false}));
  pressHeader(columns.files.x + 3);
  EXPECT_EQ(order(), "30 20 10 ");
  pressHeader(columns.size.x + 3);
  EXPECT_EQ(table_.sort(), (KindSort{KindColumn::Size, false}));
  pressHeader(columns.size.x - 3);
  EXPECT_EQ(table_.sort(), (KindSort{KindColumn::Kind, true}));
  EXPECT_EQ(changes_, 4);
  EXPECT_TRUE(selections_.empty());
}

TEST_F(KindsTableTest, KeepsItsOrderAndSelectionOverNewResults) {
  press(0);
  pressHeader(table_.columns().files.x + 3);
  table_.setRows({{30, 3000, 900}, {20, 2000, 200}, {10, 1000, 300}});
  EXPECT_EQ(order(), "30 10 20 ");
  EXPECT_EQ(table_.selectedKind(), 30);
}

TEST_F(KindsTableTest, ShowsTheKindsOfATree) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("a.mp3", 10, 4096).file("b.pdf", 500, 512));
  table_.setRows(kindRows(tree, {}, {}));
  ASSERT_EQ(table_.rows().size(), 2u);
  EXPECT_EQ(table_.rows()[0].kind, sizewalk::classifyName("b.pdf"));
  table_.setRows(kindRows(tree, {Measure::CurrentSize, true}, {}));
  EXPECT_EQ(table_.rows()[0].kind, sizewalk::classifyName("a.mp3"));
}

// Selecting.

TEST_F(KindsTableTest, SelectsAKindByAPressAndEndsItByAnother) {
  press(1);
  EXPECT_EQ(table_.selectedKind(), 20);
  press(2);
  press(2);
  EXPECT_EQ(table_.selectedKind(), std::nullopt);
  EXPECT_EQ(selections_, (std::vector<std::optional<sizewalk::KindIndex>>{20, 10, std::nullopt}));
}

TEST_F(KindsTableTest, TakesOtherPressesForNothing) {
  table_.press({.x = 100, .y = rowY(1), .button = 3});
  table_.press({.x = 100, .y = 10 + 5 * h_, .button = 1});
  table_.press({.x = 380, .y = rowY(1), .button = 1});
  EXPECT_TRUE(selections_.empty());
}

TEST_F(KindsTableTest, ForgetsItsSelectionWhenItIsTold) {
  table_.clearSelection();
  EXPECT_TRUE(selections_.empty());
  press(1);
  table_.clearSelection();
  EXPECT_EQ(selections_, (std::vector<std::optional<sizewalk::KindIndex>>{20, std::nullopt}));
}

TEST_F(KindsTableTest, SelectsNoKindOfWhichThereIsNoFile) {
  press(1);
  table_.setRows({{10, 1000, 300}});
  EXPECT_EQ(table_.selectedKind(), std::nullopt);
  EXPECT_EQ(selections_.back(), std::nullopt);
  EXPECT_EQ(table_.currentKind(), 10);
}

// Keys.

TEST_F(KindsTableTest, MovesTheCurrentRowByKeys) {
  EXPECT_EQ(table_.currentKind(), 30);
  EXPECT_TRUE(key(ui::key::kDown));
  EXPECT_EQ(table_.currentKind(), 20);
  EXPECT_TRUE(selections_.empty());
  key(ui::key::kEnd);
  key(ui::key::kDown);
  EXPECT_EQ(table_.currentKind(), 10);
  key(ui::key::kHome);
  key(ui::key::kUp);
  EXPECT_EQ(table_.currentKind(), 30);
  key(ui::key::kPageDown);
  EXPECT_EQ(table_.currentKind(), 10);
  key(ui::key::kPageUp);
  EXPECT_EQ(table_.currentKind(), 30);
}

TEST_F(KindsTableTest, TogglesTheCurrentRowAndTakesTheSelectionAlong) {
  EXPECT_TRUE(key(' '));
  key(ui::key::kDown);
  EXPECT_EQ(table_.selectedKind(), 20);
  EXPECT_TRUE(key(ui::key::kKeypadEnter));
  EXPECT_EQ(selections_, (std::vector<std::optional<sizewalk::KindIndex>>{30, 20, std::nullopt}));
}

TEST_F(KindsTableTest, LeavesOtherKeysToItsOwner) {
  EXPECT_FALSE(key(ui::key::kUp, true));
  EXPECT_FALSE(key(ui::key::kEscape));
  EXPECT_FALSE(key('k'));
  table_.setRows({});
  EXPECT_FALSE(key(ui::key::kDown));
  EXPECT_EQ(table_.currentKind(), std::nullopt);
}

// Scrolling.

TEST_F(KindsTableTest, ScrollsByWheelBarAndKeys) {
  fillUp();
  table_.wheel({}, 1);
  EXPECT_EQ(table_.scrollOffset(), 3 * h_);
  table_.wheel({}, -2);
  EXPECT_EQ(table_.scrollOffset(), 0);
  table_.press({.x = 355, .y = 10 + 6 * h_ - 1, .button = 1});
  table_.release({.button = 1});
  EXPECT_EQ(table_.scrollOffset(), 5 * h_);
  key(ui::key::kEnd);
  EXPECT_EQ(table_.scrollOffset(), 35 * h_);
  EXPECT_TRUE(selections_.empty());
}

TEST_F(KindsTableTest, DragsItsBar) {
  fillUp();
  table_.press({.x = 355, .y = 10 + h_ + 5, .button = 1});
  table_.motion({.x = 100, .y = 10 + 4 * h_});
  EXPECT_GT(table_.scrollOffset(), 10 * h_);
  table_.release({.button = 1});
  const int offset = table_.scrollOffset();
  table_.motion({.x = 100, .y = 10 + 2 * h_});
  EXPECT_EQ(table_.scrollOffset(), offset);
}

TEST_F(KindsTableTest, KeepsTheRowUnderThePointerInPlace) {
  fillUp();
  table_.motion({.x = 50, .y = rowY(2)});
  table_.motion({.x = 100, .y = rowY(2)});
  const int y = table_.rowRect(2).y;
  std::vector<KindRow> rows = table_.rows();
  rows.push_back({70, 1000000, 1});
  table_.setRows(rows);
  EXPECT_EQ(table_.rows()[3].kind, 2);
  EXPECT_EQ(table_.rowRect(3).y, y);
}

TEST_F(KindsTableTest, StaysAtItsTopUnderAPointerThatWasThereBeforeIt) {
  fillUp();
  table_.motion({.x = 100, .y = rowY(2)});
  table_.motion({.x = 101, .y = rowY(2) + 1});
  std::vector<KindRow> rows = table_.rows();
  rows.push_back({70, 1000000, 1});
  table_.setRows(rows);
  EXPECT_EQ(table_.scrollOffset(), 0);
  table_.pointerSeen(0, 0);
  table_.motion({.x = 100, .y = rowY(2)});
  rows.push_back({71, 1000000, 1});
  table_.setRows(rows);
  EXPECT_EQ(table_.scrollOffset(), h_) << "it has been elsewhere";
}

TEST_F(KindsTableTest, StaysAtItsTopButKeepsItsPlaceFurtherDown) {
  fillUp();
  std::vector<KindRow> rows = table_.rows();
  rows.push_back({70, 1000000, 1});
  table_.setRows(rows);
  EXPECT_EQ(table_.scrollOffset(), 0);
  table_.wheel({}, 1);
  rows.push_back({71, 1000000, 1});
  table_.setRows(rows);
  EXPECT_EQ(table_.scrollOffset(), 4 * h_);
}

}  // namespace
}  // namespace app
