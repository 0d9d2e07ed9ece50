#include "app/folder_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "tests/sizewalk/tree_model.h"
#include "tests/ui/window_test_base.h"
#include "ui/keys.h"

namespace app {
namespace {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;
using Nodes = std::unordered_set<NodeId>;

constexpr int kWidth = 300;
constexpr int kHeight = 300;
constexpr std::uint32_t kRgb = 0xFFFFFF;

std::uint32_t rgb(ui::Colour colour) { return colour & kRgb; }

/// A list with the light palette on a server of its own. Its rows are, from the top: r, big,
/// small.txt, Other, empty. The folder big holds inner, with deep in it, and file.
struct ListOnServer : test::WindowOnServer {
  explicit ListOnServer(const test::XServerOptions& options = {},
                        const ui::Palette& palette = ui::kLightPalette)
      : WindowOnServer(options), style_(*connection, palette) {
    tree_.createRoot("/r");
    const auto folders =
        add(tree_, Listing(0).folder("empty").file("small.txt", 5).folder("big").file("Other", 3));
    empty_ = folders[0];
    big_ = folders[1];
    inner_ = add(tree_, Listing(big_).file("file", 40).folder("inner")).front();
    add(tree_, Listing(inner_).file("deep", 60));
    deep_ = tree_.children(inner_).first;
    small_ = empty_ + 1;
    other_ = empty_ + 3;
    list_.onChanged = [this] { ++changes_; };
    list_.onActivate = [this](NodeId node) { activated_.push_back(node); };
    list_.onContextMenu = [this](NodeId node, int x, int y) { menus_.push_back({node, x, y}); };
    list_.setRect(place_);
    list_.show(&tree_);
    changes_ = 0;
  }

  int rowY(std::size_t row) const {
    const ui::Rect rect = list_.rowRect(row);
    return rect.y + rect.h / 2;
  }
  void press(std::size_t row, const ui::MouseEvent& how = {.button = 1}, int x = 150) {
    ui::MouseEvent event = how;
    event.x = x;
    event.y = rowY(row);
    list_.press(event);
    list_.release();
  }
  bool key(unsigned long keysym, bool shift = false, bool ctrl = false) {
    return list_.key({.keysym = keysym, .text = {}, .shift = shift, .ctrl = ctrl}, now_);
  }
  bool type(const std::string& text) {
    now_ += 10;
    return list_.key({.keysym = static_cast<unsigned char>(text[0]), .text = text}, now_);
  }
  std::string names() const {
    std::string result;
    for (const FolderRow& row : list_.rows().rows()) {
      result += std::string(tree_.name(row.node)) + " ";
    }
    return result;
  }
  const Nodes& selected() const { return selection_.nodes(); }
  /// The list on ground of a colour of its own.
  test::Picture painted() {
    if (window.xid() == 0) show(kWidth, kHeight);
    list_.update();
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, kWidth, kHeight}, 0xFF010203);
      list_.paint(canvas);
    });
  }
  /// Puts `count` files into the scanned folder's folder "empty".
  void fillEmpty(int count, std::uint64_t size = 1) {
    Listing listing(empty_);
    for (int i = 0; i < count; ++i) listing.file("f" + std::to_string(1000 + i), size);
    add(tree_, listing);
  }

  struct Menu {
    NodeId node;
    int x, y;
  };
  Style style_;
  /// Height of a row, which depends on the font, and half of it.
  const int h_ = style_.rowHeight();
  const int mid_ = h_ / 2;
  /// Five rows.
  const ui::Rect place_{20, 10, 240, 5 * h_};
  KindColours colours_{true};
  Selection selection_;
  sizewalk::FileTree tree_;
  NodeId empty_ = 0, big_ = 0, inner_ = 0, deep_ = 0, small_ = 0, other_ = 0;
  FolderList list_{style_, &colours_, selection_};
  int changes_ = 0;
  std::vector<NodeId> activated_;
  std::vector<Menu> menus_;
  std::int64_t now_ = 100000;
};

class FolderListTest : public ::testing::Test, protected ListOnServer {
 protected:
  /// How many pixels of `part` are not `background`.
  static int ink(const test::Picture& picture, const ui::Rect& part, std::uint32_t background) {
    int count = 0;
    for (int y = part.y; y < part.y + part.h; ++y) {
      for (int x = part.x; x < part.x + part.w; ++x) count += picture.at(x, y) != background;
    }
    return count;
  }
};

// Drawing. In the first row x0 is 20 + 6, then 16 more at each level.

TEST_F(FolderListTest, FillsItsPlaceWithTheViewColourAndNothingElse) {
  list_.show(nullptr);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.count(rgb(ui::kLightPalette.view)), place_.w * place_.h);
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - place_.w * place_.h);
}

TEST_F(FolderListTest, DrawsAnOpenTriangleDownwards) {
  const test::Picture picture = painted();
  const std::uint32_t dim = rgb(ui::kLightPalette.dimText);
  for (int i = 0; i < 5; ++i) {
    const int y = 10 + mid_ - 2 + i;
    EXPECT_EQ(picture.at(26 + i, y), dim) << i;
    EXPECT_EQ(picture.at(34 - i, y), dim) << i;
    EXPECT_EQ(ink(picture, {26, y, 9, 1}, rgb(ui::kLightPalette.view)), 9 - 2 * i);
  }
  EXPECT_EQ(ink(picture, {20, 10, 18, h_}, rgb(ui::kLightPalette.view)), 9 + 7 + 5 + 3 + 1);
}

TEST_F(FolderListTest, DrawsAClosedTriangleRightwards) {
  const test::Picture picture = painted();
  const int mid = 10 + h_ + mid_;
  for (int i = 0; i < 5; ++i) {
    const int x = 26 + 16 + 2 + i;
    EXPECT_EQ(ink(picture, {x, 10 + h_, 1, h_}, rgb(ui::kLightPalette.view)), 9 - 2 * i) << i;
    EXPECT_EQ(picture.at(x, mid - 4 + i), rgb(ui::kLightPalette.dimText));
    EXPECT_EQ(picture.at(x, mid + 4 - i), rgb(ui::kLightPalette.dimText));
  }
}

TEST_F(FolderListTest, DrawsNoTriangleWhereNothingOpens) {
  const test::Picture picture = painted();
  EXPECT_EQ(ink(picture, {20, 10 + 2 * h_, 16 + 6 + 12, h_}, rgb(ui::kLightPalette.view)), 0);
}

TEST_F(FolderListTest, DrawsTheSwatchInTheColourOfTheKind) {
  const test::Picture picture = painted();
  const std::uint32_t colour = rgb(colours_.colourForKind(tree_.kind(small_)));
  const int x = 26 + 16 + 12;
  const int y = 10 + 2 * h_ + mid_ - 4;
  EXPECT_EQ(picture.at(x, y), colour);
  EXPECT_EQ(picture.at(x + 7, y + 7), colour);
  EXPECT_EQ(picture.at(x - 1, y), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x + 8, y + 7), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x, y - 1), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(x, y + 8), rgb(ui::kLightPalette.view));
}

TEST_F(FolderListTest, DrawsNoSwatchWithoutColours) {
  FolderList plain(style_, nullptr, selection_);
  plain.setRect(place_);
  plain.show(&tree_);
  show(kWidth, kHeight);
  const test::Picture picture = paint([&](ui::Canvas& canvas) { plain.paint(canvas); });
  EXPECT_EQ(ink(picture, {54, 10 + 2 * h_, 8, h_}, rgb(ui::kLightPalette.view)), 0);
  EXPECT_GT(ink(picture, {26 + 16 + 26, 10 + 2 * h_, 60, h_}, rgb(ui::kLightPalette.view)), 20)
      << "the name keeps its place";
}

TEST_F(FolderListTest, DrawsNameAndSizeInTheirColumns) {
  const test::Picture picture = painted();
  const std::uint32_t view = rgb(ui::kLightPalette.view);
  const int y = 10 + 2 * h_;
  const int nameX = 26 + 16 + 26;
  const int nameWidth = style_.textWidth("small.txt");
  EXPECT_GT(ink(picture, {nameX, y, nameWidth, h_}, view), 50);
  EXPECT_EQ(ink(picture, {nameX + nameWidth + 1, y, 80, h_}, view), 0);
  const int sizeWidth = style_.textWidth("5 B");
  EXPECT_GT(ink(picture, {260 - sizeWidth, y, sizeWidth, h_}, view), 10);
  EXPECT_EQ(ink(picture, {260 - 70, y, 70 - sizeWidth - 1, h_}, view), 0);
}

TEST_F(FolderListTest, ShowsTheSizeUnderTheMeasure) {
  add(tree_, Listing(empty_).file("on disk", 0, 1234567));
  list_.refresh();
  const test::Picture byLength = painted();
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(list_.rows().rows()[1].node, empty_) << "the largest on disk";
  const test::Picture onDisk = painted();
  const ui::Rect sizes = {260 - 70, 10, 70, h_};
  EXPECT_GT(ink(onDisk, sizes, rgb(ui::kLightPalette.view)),
            ink(byLength, sizes, rgb(ui::kLightPalette.view)))
      << "\"1.23 MB\" is longer than \"108 B\"";
}

TEST_F(FolderListTest, DrawsASelectedRowInTheAccentColours) {
  selection_.select(big_);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(259, 10 + 2 * h_ - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(20, 10 + 2 * h_), rgb(ui::kLightPalette.view));
  EXPECT_EQ(picture.at(44, 10 + h_ + mid_), rgb(ui::kLightPalette.accentText)) << "the triangle";
  for (const ui::Rect& part : {ui::Rect{68, 10 + h_, 40, h_}, ui::Rect{190, 10 + h_, 70, h_}}) {
    EXPECT_GT(ink(picture, part, rgb(ui::kLightPalette.accent)), 10) << "text at " << part.x;
    for (int y = part.y; y < part.y + part.h; ++y) {
      for (int x = part.x; x < part.x + part.w; ++x) {
        EXPECT_GE(picture.at(x, y) >> 16, rgb(ui::kLightPalette.accent) >> 16) << "light on accent";
      }
    }
  }
}

TEST_F(FolderListTest, VeilsTheRowUnderThePointer) {
  list_.motion({.x = 100, .y = 10 + h_ + 5});
  EXPECT_EQ(changes_, 1);
  list_.motion({.x = 101, .y = 10 + h_ + 6});
  EXPECT_EQ(changes_, 1) << "the same row";
  test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10 + h_), 0xF5F5F5u);
  EXPECT_EQ(picture.at(259, 10 + 2 * h_ - 1), 0xF5F5F5u);
  EXPECT_EQ(picture.at(20, 10 + h_ - 1), rgb(ui::kLightPalette.view));
  selection_.select(big_);
  EXPECT_EQ(painted().at(20, 10 + h_), rgb(ui::kLightPalette.accent)) << "without a veil";
  selection_.clear();
  list_.leave();
  EXPECT_EQ(changes_, 2);
  EXPECT_EQ(painted().at(20, 10 + h_), rgb(ui::kLightPalette.view));
}

TEST(FolderListDark, VeilsTheRowUnderThePointerInWhite) {
  ListOnServer dark({}, ui::kDarkPalette);
  dark.list_.motion({.x = 100, .y = dark.rowY(1)});
  const test::Picture picture = dark.painted();
  EXPECT_EQ(picture.at(20, 10 + dark.h_ - 1), rgb(ui::kDarkPalette.view));
  const std::uint32_t veiled = picture.at(20, 10 + dark.h_);
  EXPECT_NEAR(static_cast<double>(veiled & 0xFF), 0x33 + (0xFF - 0x33) * 14 / 255.0, 1);
}

TEST_F(FolderListTest, GivesTheNameTwentyPixelsHoweverNarrowItIs) {
  list_.setRect({20, 10, 40, 110});
  EXPECT_NE(painted().count(rgb(ui::kLightPalette.view)), 40 * 110);
  // A list that ends where the size begins: the name of the first row has 20 pixels, no more.
  list_.setRect({20, 10, 32 + 20 + 8 + 80 - 30, 110});
  const test::Picture picture = painted();
  const int x = 26 + 26;
  EXPECT_GT(ink(picture, {x, 10, 20, h_}, rgb(ui::kLightPalette.view)), 3) << "the r";
}

TEST_F(FolderListTest, DrawsNoNameForAnEmptyOneButSwatchAndSize) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  add(tree, Listing(0).file("", 7));
  list_.show(&tree);
  const test::Picture picture = painted();
  const std::uint32_t view = rgb(ui::kLightPalette.view);
  EXPECT_EQ(ink(picture, {68, 10 + h_, 260 - 70 - 68, h_}, view), 0);
  EXPECT_EQ(ink(picture, {54, 10 + h_, 8, h_}, view), 64);
  EXPECT_GT(ink(picture, {190, 10 + h_, 70, h_}, view), 10);
}

TEST_F(FolderListTest, StaysInItsPlace) {
  fillEmpty(30);
  list_.revealNode(tree_.children(empty_).first);
  list_.update();
  list_.wheel(1);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.count(0x010203), kWidth * kHeight - place_.w * place_.h);
}

TEST_F(FolderListTest, HasABarOnlyWhenItsRowsAreHigherThanItself) {
  EXPECT_EQ(list_.rowRect(0).w, 240);
  EXPECT_EQ(painted().at(255, 10), rgb(ui::kLightPalette.view));
  list_.setRect({20, 10, 240, 5 * h_ - 1});
  EXPECT_EQ(list_.rowRect(0).w, 230);
  const test::Picture picture = painted();
  EXPECT_EQ(picture.at(250, 10), rgb(ui::kLightPalette.raised));
  EXPECT_EQ(picture.at(255, 30), rgb(ui::kLightPalette.dimText));
  const int sizeWidth = style_.textWidth("5 B");
  EXPECT_GT(
      ink(picture, {250 - sizeWidth, 10 + 2 * h_, sizeWidth, h_}, rgb(ui::kLightPalette.view)), 10);
}

TEST_F(FolderListTest, RingsTheCurrentRowWhileItHasTheFocus) {
  list_.setFocused(true);
  EXPECT_EQ(changes_, 1);
  test::Picture picture = painted();
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(259, 10 + h_ - 1), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(21, 11), rgb(ui::kLightPalette.view));
  selection_.select(kRootNode);
  picture = painted();
  EXPECT_EQ(picture.at(20, 10), rgb(ui::kLightPalette.accent));
  EXPECT_EQ(picture.at(21, 11), rgb(ui::kLightPalette.accentText));
  EXPECT_EQ(picture.at(22, 12), rgb(ui::kLightPalette.accent));
  list_.setFocused(false);
  EXPECT_EQ(painted().at(21, 11), rgb(ui::kLightPalette.accent));
}

TEST(FolderListAtScaleTwo, GrowsRowsIndentAndSizeColumnOnly) {
  ListOnServer twice({.resources = "Xft.dpi:\t192\n"});
  ASSERT_GE(twice.h_, 44);
  const test::Picture picture = twice.painted();
  const std::uint32_t colour = rgb(twice.colours_.colourForKind(sizewalk::kKindFolder));
  const int x = 20 + 32 + 6 + 12;
  const int y = 10 + twice.h_ + twice.mid_ - 4;
  EXPECT_EQ(picture.at(x, y), colour);
  EXPECT_EQ(picture.at(x + 7, y + 7), colour);
  EXPECT_NE(picture.at(x + 8, y), colour);
}

// The pointer.

TEST_F(FolderListTest, SelectsTheRowThatIsPressed) {
  press(2);
  EXPECT_EQ(selected(), Nodes{small_});
  EXPECT_EQ(list_.current(), small_);
  EXPECT_GT(changes_, 0);
  press(1);
  EXPECT_EQ(selected(), Nodes{big_});
  list_.press({.x = 150, .y = 10 + 5 * h_, .button = 1});
  list_.press({.x = 280, .y = 20, .button = 1});
  press(0, {.button = 2});
  EXPECT_EQ(selected(), Nodes{big_}) << "nothing was hit";
}

TEST_F(FolderListTest, TogglesWithCtrlAndRangesWithShift) {
  press(1);
  press(3, {.button = 1, .ctrl = true});
  EXPECT_EQ(selected(), (Nodes{big_, other_}));
  press(3, {.button = 1, .ctrl = true});
  EXPECT_EQ(selected(), Nodes{big_});
  press(1, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_})) << "from the row that was toggled";
  press(4, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{other_, empty_})) << "from the same";
}

TEST_F(FolderListTest, RangesFromTheNodeWhereverItsRowIsByNow) {
  press(4);
  fillEmpty(10, 1000);
  list_.refresh();
  ASSERT_EQ(names(), "r empty big small.txt Other ");
  press(2, {.button = 1, .shift = true});
  EXPECT_EQ(selected(), (Nodes{empty_, big_}));
}

TEST_F(FolderListTest, OpensAndClosesByItsTriangleAndDoesNothingElse) {
  press(1, {.button = 1}, 46);
  EXPECT_EQ(names(), "r big inner file small.txt Other empty ");
  EXPECT_TRUE(selected().empty());
  EXPECT_EQ(list_.current(), kRootNode);
  press(1, {.button = 1, .clicks = 2}, 46);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  EXPECT_TRUE(activated_.empty());
  press(2, {.button = 1}, 46);
  EXPECT_EQ(selected(), Nodes{small_}) << "where there is no triangle";
}

TEST_F(FolderListTest, KeepsWhatIsSelectedInsideAClosedFolder) {
  list_.revealNode(deep_);
  selection_.select(deep_);
  press(1, {.button = 1}, 46);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  EXPECT_EQ(selected(), Nodes{deep_});
  EXPECT_EQ(list_.current(), big_) << "the row that closed over it";
}

TEST_F(FolderListTest, ActivatesOnADoublePress) {
  press(1);
  press(1, {.button = 1, .clicks = 2});
  EXPECT_EQ(activated_, std::vector<NodeId>{big_});
  press(1, {.button = 1, .clicks = 3});
  EXPECT_EQ(activated_.size(), 1u);
}

TEST_F(FolderListTest, TakesNoPressOnAnotherRowOrButtonForADoubleOne) {
  press(1);
  press(2, {.button = 1, .clicks = 2});
  press(3, {.button = 3});
  press(3, {.button = 1, .clicks = 2});
  press(3);
  press(3, {.button = 1, .clicks = 2, .ctrl = true});
  EXPECT_TRUE(activated_.empty());
}

TEST_F(FolderListTest, SelectsBeforeTheContextMenu) {
  press(2, {.button = 3});
  EXPECT_EQ(selected(), Nodes{small_});
  ASSERT_EQ(menus_.size(), 1u);
  EXPECT_EQ(menus_[0].node, small_);
  EXPECT_EQ(menus_[0].x, 150);
  EXPECT_EQ(menus_[0].y, 10 + 2 * h_ + mid_);
}

TEST_F(FolderListTest, KeepsASelectionThatTheContextMenuIsAskedOn) {
  press(1);
  press(3, {.button = 1, .shift = true});
  press(2, {.button = 3});
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_}));
  EXPECT_EQ(list_.current(), small_);
}

TEST_F(FolderListTest, ScrollsThreeRowsAStepOfTheWheel) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first);
  list_.update();
  const int before = list_.scrollOffset();
  list_.wheel(1);
  EXPECT_EQ(list_.scrollOffset(), before + 3 * h_);
  list_.wheel(-2);
  EXPECT_EQ(list_.scrollOffset(), std::max(0, before + 3 * h_ - 6 * h_));
}

TEST_F(FolderListTest, DragsAndPagesByItsBar) {
  fillEmpty(100);
  list_.revealNode(tree_.children(empty_).first);
  list_.scrollToRow(0);
  list_.update();
  ASSERT_EQ(list_.scrollOffset(), 0);
  list_.press({.x = 255, .y = 10 + 5 * h_ - 1, .button = 1});
  list_.release();
  EXPECT_EQ(list_.scrollOffset(), 5 * h_) << "a view further";
  list_.press({.x = 255, .y = 15, .button = 1});
  list_.motion({.x = 30, .y = 60});
  EXPECT_GT(list_.scrollOffset(), 500);
  EXPECT_NE(painted().at(20, 60), 0xF5F5F5u) << "no row is under the pointer meanwhile";
  list_.release();
  const int offset = list_.scrollOffset();
  list_.motion({.x = 30, .y = 80});
  EXPECT_EQ(list_.scrollOffset(), offset);
  EXPECT_TRUE(selected().empty()) << "no row was pressed";
}

// Keys.

TEST_F(FolderListTest, MovesByKeys) {
  EXPECT_TRUE(key(ui::key::kDown));
  EXPECT_EQ(selected(), Nodes{big_});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{small_});
  key(ui::key::kKeypadUp);
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kEnd);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kPageUp);
  EXPECT_EQ(selected(), Nodes{kRootNode}) << "four rows";
  key(ui::key::kUp);
  EXPECT_EQ(selected(), Nodes{kRootNode});
  key(ui::key::kPageDown);
  EXPECT_EQ(selected(), Nodes{empty_});
  key(ui::key::kHome);
  EXPECT_EQ(selected(), Nodes{kRootNode});
}

TEST_F(FolderListTest, ScrollsToTheRowThatAKeyMovesTo) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first);
  key(ui::key::kEnd);
  list_.update();
  EXPECT_EQ(list_.scrollOffset(), 55 * h_ - 5 * h_);
  key(ui::key::kHome);
  list_.update();
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(FolderListTest, ExtendsTheSelectionWithShift) {
  press(2);
  key(ui::key::kDown, true);
  EXPECT_EQ(selected(), (Nodes{small_, other_}));
  EXPECT_EQ(list_.current(), other_);
  key(ui::key::kHome, true);
  EXPECT_EQ(selected(), (Nodes{kRootNode, big_, small_}));
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{big_}) << "without Shift it is one again";
}

TEST_F(FolderListTest, ExtendsFromTheCurrentRowWhereNothingWasSelected) {
  key(ui::key::kDown, true);
  EXPECT_EQ(selected(), (Nodes{kRootNode, big_}));
}

TEST_F(FolderListTest, OpensGoesInClosesAndGoesOutByRightAndLeft) {
  press(1);
  EXPECT_TRUE(key(ui::key::kRight));
  EXPECT_EQ(names(), "r big inner file small.txt Other empty ");
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kRight);
  EXPECT_EQ(list_.current(), inner_);
  EXPECT_EQ(selected(), Nodes{inner_});
  key(ui::key::kDown);
  EXPECT_TRUE(key(ui::key::kRight)) << "a file has nothing to go to";
  key(ui::key::kLeft);
  EXPECT_EQ(list_.current(), big_);
  key(ui::key::kLeft);
  EXPECT_EQ(names(), "r big small.txt Other empty ");
  key(ui::key::kLeft);
  EXPECT_EQ(list_.current(), kRootNode);
  key(ui::key::kLeft);
  key(ui::key::kLeft);
  EXPECT_EQ(names(), "r ");
}

TEST_F(FolderListTest, GoesToTheNextNameThatIsTyped) {
  EXPECT_TRUE(type("O"));
  EXPECT_EQ(selected(), Nodes{other_});
  now_ += 1000;
  type("s");
  EXPECT_EQ(list_.current(), small_);
  type("M");
  EXPECT_EQ(list_.current(), small_) << "what was typed goes on to fit";
  now_ += 1000;
  type("B");
  EXPECT_EQ(list_.current(), big_) << "round the end";
  type("x");
  EXPECT_EQ(list_.current(), big_) << "nothing begins so";
}

TEST_F(FolderListTest, BeginsAnotherSearchAfterAnotherKey) {
  type("s");
  key(ui::key::kHome);
  type("e");
  EXPECT_EQ(list_.current(), empty_);
}

TEST_F(FolderListTest, KeepsASearchOverKeysThatMeanNothing) {
  add(tree_, Listing(empty_).file("s-", 1).file("sT", 1));
  list_.refresh();
  list_.revealNode(empty_);
  key(ui::key::kRight);
  type("s");
  key(0xFFE1);  // Shift itself
  type("T");
  EXPECT_EQ(tree_.name(*list_.current()), "sT");
}

TEST_F(FolderListTest, ActivatesTheCurrentRowByEnter) {
  press(2);
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_TRUE(key(ui::key::kKeypadEnter));
  EXPECT_EQ(activated_, (std::vector<NodeId>{small_, small_}));
}

TEST_F(FolderListTest, SelectsAllOfALevel) {
  press(1);
  key(ui::key::kRight);
  press(4);
  EXPECT_TRUE(key('a', false, true));
  EXPECT_EQ(selected(), (Nodes{big_, small_, other_, empty_})) << "not what big holds";
  press(2);
  key('A', false, true);
  EXPECT_EQ(selected(), (Nodes{inner_, tree_.children(big_).first}));
  press(0);
  key('a', false, true);
  EXPECT_EQ(selected(), Nodes{kRootNode});
}

TEST_F(FolderListTest, AsksForTheContextMenuAtTheCurrentRow) {
  press(2);
  EXPECT_TRUE(key(ui::key::kMenu));
  EXPECT_TRUE(key(ui::key::kF10, true));
  ASSERT_EQ(menus_.size(), 2u);
  EXPECT_EQ(menus_[1].node, small_);
  EXPECT_EQ(menus_[1].x, 68);
  EXPECT_EQ(menus_[1].y, 10 + 3 * h_);
  selection_.clear();
  key(ui::key::kMenu);
  EXPECT_EQ(selected(), Nodes{small_});
}

TEST_F(FolderListTest, LeavesOtherKeysToItsOwner) {
  press(1);
  EXPECT_FALSE(key(ui::key::kHome, false, true));
  EXPECT_FALSE(key(ui::key::kUp, false, true));
  EXPECT_FALSE(key(ui::key::kF10));
  EXPECT_FALSE(key(ui::key::kTab));
  EXPECT_FALSE(key(ui::key::kEscape));
  EXPECT_FALSE(key(ui::key::kDelete));
  EXPECT_FALSE(list_.key({.keysym = 'r', .text = "r", .ctrl = true}, now_));
  EXPECT_FALSE(list_.key({.keysym = ' ', .text = " "}, now_));
  EXPECT_EQ(selected(), Nodes{big_});
}

TEST_F(FolderListTest, TakesNoKeysWithoutRows) {
  list_.show(nullptr);
  EXPECT_FALSE(key(ui::key::kDown));
  EXPECT_FALSE(key('a', false, true));
  EXPECT_FALSE(list_.current());
  list_.press({.x = 100, .y = 20, .button = 1});
  list_.motion({.x = 100, .y = 20});
  list_.refresh();
  EXPECT_TRUE(selected().empty());
}

// Scrolling to a row, and staying put.

TEST_F(FolderListTest, ScrollsToARowOnceAndForgetsIt) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first + 40);
  const auto row = list_.rows().find(tree_.children(empty_).first + 40);
  ASSERT_TRUE(row);
  EXPECT_EQ(list_.pendingRow(), static_cast<std::ptrdiff_t>(*row));
  EXPECT_EQ(list_.scrollOffset(), 0) << "not before it is painted";
  list_.update();
  EXPECT_EQ(list_.pendingRow(), -1);
  EXPECT_EQ(list_.scrollOffset(), (static_cast<int>(*row) + 1 - 5) * h_);
  list_.wheel(-1);
  const int offset = list_.scrollOffset();
  list_.update();
  EXPECT_EQ(list_.scrollOffset(), offset);
}

TEST_F(FolderListTest, HasNoRowToScrollToAtFirstNorAfterAWrongOne) {
  EXPECT_EQ(list_.pendingRow(), -1);
  list_.scrollToRow(5);
  EXPECT_EQ(list_.pendingRow(), -1);
  list_.revealNode(900);
  EXPECT_EQ(list_.pendingRow(), -1);
}

TEST_F(FolderListTest, WaitsForAViewBeforeItScrolls) {
  fillEmpty(50);
  list_.setRect({});
  list_.revealNode(tree_.children(empty_).first + 40);
  list_.update();
  list_.setRect(place_);
  list_.update();
  EXPECT_GT(list_.scrollOffset(), 500);
}

TEST_F(FolderListTest, FollowsARowThatMovesBeforeItIsScrolledTo) {
  fillEmpty(50);
  list_.revealNode(deep_);
  ASSERT_EQ(list_.pendingRow(), 3);
  list_.press({.x = 150, .y = rowY(2), .button = 1});
  key(ui::key::kEnd);
  ASSERT_EQ(list_.current(), empty_ + 3);
  press(1, {.button = 1}, 46);
  EXPECT_EQ(list_.pendingRow(), 4);
}

TEST_F(FolderListTest, OpensTheWayToANodeAndMakesItCurrent) {
  list_.revealNode(deep_);
  EXPECT_EQ(names(), "r big inner deep file small.txt Other empty ");
  EXPECT_EQ(list_.current(), deep_);
  EXPECT_TRUE(selected().empty()) << "selecting is up to whoever asks";
}

/// The list scrolled into a folder of fifty files in it, its second row at its top.
class ScrolledFolderListTest : public FolderListTest {
 protected:
  ScrolledFolderListTest() {
    fillEmpty(50);
    list_.revealNode(tree_.children(empty_).first);
    list_.update();
    list_.wheel(10);
    list_.wheel(-3);
    top_ = static_cast<std::size_t>(list_.scrollOffset()) / static_cast<std::size_t>(h_);
    changes_ = 0;
  }
  NodeId nodeOf(std::size_t row) const { return list_.rows().rows()[row].node; }
  int placeOf(NodeId node) const { return list_.rowRect(*list_.rows().find(node)).y; }
  void takeOut(NodeId node) {
    ASSERT_TRUE(tree_.removeSubtree(node).valid);
    list_.refresh();
  }
  std::size_t top_ = 0;
};

TEST_F(ScrolledFolderListTest, KeepsTheTopmostRowInPlace) {
  const NodeId node = nodeOf(top_);
  const int place = placeOf(node);
  takeOut(big_);
  EXPECT_EQ(placeOf(node), place);
  EXPECT_EQ(*list_.rows().find(node), top_ - 1);
}

TEST_F(ScrolledFolderListTest, KeepsTheRowUnderThePointerInPlaceBeforeAllOthers) {
  const NodeId hovered = nodeOf(top_ + 3);
  const NodeId pressed = nodeOf(top_ + 1);
  press(top_ + 1);
  list_.motion({.x = 100, .y = rowY(top_ + 3)});
  const int place = placeOf(hovered);
  const NodeId between = nodeOf(top_ + 2);
  takeOut(between);
  EXPECT_EQ(placeOf(hovered), place);
  EXPECT_EQ(placeOf(pressed), place - h_);
}

TEST_F(ScrolledFolderListTest, KeepsTheCurrentRowInPlaceWhenItIsInView) {
  const NodeId pressed = nodeOf(top_ + 3);
  press(top_ + 3);
  const int place = placeOf(pressed);
  takeOut(nodeOf(top_ + 1));
  EXPECT_EQ(placeOf(pressed), place);
}

TEST_F(ScrolledFolderListTest, KeepsASelectedRowInPlaceWhenTheCurrentOneIsOutOfView) {
  const NodeId chosen = nodeOf(top_ + 3);
  selection_.select(chosen);
  const int place = placeOf(chosen);
  takeOut(nodeOf(top_ + 1));
  EXPECT_EQ(placeOf(chosen), place);
}

TEST_F(ScrolledFolderListTest, KeepsTheNextRowInPlaceWhereThatUnderThePointerVanishes) {
  list_.motion({.x = 100, .y = rowY(top_ + 2)});
  const NodeId node = nodeOf(top_);
  const int place = placeOf(node);
  takeOut(nodeOf(top_ + 2));
  EXPECT_EQ(placeOf(node), place);
}

TEST_F(ScrolledFolderListTest, HandsTheCurrentRowOnToTheNearestThatRemains) {
  press(top_ + 2);
  const NodeId below = nodeOf(top_ + 3);
  takeOut(nodeOf(top_ + 2));
  EXPECT_EQ(list_.current(), below);
  key(ui::key::kEnd);
  const NodeId above = nodeOf(list_.rows().rows().size() - 2);
  const NodeId last = *list_.current();
  takeOut(last);
  EXPECT_EQ(list_.current(), above);
  EXPECT_EQ(selected(), Nodes{last}) << "the selection is not the list's to change";
}

TEST_F(ScrolledFolderListTest, HandsTheCurrentRowOnBeyondAFolderThatIsTakenOut) {
  press(top_);
  const auto folder = list_.rows().find(empty_);
  ASSERT_TRUE(folder);
  const NodeId above = nodeOf(*folder - 1);
  takeOut(empty_);
  EXPECT_TRUE(list_.current() == above || list_.current() == other_);
  EXPECT_EQ(list_.scrollOffset(), 0) << "there is no more to scroll";
}

TEST_F(FolderListTest, StaysAtTheTopWhileResultsArrive) {
  fillEmpty(50, 1000);
  list_.refresh();
  EXPECT_EQ(names(), "r empty big small.txt Other ");
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.current(), kRootNode);
  EXPECT_EQ(changes_, 1);
}

TEST_F(FolderListTest, GetsItsFirstRowsWithTheTreesFirstNode) {
  sizewalk::FileTree unborn;
  list_.show(&unborn);
  EXPECT_FALSE(list_.current());
  unborn.createRoot("/x");
  list_.refresh();
  EXPECT_EQ(list_.current(), kRootNode);
  EXPECT_EQ(list_.rows().rows().size(), 1u);
}

TEST_F(FolderListTest, BeginsAtTheTopOfAnotherTree) {
  fillEmpty(50);
  list_.revealNode(tree_.children(empty_).first + 40);
  list_.update();
  list_.show(&tree_);
  EXPECT_EQ(list_.scrollOffset(), 0);
  EXPECT_EQ(list_.current(), kRootNode);
  list_.revealNode(deep_);
  list_.show(nullptr);
  EXPECT_EQ(list_.pendingRow(), -1);
}

TEST_F(FolderListTest, MeasuresOtherwiseOnlyOnce) {
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(changes_, 1);
  list_.setMeasure({Measure::CurrentSize, true});
  EXPECT_EQ(changes_, 1);
}

}  // namespace
}  // namespace app
