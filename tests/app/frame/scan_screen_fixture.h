#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/frame/scan_screen.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::at;
using test::Listing;
using test::rgb;
using Nodes = std::vector<NodeId>;

constexpr int kWidth = 1000;
constexpr int kHeight = 650;
constexpr std::uint32_t kMonthAgo = 2000;

inline sizewalk::ScanOptions treeOptions() {
  sizewalk::ScanOptions options;
  options.sixMonthThreshold = 1000;
  options.monthThreshold = kMonthAgo;
  return options;
}

/// /r holds big/ with inner/ (deep.txt, 60,000) and song.mp3 (40,000), photo.jpg (50,000), of which
/// only deep.txt and photo.jpg were added within a month, empty/ and late/.
class ScanScreenTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  /// As the screen takes it.
  explicit ScanScreenTest(BackgroundRender::Post post = {})
      : screen_(*connection, style, colours_, std::move(post)) {
    screen_.onChanged = [this] { ++changes_; };
    screen_.onCommand = [this](const Command& command) { commands_.push_back(command); };
    screen_.onContextMenu = [this](NodeId node, int, int, Command::By) { menus_.push_back(node); };
    tree_->createRoot("/r");
    const auto folders = add(
        *tree_,
        Listing(0).folder("big").file("photo.jpg", 50'000, 0, 3000).folder("empty").folder("late"));
    big_ = folders[0];
    empty_ = folders[1];
    late_ = folders[2];
    photo_ = big_ + 1;
    inner_ = add(*tree_, Listing(big_).folder("inner").file("song.mp3", 40'000)).front();
    song_ = inner_ + 1;
    add(*tree_, Listing(inner_).file("deep.txt", 60'000, 0, 3000));
    deep_ = tree_->firstChild(inner_);
    screen_.setRect({0, 0, kWidth, kHeight});
    screen_.show(tree_);
    screen_.prepare();
  }
  ~ScanScreenTest() override { screen_.show(nullptr); }

  const FolderList& list() const { return screen_.list(); }
  const KindsTable& kinds() const { return screen_.kinds(); }
  const RenderedTreemap& map() const { return screen_.picture().rendered(); }
  const std::string& right() const { return screen_.statusLine().right(); }
  NodeId focus() { return screen_.focus().current(); }
  bool canGoUp() const { return !screen_.toolbar().layout().place(Action::GoOut).empty(); }

  Nodes selected() {
    Nodes nodes(screen_.selection().nodes().begin(), screen_.selection().nodes().end());
    std::ranges::sort(nodes);
    return nodes;
  }
  Nodes listed() const {
    Nodes nodes;
    for (const FolderRow& row : list().rows().rows()) nodes.push_back(row.node);
    return nodes;
  }

  ui::Rect onMap(NodeId node) const {
    const PixelSpan* rect = map().outlineRect(node);
    if (!rect) throw std::runtime_error("not on the map");
    ui::Rect pixels = rect->rect();
    pixels.x += screen_.picture().rect().x;
    pixels.y += screen_.picture().rect().y;
    return pixels;
  }
  ui::Rect inList(NodeId node) const { return list().rowRect(list().rows().find(node).value()); }
  /// A row of the kinds table.
  ui::Rect inKinds(std::size_t row) const { return kinds().rowRect(row); }
  ui::Rect up() const { return screen_.toolbar().layout().place(Action::GoOut); }
  ui::Rect segment(std::size_t number) const {
    const ToolbarLayout& bar = screen_.toolbar().layout();
    const BreadcrumbSegment& found = bar.segments.at(number);
    return {bar.breadcrumb.x + found.x, bar.breadcrumb.y, found.width, bar.breadcrumb.h};
  }

  /// Puts `count` files into empty/.
  void fillEmpty(int count, std::uint64_t size) {
    Listing many(empty_);
    for (int i = 0; i < count; ++i) many.file("f" + std::to_string(i), size);
    add(*tree_, many);
    screen_.treeChanged();
    screen_.prepare();
  }

  void click(const ui::MouseEvent& event) {
    screen_.press(event);
    screen_.release(event);
    screen_.prepare();
  }
  void click(const ui::Rect& rect, int button = 1, bool ctrl = false) {
    ui::MouseEvent event = at(rect, button);
    event.ctrl = ctrl;
    click(event);
  }
  /// A press of a pointer that comes from elsewhere.
  void goAndClick(const ui::Rect& rect) {
    point(screen_.layout().status);
    point(rect);
    click(rect);
  }
  void clickTwice(const ui::Rect& rect) {
    ui::MouseEvent event = at(rect);
    click(event);
    event.clicks = 2;
    click(event);
  }
  void point(const ui::Rect& rect) {
    screen_.motion(at(rect, 0));
    screen_.prepare();
  }
  void drag(const ui::Rect& rect, int dx, int dy) {
    ui::MouseEvent event = at(rect);
    screen_.press(event);
    event.x += dx;
    event.y += dy;
    screen_.motion(event);
    screen_.release(event);
    screen_.prepare();
  }
  /// Long after the last turn.
  void wheel(const ui::Rect& rect, int dy) {
    ui::MouseEvent event = at(rect, 0);
    event.serverMs = wheelMs_ += 1000;
    screen_.wheel(event, dy);
    screen_.prepare();
  }
  bool key(unsigned long keysym, bool shift = false) {
    const bool known = screen_.key({.keysym = keysym, .text = {}, .shift = shift});
    screen_.prepare();
    return known;
  }
  void set(const ScanScreenSettings& settings) {
    screen_.setSettings(settings);
    screen_.prepare();
  }

  test::Picture picture() {
    screen_.prepare();
    return ViewsOnWindow::picture(kWidth, kHeight, [&](ui::Canvas& c) { screen_.paint(c); });
  }
  static test::Picture part(const test::Picture& picture, const ui::Rect& rect) {
    return picture.part(rect.x, rect.y, rect.w, rect.h);
  }
  /// The part that has the keyboard.
  std::string keyboard() {
    const auto& mapRect = screen_.layout().map;
    if (picture().at(mapRect.x, mapRect.y) == rgb(style.palette().accent)) return "map";
    const auto kind = kinds().currentKind();
    const auto sort = kinds().sort();
    key(ui::key::kDown);
    const bool moved = kinds().currentKind() != kind;
    key(ui::key::kUp);
    EXPECT_EQ(kinds().sort(), sort);
    return moved ? "kinds" : "list";
  }

  KindColours colours_{true};
  std::shared_ptr<sizewalk::FileTree> tree_ = std::make_shared<sizewalk::FileTree>(treeOptions());
  NodeId big_ = 0, photo_ = 0, empty_ = 0, late_ = 0, inner_ = 0, song_ = 0, deep_ = 0;
  ScanScreen screen_;
  int changes_ = 0;
  std::uint32_t wheelMs_ = 0;
  std::vector<Command> commands_;
  Nodes menus_;
};

}  // namespace app
