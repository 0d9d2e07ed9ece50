#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "app/map/treemap_view.h"
#include "tests/app/map/map_tree.h"
#include "tests/ui/window_test_base.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::file;
using test::folder;
using Nodes = std::vector<NodeId>;

constexpr ui::Rect kWindow{0, 0, 500, 300};
constexpr ui::Rect kPlace{40, 30, 200, 100};
constexpr ui::Colour kGround = 0xFF00FF00;
constexpr ui::Palette kPalette = ui::kLightPalette;
constexpr int kOutside = 20;  // left of the map

enum Button { kPrimary = 1, kMiddle = 2, kSecondary = 3, kBack = 8, kForward = 9 };

/// The same event at another time.
inline ui::MouseEvent atTime(std::int64_t timeMs, ui::MouseEvent event) {
  event.timeMs = timeMs;
  return event;
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
    view_.onPicked = [this](NodeId node) { picked_.push_back(node); };
    view_.onContextMenu = [this](NodeId node, int x, int y) {
      menus_.push_back(node);
      menuAt_ = {x, y, 0, 0};
    };
    focus_.onChanged = [this] { ++focusChanges_; };
    view_.setRect(kPlace);
    changes_ = 0;
    showTree(&tree_);
    show(kWindow.w, kWindow.h);
  }

  /// A tree that outlives the picture: nothing is drawn beside this thread.
  static std::shared_ptr<const sizewalk::FileTree> ofTheTest(const sizewalk::FileTree* tree) {
    return {std::shared_ptr<const void>(), tree};
  }

  void showTree(const sizewalk::FileTree* tree) {
    focus_.reset(tree);
    picture_.show(ofTheTest(tree), focus_.current());
    prepareFrame();
  }

  /// As the owner does it before each frame.
  void prepareFrame() {
    picture_.setSelected(selection_.sorted());
    picture_.update();
    view_.refresh();
  }

  void showFocus() {
    picture_.show(ofTheTest(&tree_), focus_.current());
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
    const auto picture = onGround([&](ui::Canvas& canvas) { view_.paintOver(canvas); });
    return picture.count(kGround & 0xFFFFFF) != long{kWindow.w} * kWindow.h;
  }

  /// Where the map shows an item, in the window.
  ui::Rect placeOf(NodeId node) const {
    const PixelSpan* rect = picture_.rendered().outlineRect(node);
    if (!rect) throw std::runtime_error("not on the map");
    return inWindow(*rect);
  }
  ui::Rect placeOfSmallItems() const {
    const auto& blocks = picture_.rendered().blocks;
    const auto block = std::ranges::find(blocks, 100, &PictureBlock::restCount);
    if (block == blocks.end()) throw std::runtime_error("nothing was merged");
    return inWindow(block->rect);
  }
  static ui::Rect inWindow(const PixelSpan& rect) {
    const ui::Rect pixels = rect.rect();
    return {pixels.x + kPlace.x, pixels.y + kPlace.y, pixels.w, pixels.h};
  }

  static ui::MouseEvent middleOf(const ui::Rect& rect) {
    return {.x = rect.x + rect.w / 2, .y = rect.y + rect.h / 2};
  }
  void point(const ui::Rect& rect, std::int64_t nowMs = 0) {
    view_.motion(atTime(nowMs, middleOf(rect)));
  }
  void pointBesideMap(std::int64_t nowMs = 0) {
    view_.motion({.x = kOutside, .y = 50, .timeMs = nowMs});
  }

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
  void turnWheel(const ui::Rect& rect, int dy, std::int64_t nowMs) {
    ui::MouseEvent event = middleOf(rect);
    event.serverMs = static_cast<std::uint32_t>(nowMs);
    view_.wheel(event, dy);
  }
  void restOn(const ui::Rect& rect) {
    point(rect, 0);
    view_.tick(400);
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
  ui::Style style_{*connection, kPalette};
  TreemapPicture picture_{*connection, colours_};
  MapFocus focus_;
  Selection selection_;
  TreemapView view_{style_, picture_, focus_, selection_};
  int changes_ = 0;
  int focusChanges_ = 0;
  std::vector<NodeId> picked_;
  std::vector<NodeId> menus_;
  ui::Rect menuAt_;
};

}  // namespace app
