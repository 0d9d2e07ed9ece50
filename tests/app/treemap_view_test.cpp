#include "app/treemap_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>

#include "tests/app/map_tree.h"
#include "tests/ui/window_test_base.h"
#include "ui/keys.h"

namespace app {
namespace {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::file;
using test::folder;

constexpr ui::Rect kWindow{0, 0, 500, 300};
constexpr ui::Rect kPlace{40, 30, 200, 100};
constexpr ui::Colour kGround = 0xFF00FF00;
constexpr ui::Palette kPalette = ui::kLightPalette;
constexpr int kOutside = 20;  // left of the map

enum Button { kPrimary = 1, kMiddle = 2, kSecondary = 3, kBack = 8, kForward = 9 };

TEST(PixelRect, HasEachEdgeOnTheNearestPixel) {
  EXPECT_EQ(pixelRect({0.4, 0.5, 10.2, 10.1}), (ui::Rect{0, 1, 11, 10}));
  EXPECT_EQ(pixelRect({1.5, 2.49, 1, 0.01}), (ui::Rect{2, 2, 1, 1}));
  EXPECT_EQ(pixelRect({0.1, 0.1, 0.2, 0.2}), (ui::Rect{0, 0, 0, 0}));
  EXPECT_EQ(pixelRect({-0.5, -1.5, 1, 3}), (ui::Rect{-1, -2, 2, 4})) << "half away from zero";
}

/// The map at `kPlace` of a window. /map holds dir/ (with inner/ and its file deep, and the file
/// a), the file c, and a hundred small items, the first of them a folder.
class TreemapViewTest : public test::WindowTest {
 protected:
  TreemapViewTest() {
    std::vector<test::MapEntry> entries = {folder(), file(496'000, 10), folder()};
    entries.resize(102, file(40));
    const auto folders = test::fillRoot(tree_, entries);
    dir_ = folders[0];
    small_ = folders[1];
    c_ = dir_ + 1;
    inner_ = test::fill(tree_, dir_, {folder(), file(300'000, 5)}).front();
    a_ = inner_ + 1;
    test::fill(tree_, inner_, {file(200'000, 8)});
    deep_ = tree_.firstChild(inner_);
    test::fill(tree_, small_, {file(40)});

    view_.onChanged = [this] { ++changes_; };
    view_.onHover = [this] { ++hovers_; };
    view_.onPicked = [this](NodeId node) { picked_.push_back(node); };
    view_.onContextMenu = [this](NodeId node, int x, int y) {
      menus_.push_back(node);
      menuAt_ = {x, y, 0, 0};
    };
    focus_.onChanged = [this] { ++focusChanges_; };
    picture_.setRect(kPlace);
    showTree(&tree_);
    show(kWindow.w, kWindow.h);
  }

  void showTree(const sizewalk::FileTree* tree) {
    focus_.reset(tree);
    picture_.show(tree, focus_.current());
    prepareFrame();
  }

  /// As the owner does it before each frame.
  void prepareFrame() {
    picture_.update();
    view_.refresh();
  }

  void showFocus() {
    picture_.show(&tree_, focus_.current());
    prepareFrame();
  }

  test::Picture onGround(const std::function<void(ui::Canvas&)>& draw) {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect(kWindow, kGround);
      draw(canvas);
    });
  }
  test::Picture painted() {
    prepareFrame();
    return onGround([&](ui::Canvas& canvas) { view_.paint(canvas); });
  }
  bool cardIsSeen() {
    const auto picture = onGround([&](ui::Canvas& canvas) { view_.paintCard(canvas); });
    return picture.count(kGround & 0xFFFFFF) != long{kWindow.w} * kWindow.h;
  }

  /// Where the map shows an item, in the window.
  ui::Rect placeOf(NodeId node) const {
    const MapRect* rect = picture_.rendered().outlineRect(node);
    if (!rect) throw std::runtime_error("not on the map");
    return inWindow(*rect);
  }
  ui::Rect placeOfSmallItems() const {
    const auto& blocks = picture_.rendered().blocks;
    const auto block = std::ranges::find(blocks, 100, &TreemapBlock::restCount);
    if (block == blocks.end()) throw std::runtime_error("nothing was merged");
    return inWindow(block->rect);
  }
  static ui::Rect inWindow(const MapRect& rect) {
    const ui::Rect pixels = pixelRect(rect);
    return {pixels.x + kPlace.x, pixels.y + kPlace.y, pixels.w, pixels.h};
  }

  static ui::MouseEvent middleOf(const ui::Rect& rect) {
    return {.x = rect.x + rect.w / 2, .y = rect.y + rect.h / 2};
  }
  void point(const ui::Rect& rect, std::int64_t nowMs = 0) { view_.motion(middleOf(rect), nowMs); }
  void pointBesideMap(std::int64_t nowMs = 0) { view_.motion({.x = kOutside, .y = 50}, nowMs); }

  void press(const ui::Rect& rect, int button = kPrimary, int clicks = 1, bool ctrl = false) {
    ui::MouseEvent event = middleOf(rect);
    event.button = button;
    event.clicks = clicks;
    event.ctrl = ctrl;
    view_.press(event);
  }
  void pressTwice(const ui::Rect& rect, int first = kPrimary, int second = kPrimary) {
    press(rect, first, 1);
    press(rect, second, 2);
  }
  void restOn(const ui::Rect& rect) {
    point(rect, 0);
    view_.tick(400, kWindow);
    ASSERT_TRUE(cardIsSeen());
  }

  void select(const std::vector<NodeId>& nodes) { selection_.replace(nodes); }
  std::vector<NodeId> selected() const {
    std::vector<NodeId> nodes(selection_.nodes().begin(), selection_.nodes().end());
    std::ranges::sort(nodes);
    return nodes;
  }

  sizewalk::FileTree tree_{test::mapTreeOptions()};
  NodeId dir_ = 0, small_ = 0, c_ = 0, inner_ = 0, a_ = 0, deep_ = 0;
  KindColours colours_{true};
  Style style_{*connection, kPalette};
  TreemapPicture picture_{*connection, colours_};
  MapFocus focus_;
  Selection selection_;
  TreemapView view_{style_, picture_, focus_, selection_};
  int changes_ = 0;
  int hovers_ = 0;
  int focusChanges_ = 0;
  std::vector<NodeId> picked_;
  std::vector<NodeId> menus_;
  ui::Rect menuAt_;
};

using Nodes = std::vector<NodeId>;

/// How far inside the edge of `rect` a pixel lies, 0 on it, negative outside.
int depthIn(const ui::Rect& rect, int x, int y) {
  return std::min({x - rect.x, y - rect.y, rect.x + rect.w - 1 - x, rect.y + rect.h - 1 - y});
}

std::uint32_t without(std::uint32_t rgb) { return rgb & 0xFFFFFF; }

bool isDarker(std::uint32_t rgb, std::uint32_t than) {
  for (const int shift : {0, 8, 16}) {
    if ((rgb >> shift & 0xFF) > (than >> shift & 0xFF) / 2) return false;
  }
  return true;
}

/// Checks that `picture` is `plain` but for an outline around `rect`: at depth n inside its edge
/// (-1 is the ring around it) the colour `at(n)`, 0 for the picture darkened, nothing for as it is.
void expectOutlined(const test::Picture& picture, const test::Picture& plain, const ui::Rect& rect,
                    const std::function<std::optional<std::uint32_t>(int)>& at) {
  for (int y = 0; y < kWindow.h; ++y) {
    for (int x = 0; x < kWindow.w; ++x) {
      const auto expected = kPlace.contains(x, y) ? at(depthIn(rect, x, y)) : std::nullopt;
      const std::uint32_t seen = picture.at(x, y);
      if (!expected) {
        ASSERT_EQ(seen, plain.at(x, y)) << x << "," << y;
      } else if (*expected == 0) {
        ASSERT_TRUE(isDarker(seen, plain.at(x, y))) << x << "," << y;
      } else {
        ASSERT_EQ(seen, *expected) << x << "," << y;
      }
    }
  }
}

std::optional<std::uint32_t> selectedOutline(int depth) {
  if (depth == 0) return 0xFFFFFF;
  if (depth == 1) return without(kPalette.accent);
  if (depth == 2) return 0;
  return std::nullopt;
}

std::optional<std::uint32_t> hoverOutline(int depth) {
  if (depth == 0) return 0xFFFFFF;
  if (depth == -1) return 0;
  return std::nullopt;
}

// What is seen.

TEST_F(TreemapViewTest, PaintsThePictureAndNothingElseWithoutPointerAndSelection) {
  const auto picture = painted();
  for (int y = 0; y < kPlace.h; ++y) {
    for (int x = 0; x < kPlace.w; ++x) {
      ASSERT_EQ(picture.at(kPlace.x + x, kPlace.y + y),
                picture_.rendered().pixels[static_cast<std::size_t>(y * kPlace.w + x)]);
    }
  }
  EXPECT_EQ(picture.count(without(kGround)), kWindow.w * kWindow.h - kPlace.w * kPlace.h);
}

TEST_F(TreemapViewTest, OutlinesTheItemUnderThePointer) {
  const auto plain = painted();
  point(placeOf(deep_));
  expectOutlined(painted(), plain, placeOf(deep_), hoverOutline);
  point(placeOfSmallItems());
  expectOutlined(painted(), plain, placeOfSmallItems(), hoverOutline);
}

TEST_F(TreemapViewTest, OutlinesNothingOnceThePointerIsElsewhere) {
  const auto plain = painted();
  point(placeOf(c_));
  pointBesideMap();
  EXPECT_EQ(painted().pixels, plain.pixels);
  point(placeOf(c_));
  view_.leave();
  EXPECT_EQ(painted().pixels, plain.pixels);
}

TEST_F(TreemapViewTest, OutlinesWhatIsSelected) {
  const auto plain = painted();
  select({c_});
  expectOutlined(painted(), plain, placeOf(c_), selectedOutline);
  select({});
  EXPECT_EQ(painted().pixels, plain.pixels);
}

TEST_F(TreemapViewTest, OutlinesASelectedFolderAroundItsContents) {
  const auto plain = painted();
  select({dir_});
  const ui::Rect place = placeOf(dir_);
  ASSERT_EQ(ui::intersect(place, placeOf(a_)), placeOf(a_));
  ASSERT_EQ(ui::intersect(place, placeOf(deep_)), placeOf(deep_));
  expectOutlined(painted(), plain, place, selectedOutline);
}

TEST_F(TreemapViewTest, OutlinesNothingOfASelectedItemThatTheMapDoesNotShow) {
  const auto plain = painted();
  select({small_, small_ + 1});
  EXPECT_EQ(painted().pixels, plain.pixels);
  focus_.go(dir_);
  showFocus();
  const auto inside = painted();
  select({c_});
  EXPECT_EQ(painted().pixels, inside.pixels);
}

TEST_F(TreemapViewTest, OutlinesEachOfManySelectedItemsThatAreLargeEnough) {
  sizewalk::FileTree tree;
  test::fillRoot(tree, std::vector<test::MapEntry>(100'000, file(1000)));
  picture_.setRect({0, 0, 500, 300});  // 1.5 pixels for each
  showTree(&tree);
  const auto plain = painted();
  Nodes all(100'000);
  for (NodeId i = 0; i < all.size(); ++i) all[i] = tree.firstChild(kRootNode) + i;
  select(all);
  EXPECT_EQ(painted().pixels, plain.pixels) << "no block is three pixels wide and high";
  all.push_back(kRootNode);
  select(all);
  EXPECT_EQ(painted().at(0, 0), 0xFFFFFFu);
  showTree(&tree_);
}

TEST_F(TreemapViewTest, OutlinesSelectedItemsInOneAnotherWithoutCuttingALine) {
  const auto plain = painted();
  select({dir_, a_, inner_, deep_});
  const auto picture = painted();
  const ui::Rect outer = placeOf(dir_);
  int crossings = 0;
  for (int y = outer.y; y < outer.y + outer.h; ++y) {
    for (int x = outer.x; x < outer.x + outer.w; ++x) {
      int innermost = -1;  // the line that lies over the others
      int lines = 0;
      for (const NodeId node : {dir_, a_, inner_, deep_}) {
        const int depth = depthIn(placeOf(node), x, y);
        if (depth < 0 || depth > 2) continue;
        innermost = std::max(innermost, depth);
        ++lines;
      }
      crossings += lines > 1 ? 1 : 0;
      const std::uint32_t seen = picture.at(x, y);
      const bool asExpected = innermost == 0   ? seen == 0xFFFFFF
                              : innermost == 1 ? seen == without(kPalette.accent)
                              : innermost == 2 ? isDarker(seen, 0xFFFFFF)
                                               : seen == plain.at(x, y);
      ASSERT_TRUE(asExpected) << x << "," << y << " in line " << innermost;
    }
  }
  EXPECT_GT(crossings, 0);
}

TEST_F(TreemapViewTest, HasARingWhileKeysComeHere) {
  const auto plain = painted();
  view_.setFocused(true);
  expectOutlined(painted(), plain, kPlace, [](int depth) {
    return depth == 0 ? std::optional(without(kPalette.accent)) : std::nullopt;
  });
  view_.setFocused(false);
  EXPECT_EQ(painted().pixels, plain.pixels);
}

// Hovering.

TEST_F(TreemapViewTest, TellsWhenThePointerComesOntoAnotherItem) {
  point(placeOf(a_));
  EXPECT_EQ(view_.hovered(), a_);
  EXPECT_EQ(hovers_, 1);
  EXPECT_EQ(changes_, 1);
  ui::MouseEvent beside = middleOf(placeOf(a_));
  ++beside.x;
  view_.motion(beside, 10);
  EXPECT_EQ(hovers_, 1) << "still the same";
  EXPECT_EQ(changes_, 1);
  point(placeOf(c_));
  EXPECT_EQ(view_.hovered(), c_);
  EXPECT_EQ(hovers_, 2);
  view_.leave();
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(hovers_, 3);
  EXPECT_EQ(changes_, 3);
}

TEST_F(TreemapViewTest, IsOnNoItemOnMergedItemsAndBesideTheMap) {
  point(placeOfSmallItems());
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(hovers_, 1) << "there is something to outline";
  pointBesideMap();
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(hovers_, 2);
  view_.motion({.x = kPlace.x + kPlace.w, .y = kPlace.y}, 0);
  EXPECT_EQ(hovers_, 2) << "the first pixel right of the map";
}

TEST_F(TreemapViewTest, TellsOfAnotherPictureUnderAPointerAtRest) {
  point(placeOf(c_));
  hovers_ = 0;
  focus_.go(dir_);
  showFocus();
  EXPECT_EQ(hovers_, 1);
  EXPECT_TRUE(view_.hovered() == a_ || view_.hovered() == deep_);
}

TEST_F(TreemapViewTest, IsOnNoItemOfAnotherScanBeforeItsFirstPicture) {
  sizewalk::FileTree next;
  test::fillRoot(next, {file(5)});
  point(placeOf(deep_));
  picture_.show(&next, kRootNode);
  EXPECT_EQ(view_.hovered(), std::nullopt) << "the picture that is left is not of this scan";
  press({kPlace.x + 5, kPlace.y + 5, 0, 0});
  EXPECT_EQ(selected(), Nodes{});
  view_.reset();
  showTree(&tree_);
}

// The card.

TEST_F(TreemapViewTest, ShowsACardAfter400MsOfRest) {
  point(placeOf(c_), 5000);
  changes_ = 0;
  view_.tick(5399, kWindow);
  EXPECT_FALSE(cardIsSeen());
  EXPECT_EQ(changes_, 0);
  view_.tick(5400, kWindow);
  EXPECT_TRUE(cardIsSeen());
  EXPECT_EQ(changes_, 1);
  view_.tick(9000, kWindow);
  EXPECT_EQ(changes_, 1) << "there is nothing new to see";
}

TEST_F(TreemapViewTest, CountsTheRestFromTheLastMotion) {
  point(placeOf(c_), 0);
  ui::MouseEvent beside = middleOf(placeOf(c_));
  ++beside.x;
  view_.motion(beside, 300);
  view_.tick(699, kWindow);
  EXPECT_FALSE(cardIsSeen());
  view_.tick(700, kWindow);
  EXPECT_TRUE(cardIsSeen());
}

TEST_F(TreemapViewTest, ShowsACardOfMergedItems) { restOn(placeOfSmallItems()); }

TEST_F(TreemapViewTest, ShowsNoCardWhereThereIsNothing) {
  view_.tick(1000, kWindow);
  EXPECT_FALSE(cardIsSeen()) << "no pointer";
  pointBesideMap(1000);
  view_.tick(2000, kWindow);
  EXPECT_FALSE(cardIsSeen());
}

TEST_F(TreemapViewTest, KeepsTheCardInsideItsRoom) {
  point(placeOf(c_), 0);
  const ui::Rect room{0, 0, 260, 200};
  view_.tick(400, room);
  const auto picture = onGround([&](ui::Canvas& canvas) { view_.paintCard(canvas); });
  for (int y = 0; y < kWindow.h; ++y) {
    for (int x = 0; x < kWindow.w; ++x) {
      ASSERT_TRUE(room.contains(x, y) || picture.at(x, y) == without(kGround)) << x << "," << y;
    }
  }
}

TEST_F(TreemapViewTest, HidesTheCardWhenThePointerMovesOrLeaves) {
  restOn(placeOf(c_));
  changes_ = 0;
  ui::MouseEvent beside = middleOf(placeOf(c_));
  ++beside.x;
  view_.motion(beside, 500);
  EXPECT_FALSE(cardIsSeen());
  EXPECT_EQ(changes_, 1);
  restOn(placeOf(c_));
  view_.leave();
  EXPECT_FALSE(cardIsSeen());
  view_.tick(5000, kWindow);
  EXPECT_FALSE(cardIsSeen());
}

TEST_F(TreemapViewTest, HidesTheCardUntilThePointerMovesAgain) {
  const std::function<void()> acts[] = {
      [&] { press(placeOf(c_)); }, [&] { press(placeOf(c_), kSecondary); },
      [&] { view_.wheel(middleOf(placeOf(c_)), -1); }, [&] { view_.hideCard(); }};
  for (const auto& act : acts) {
    restOn(placeOf(c_));
    changes_ = 0;
    act();
    EXPECT_FALSE(cardIsSeen());
    EXPECT_EQ(changes_, 1);
    view_.tick(5000, kWindow);
    EXPECT_FALSE(cardIsSeen()) << "it would come back by itself";
  }
  restOn(placeOf(c_));
}

TEST_F(TreemapViewTest, ShowsNoCardAfterAPressThatCameBeforeIt) {
  point(placeOf(c_), 0);
  press(placeOf(c_), kSecondary);
  view_.tick(400, kWindow);
  EXPECT_FALSE(cardIsSeen()) << "it would lie over the menu";
}

TEST_F(TreemapViewTest, SaysWhetherThereWasACardToHide) {
  EXPECT_FALSE(view_.hideCard());
  restOn(placeOf(c_));
  EXPECT_TRUE(view_.hideCard());
  EXPECT_FALSE(view_.hideCard());
}

TEST_F(TreemapViewTest, ReplacesTheCardWhenAnotherPictureComesUnderThePointer) {
  restOn(placeOf(c_));
  view_.refresh();
  EXPECT_TRUE(cardIsSeen()) << "the same item is still there";
  focus_.go(dir_);
  showFocus();
  EXPECT_FALSE(cardIsSeen());
  view_.tick(500, kWindow);
  EXPECT_TRUE(cardIsSeen());
}

TEST_F(TreemapViewTest, KeepsTheFiguresOfTheCardUpToDate) {
  const auto card = [&] { return onGround([&](ui::Canvas& canvas) { view_.paintCard(canvas); }); };
  sizewalk::FileTree tree(test::mapTreeOptions());
  const auto dir = test::fillRoot(tree, {folder(), file(1000)}).front();
  view_.reset();
  showTree(&tree);
  restOn(kPlace);
  const auto before = card();
  test::fill(tree, dir, {file(1)});  // too small to take the pointer's place
  picture_.markDirty();
  changes_ = 0;
  prepareFrame();
  EXPECT_FALSE(card() == before) << "the share is another one";
  EXPECT_EQ(changes_, 0) << "the frame is being drawn already";
  view_.reset();
  showTree(&tree_);
}

TEST_F(TreemapViewTest, ForgetsPointerAndCardWithTheScan) {
  restOn(placeOf(c_));
  view_.reset();
  EXPECT_FALSE(cardIsSeen());
  EXPECT_EQ(view_.hovered(), std::nullopt);
  press(placeOf(a_), kPrimary, 2);
  EXPECT_EQ(focus_.current(), kRootNode) << "the press before belongs to the scan before";
}

// Presses.

TEST_F(TreemapViewTest, SelectsTheItemThatIsPressed) {
  press(placeOf(a_));
  EXPECT_EQ(selected(), Nodes{a_});
  press(placeOf(c_));
  EXPECT_EQ(selected(), Nodes{c_});
  EXPECT_EQ(picked_, (Nodes{a_, c_}));
}

TEST_F(TreemapViewTest, AddsAndRemovesWithControl) {
  press(placeOf(a_));
  press(placeOf(c_), kPrimary, 1, true);
  EXPECT_EQ(selected(), (Nodes{c_, a_}));
  press(placeOf(a_), kPrimary, 1, true);
  EXPECT_EQ(selected(), Nodes{c_});
  EXPECT_EQ(picked_, (Nodes{a_, c_})) << "what is selected no longer need not be shown";
  press(placeOfSmallItems(), kPrimary, 1, true);
  EXPECT_EQ(selected(), Nodes{c_});
}

TEST_F(TreemapViewTest, TakesAQuickSecondPressWithControlAsOneMore) {
  press(placeOf(a_), kPrimary, 1, true);
  press(placeOf(a_), kPrimary, 2, true);
  EXPECT_EQ(selected(), Nodes{});
  EXPECT_EQ(focusChanges_, 0);
}

TEST_F(TreemapViewTest, SelectsNothingWhereThereIsNoItem) {
  for (const ui::Rect& nowhere : {placeOfSmallItems(), ui::Rect{kOutside, 50, 0, 0}}) {
    select({c_});
    press(nowhere);
    EXPECT_EQ(selected(), Nodes{});
  }
  EXPECT_EQ(picked_, Nodes{});
}

TEST_F(TreemapViewTest, FocusesTheFolderOnTheWayToAnItemPressedTwice) {
  pressTwice(placeOf(deep_));
  EXPECT_EQ(focus_.current(), dir_);
  EXPECT_EQ(selected(), Nodes{deep_});
  showFocus();
  pressTwice(placeOf(deep_));
  EXPECT_EQ(focus_.current(), inner_);
  EXPECT_EQ(focusChanges_, 2);
}

TEST_F(TreemapViewTest, StaysAtTheFocusWhenAnItemRightInItIsPressedTwice) {
  pressTwice(placeOf(c_));
  pressTwice(placeOfSmallItems());
  pressTwice({kOutside, 50, 0, 0});
  EXPECT_EQ(focusChanges_, 0);
}

TEST_F(TreemapViewTest, TakesPressesOfTwoButtonsAsTwo) {
  pressTwice(placeOf(a_), kSecondary, kPrimary);
  EXPECT_EQ(focusChanges_, 0);
  EXPECT_EQ(selected(), Nodes{a_});
  pressTwice(placeOf(a_), kPrimary, kSecondary);
  EXPECT_EQ(focusChanges_, 0);
  EXPECT_EQ(menus_, (Nodes{a_, a_}));
}

TEST_F(TreemapViewTest, TakesAThirdQuickPressAsASingleOne) {
  pressTwice(placeOf(deep_));
  press(placeOf(deep_), kPrimary, 3);
  EXPECT_EQ(focusChanges_, 1);
}

TEST_F(TreemapViewTest, GoesTwoLevelsInWithFourQuickPresses) {
  pressTwice(placeOf(deep_));
  showFocus();
  press(placeOf(deep_), kPrimary, 3);
  press(placeOf(deep_), kPrimary, 4);
  EXPECT_EQ(focus_.current(), inner_);
}

TEST_F(TreemapViewTest, SelectsWhatTheContextMenuIsOpenedOn) {
  select({c_});
  press(placeOf(a_), kSecondary);
  EXPECT_EQ(selected(), Nodes{a_});
  EXPECT_EQ(picked_, Nodes{a_});
  EXPECT_EQ(menus_, Nodes{a_});
  EXPECT_EQ(menuAt_.x, middleOf(placeOf(a_)).x);
  EXPECT_EQ(menuAt_.y, middleOf(placeOf(a_)).y);
}

TEST_F(TreemapViewTest, KeepsASelectionThatHoldsWhatTheContextMenuIsOpenedOn) {
  select({a_, c_});
  press(placeOf(a_), kSecondary);
  EXPECT_EQ(selected(), (Nodes{c_, a_}));
  EXPECT_EQ(picked_, Nodes{});
  EXPECT_EQ(menus_, Nodes{a_});
}

TEST_F(TreemapViewTest, OpensNoContextMenuWhereThereIsNoItem) {
  select({c_});
  press(placeOfSmallItems(), kSecondary);
  press({kOutside, 50, 0, 0}, kSecondary);
  EXPECT_EQ(menus_, Nodes{});
  EXPECT_EQ(selected(), Nodes{c_});
}

TEST_F(TreemapViewTest, GoesOutAndBackInWithTheOtherButtons) {
  focus_.go(inner_);
  showFocus();
  const ui::Rect anywhere = kPlace;
  press(anywhere, kMiddle);
  EXPECT_EQ(focus_.current(), dir_);
  press(anywhere, kBack);
  EXPECT_EQ(focus_.current(), kRootNode);
  press(anywhere, kBack);
  EXPECT_EQ(focus_.current(), kRootNode);
  press(anywhere, kForward);
  EXPECT_EQ(focus_.current(), dir_);
  press(anywhere, kForward);
  EXPECT_EQ(focus_.current(), inner_);
  press(anywhere, 10);
  EXPECT_EQ(focus_.current(), inner_);
  EXPECT_EQ(selected(), Nodes{});
}

TEST_F(TreemapViewTest, GoesInAndOutWithTheWheel) {
  const auto turn = [&](const ui::Rect& rect, int dy) { view_.wheel(middleOf(rect), dy); };
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), dir_);
  showFocus();
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), inner_);
  showFocus();
  turn(placeOf(deep_), -1);
  EXPECT_EQ(focus_.current(), inner_) << "a file is no folder";
  turn(placeOf(deep_), 0);
  EXPECT_EQ(focus_.current(), inner_) << "a tilt of the wheel is not meant";
  turn(placeOf(deep_), 1);
  turn({kOutside, 50, 0, 0}, 1);
  EXPECT_EQ(focus_.current(), kRootNode);
  showFocus();
  turn(placeOfSmallItems(), -1);
  turn({kOutside, 50, 0, 0}, -1);
  EXPECT_EQ(focus_.current(), kRootNode);
}

// Keys.

/// Four files in two rows of two.
class TreemapViewKeysTest : public TreemapViewTest {
 protected:
  TreemapViewKeysTest() {
    test::fillRoot(four_, std::vector<test::MapEntry>(4, file(1000)));
    showTree(&four_);
  }
  ~TreemapViewKeysTest() override { showTree(nullptr); }

  bool key(unsigned long keysym, bool ctrl = false) {
    return view_.key({.keysym = keysym, .text = {}, .shift = false, .ctrl = ctrl});
  }
  /// The item in a column and a row of the two.
  NodeId at(int column, int row) {
    view_.motion({.x = kPlace.x + 50 + 100 * column, .y = kPlace.y + 25 + 50 * row}, 0);
    return view_.hovered().value();
  }

  sizewalk::FileTree four_;
};

TEST_F(TreemapViewKeysTest, BeginWithTheItemAtTheUpperLeft) {
  EXPECT_TRUE(key(ui::key::kDown));
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  EXPECT_EQ(picked_, selected());
}

TEST_F(TreemapViewKeysTest, GoToTheNeighbourOnThatSide) {
  select({at(0, 0)});
  key(ui::key::kRight);
  EXPECT_EQ(selected(), Nodes{at(1, 0)});
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{at(1, 1)});
  key(ui::key::kKeypadLeft);
  EXPECT_EQ(selected(), Nodes{at(0, 1)});
  key(ui::key::kUp);
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  EXPECT_EQ(picked_, (Nodes{at(1, 0), at(1, 1), at(0, 1), at(0, 0)}));
}

TEST_F(TreemapViewKeysTest, StopAtTheEdgeOfTheMap) {
  select({at(0, 0)});
  EXPECT_TRUE(key(ui::key::kLeft));
  EXPECT_TRUE(key(ui::key::kUp));
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
  select({at(1, 1)});
  key(ui::key::kRight);
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{at(1, 1)});
  EXPECT_EQ(picked_, Nodes{});
}

TEST_F(TreemapViewKeysTest, GoOnPastMergedItems) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  const auto left = test::fillRoot(tree, {folder(), file(200'000)}).front();
  std::vector<test::MapEntry> entries = {file(300'000)};
  entries.resize(4001, file(2));
  test::fill(tree, left, entries);
  showTree(&tree);
  const NodeId inLeft = tree.firstChild(left);
  const NodeId right = left + 1;
  ASSERT_LT(placeOf(inLeft).x + placeOf(inLeft).w, placeOf(right).x) << "side by side, with a gap";
  select({inLeft});
  key(ui::key::kRight);
  EXPECT_EQ(selected(), Nodes{right});
  key(ui::key::kLeft);
  EXPECT_EQ(selected(), Nodes{inLeft});
  showTree(&four_);
}

TEST_F(TreemapViewKeysTest, BeginWithTheFirstItemThatIsNotMerged) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  const auto first = test::fillRoot(tree, {folder(), file(100'000)}).front();
  test::fill(tree, first, std::vector<test::MapEntry>(100'000, file(2)));
  showTree(&tree);
  key(ui::key::kDown);
  EXPECT_EQ(selected(), Nodes{first + 1});
  showTree(&four_);
}

TEST_F(TreemapViewKeysTest, BeginAnewWithSeveralItemsSelected) {
  select({at(1, 0), at(1, 1)});
  key(ui::key::kLeft);
  EXPECT_EQ(selected(), Nodes{at(0, 0)});
}

TEST_F(TreemapViewKeysTest, AreLeftToOthersWithControlOrWithoutAMeaning) {
  EXPECT_FALSE(key(ui::key::kLeft, true));
  EXPECT_FALSE(key(ui::key::kReturn, true));
  EXPECT_FALSE(key(ui::key::kHome));
  EXPECT_FALSE(key('a'));
  EXPECT_EQ(selected(), Nodes{});
}

TEST_F(TreemapViewKeysTest, FocusTheFolderOnTheWayToTheSelectedItem) {
  showTree(&tree_);
  select({deep_, c_});
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_EQ(focus_.current(), kRootNode) << "there are two ways";
  select({deep_});
  key(ui::key::kReturn);
  EXPECT_EQ(focus_.current(), dir_);
  key(ui::key::kKeypadEnter);
  EXPECT_EQ(focus_.current(), inner_);
}

}  // namespace
}  // namespace app
