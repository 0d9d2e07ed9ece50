#include "app/map/treemap_view.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <random>
#include <vector>

#include "app/map/cushion_kernel.h"
#include "tests/app/map/treemap_view_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

TEST(PixelSpan, HasEachEdgeOnTheNearestPixelOfThePicture) {
  const auto pixels = [](const MapRect& rect) { return pixelSpan(rect, 20, 15).rect(); };
  EXPECT_EQ(pixels({0.4, 0.5, 10.2, 10.1}), (ui::Rect{0, 1, 11, 10}));
  EXPECT_EQ(pixels({1.5, 2.49, 1, 0.01}), (ui::Rect{2, 2, 1, 1}));
  EXPECT_EQ(pixels({0.1, 0.1, 0.2, 0.2}), (ui::Rect{0, 0, 0, 0}));
  EXPECT_EQ(pixels({-0.5, -1.5, 1, 3}), (ui::Rect{0, 0, 1, 2}));
  EXPECT_EQ(pixels({10, 10, 10.6, 1e9}), (ui::Rect{10, 10, 10, 5}));
  EXPECT_EQ(pixelSpan({0, 0, kMostPixels, 1}, kMostPixels, 1).rect(),
            (ui::Rect{0, 0, kMostPixels, 1}));
}

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

/// Only what has changed is sent; all together has to look as if it were drawn anew.
TEST_F(TreemapViewTest, OutlinesTheSameWhateverWasSelectedBefore) {
  sizewalk::FileTree tree;
  std::vector<test::MapEntry> entries(150, file(1000));
  entries.resize(153, folder());
  const auto folders = test::fillRoot(tree, entries);
  for (const NodeId dir : folders) test::fill(tree, dir, std::vector(20, file(5000)));
  showTree(&tree);
  std::minstd_rand random(7);
  std::uniform_int_distribution<NodeId> anyNode(0, tree.nodeCount() - 1);
  for (const int changes : {1, 1, 2, 3, 1, 40, 1, 5, 100, 200, 1, 1, 10}) {
    for (int i = 0; i < changes; ++i) selection_.toggle(anyNode(random));
    const auto followed = painted();
    picture_.markDirty();
    ASSERT_EQ(painted().pixels, followed.pixels) << changes << " changes";
  }
  picture_.setHighlight(sizewalk::kKindNoExtension + 1);
  painted();
  selection_.toggle(5);
  const auto followed = painted();
  picture_.markDirty();
  EXPECT_EQ(painted().pixels, followed.pixels) << "on a dimmed map";
  select({});
  showTree(&tree_);
}

TEST_F(TreemapViewTest, TakesTheOutlinesAlongWhenTheMapMoves) {
  select({c_, deep_});
  const auto before = painted();
  const ui::Rect next = {kPlace.x + 30, kPlace.y + 40, kPlace.w, kPlace.h};
  view_.setRect(next);
  ASSERT_FALSE(picture_.update()) << "there is no other picture to be refreshed for";
  const auto after = onGround([&](ui::Canvas& canvas) { view_.paint(canvas); });
  EXPECT_EQ(after.part(next.x, next.y, next.w, next.h),
            before.part(kPlace.x, kPlace.y, kPlace.w, kPlace.h));
}

TEST_F(TreemapViewTest, OutlinesWhatIsUnderAPointerAtRestWhenTheMapMoves) {
  point(placeOf(c_));
  const auto before = view_.hovered();
  ASSERT_EQ(before, c_);
  ui::Rect next = kPlace;
  next.x += placeOf(c_).x + placeOf(c_).w / 2 - placeOf(deep_).x - placeOf(deep_).w / 2;
  next.y += placeOf(c_).y + placeOf(c_).h / 2 - placeOf(deep_).y - placeOf(deep_).h / 2;
  view_.setRect(next);
  ASSERT_EQ(view_.hovered(), deep_);
  const auto atRest = onGround([&](ui::Canvas& canvas) { view_.paint(canvas); });
  view_.refresh();
  EXPECT_EQ(onGround([&](ui::Canvas& canvas) { view_.paint(canvas); }).pixels, atRest.pixels);
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

// Nothing to show.

TEST_F(TreemapViewTest, SaysInItsMiddleThatThereIsNothingToShow) {
  const auto before = painted();
  picture_.setMeasure({Measure::AddedLastMonth});
  view_.setScanStatus({.scanning = true});
  const auto plain = painted();
  EXPECT_EQ(view_.notice(), "");
  view_.setScanStatus({});
  EXPECT_EQ(view_.notice(), "Nothing here was added in the last month");
  const auto said = painted();
  int left = kWindow.w, right = -1, top = kWindow.h, bottom = -1;
  for (int y = 0; y < kWindow.h; ++y) {
    for (int x = 0; x < kWindow.w; ++x) {
      if (said.at(x, y) == plain.at(x, y)) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  ASSERT_LT(left, right);
  EXPECT_NEAR(left - kPlace.x, kPlace.x + kPlace.w - 1 - right, 1);
  EXPECT_NEAR(top - kPlace.y, kPlace.y + kPlace.h - 1 - bottom, 1);
  EXPECT_GT(left, kPlace.x) << "in lines that fit";
  picture_.setMeasure({});
  EXPECT_EQ(painted().pixels, before.pixels);
  EXPECT_EQ(view_.notice(), "");
}

TEST_F(TreemapViewTest, TakesWhatItSaysAlongWhenTheMapMovesAndWrapsItAnew) {
  picture_.setMeasure({Measure::AddedLastSixMonths});
  const auto before = painted().part(kPlace.x, kPlace.y, kPlace.w, kPlace.h);
  const ui::Rect next = {kPlace.x + 30, kPlace.y + 40, kPlace.w, kPlace.h};
  view_.setRect(next);
  const auto after = onGround([&](ui::Canvas& canvas) { view_.paint(canvas); });
  EXPECT_EQ(after.part(next.x, next.y, next.w, next.h), before);
  for (const ui::Rect& tiny : {ui::Rect{40, 30, 30, 12}, ui::Rect{40, 30, 3, 100}}) {
    view_.setRect(tiny);
    const auto picture = painted();
    EXPECT_EQ(picture.count(without(kGround)), kWindow.w * kWindow.h - tiny.w * tiny.h)
        << "all of it stays inside the map";
  }
}

// Hovering.

TEST_F(TreemapViewTest, TellsWhenThePointerComesOntoAnotherItem) {
  point(placeOf(a_));
  EXPECT_EQ(view_.hovered(), a_);
  EXPECT_EQ(changes_, 1);
  ui::MouseEvent beside = middleOf(placeOf(a_));
  ++beside.x;
  view_.motion(atTime(10, beside));
  EXPECT_EQ(changes_, 1) << "still the same";
  point(placeOf(c_));
  EXPECT_EQ(view_.hovered(), c_);
  EXPECT_EQ(changes_, 2);
  view_.leave();
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(changes_, 3);
}

TEST_F(TreemapViewTest, IsOnNoItemOnMergedItemsAndBesideTheMap) {
  point(placeOfSmallItems());
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(changes_, 1) << "there is something to outline";
  pointBesideMap();
  EXPECT_EQ(view_.hovered(), std::nullopt);
  EXPECT_EQ(changes_, 2);
  view_.motion({.x = kPlace.x + kPlace.w, .y = kPlace.y});
  EXPECT_EQ(changes_, 2) << "the first pixel right of the map";
}

TEST_F(TreemapViewTest, IsOnNothingThatWentSinceThePictureWasMade) {
  const auto plain = painted();
  point(placeOf(c_));
  ASSERT_EQ(view_.hovered(), c_);
  const auto record = tree_.removeSubtree(c_);
  EXPECT_EQ(view_.hovered(), std::nullopt);
  press(placeOf(c_));
  press(placeOf(c_), kSecondary);
  EXPECT_EQ(selected(), Nodes{});
  EXPECT_EQ(menus_, Nodes{});
  EXPECT_EQ(painted().pixels, plain.pixels) << "nothing is outlined";
  tree_.restoreSubtree(record);
  EXPECT_EQ(view_.hovered(), c_);

  point(placeOf(deep_));
  ASSERT_EQ(view_.hovered(), deep_);
  ASSERT_TRUE(tree_.dropContents(dir_));
  EXPECT_EQ(view_.hovered(), std::nullopt);
  view_.wheel(middleOf(placeOf(deep_)), -1);
  EXPECT_EQ(focus_.current(), kRootNode);
}

TEST_F(TreemapViewTest, HidesTheCardOfWhatWent) {
  restOn(placeOf(c_));
  tree_.removeSubtree(c_);
  view_.refresh();
  EXPECT_FALSE(cardIsSeen());
}

TEST_F(TreemapViewTest, SeesAnotherPictureUnderAPointerAtRest) {
  point(placeOf(c_));
  focus_.go(dir_);
  showFocus();
  EXPECT_TRUE(view_.hovered() == a_ || view_.hovered() == deep_);
}

TEST_F(TreemapViewTest, IsOnNoItemOfAnotherScanBeforeItsFirstPicture) {
  sizewalk::FileTree next;
  test::fillRoot(next, {file(5)});
  point(placeOf(deep_));
  picture_.show(ofTheTest(&next), kRootNode);
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
  view_.tick(5399);
  EXPECT_FALSE(cardIsSeen());
  EXPECT_EQ(changes_, 0);
  view_.tick(5400);
  EXPECT_TRUE(cardIsSeen());
  EXPECT_EQ(changes_, 1);
  view_.tick(9000);
  EXPECT_EQ(changes_, 1) << "there is nothing new to see";
}

TEST_F(TreemapViewTest, CountsTheRestFromTheLastMotion) {
  point(placeOf(c_), 0);
  ui::MouseEvent beside = middleOf(placeOf(c_));
  ++beside.x;
  view_.motion(atTime(300, beside));
  view_.tick(699);
  EXPECT_FALSE(cardIsSeen());
  view_.tick(700);
  EXPECT_TRUE(cardIsSeen());
}

TEST_F(TreemapViewTest, ShowsACardOfMergedItems) { restOn(placeOfSmallItems()); }

TEST_F(TreemapViewTest, ShowsNoCardWhereThereIsNothing) {
  view_.tick(1000);
  EXPECT_FALSE(cardIsSeen()) << "no pointer";
  pointBesideMap(1000);
  view_.tick(2000);
  EXPECT_FALSE(cardIsSeen());
}

TEST_F(TreemapViewTest, ShowsNoCardOfWhatHasLeftThePictureSinceTheLastFrame) {
  picture_.setExtraBlocks({{kOtherSpaceBlock, "Other space in use", 4'000'000, 0x4A4458}});
  picture_.markDirty();
  prepareFrame();
  const auto& blocks = picture_.rendered().blocks;
  const auto block = std::ranges::find(blocks, kOtherSpaceBlock, &PictureBlock::id);
  ASSERT_NE(block, blocks.end());
  ui::Rect place = block->rect.rect();
  place.x += kPlace.x;
  place.y += kPlace.y;
  point(place, 0);
  picture_.setExtraBlocks({});
  picture_.markDirty();
  ASSERT_TRUE(picture_.update());
  view_.tick(1000);
  EXPECT_FALSE(cardIsSeen() && !view_.hovered());
}

TEST_F(TreemapViewTest, KeepsTheCardInsideTheMap) {
  for (const NodeId node : {a_, c_, deep_}) {
    restOn(placeOf(node));
    const auto picture = onGround([&](ui::Canvas& canvas) { view_.paintOver(canvas); });
    for (int y = 0; y < kWindow.h; ++y) {
      for (int x = 0; x < kWindow.w; ++x) {
        ASSERT_TRUE(kPlace.contains(x, y) || picture.at(x, y) == without(kGround)) << x << "," << y;
      }
    }
  }
}

TEST_F(TreemapViewTest, HidesTheCardWhenThePointerMovesOrLeaves) {
  restOn(placeOf(c_));
  changes_ = 0;
  ui::MouseEvent beside = middleOf(placeOf(c_));
  ++beside.x;
  view_.motion(atTime(500, beside));
  EXPECT_FALSE(cardIsSeen());
  EXPECT_EQ(changes_, 1);
  restOn(placeOf(c_));
  view_.leave();
  EXPECT_FALSE(cardIsSeen());
  view_.tick(5000);
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
    view_.tick(5000);
    EXPECT_FALSE(cardIsSeen()) << "it would come back by itself";
  }
  restOn(placeOf(c_));
}

TEST_F(TreemapViewTest, ShowsNoCardAfterAPressThatCameBeforeIt) {
  point(placeOf(c_), 0);
  press(placeOf(c_), kSecondary);
  view_.tick(400);
  EXPECT_FALSE(cardIsSeen()) << "it would lie over the menu";
}

TEST_F(TreemapViewTest, ShowsNoCardToAPointerThatHasNotMoved) {
  ui::MouseEvent rest = middleOf(placeOf(c_));
  rest.moved = false;
  view_.motion(rest);
  EXPECT_EQ(view_.hovered(), c_);
  view_.tick(5000);
  EXPECT_FALSE(cardIsSeen());
  point(placeOf(c_), 5000);
  view_.tick(5400);
  EXPECT_TRUE(cardIsSeen());
  view_.motion(rest);
  EXPECT_FALSE(cardIsSeen()) << "something came between";
  view_.tick(9000);
  EXPECT_FALSE(cardIsSeen());
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
  view_.tick(500);
  EXPECT_TRUE(cardIsSeen());
}

TEST_F(TreemapViewTest, KeepsTheFiguresOfTheCardUpToDate) {
  const auto card = [&] { return onGround([&](ui::Canvas& canvas) { view_.paintOver(canvas); }); };
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

}  // namespace
}  // namespace app
