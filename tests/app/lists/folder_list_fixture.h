#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/lists/folder_list.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/ui/window_test_base.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;
using Nodes = std::unordered_set<NodeId>;

constexpr int kWidth = 300;
constexpr int kHeight = 300;
constexpr std::uint32_t kRgb = 0xFFFFFF;

inline std::uint32_t rgb(ui::Colour colour) { return colour & kRgb; }

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
    list_.onContextMenu = [this](NodeId node, int x, int y, Command::By) {
      menus_.push_back({node, x, y});
    };
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
    list_.release({.button = 1});
  }
  /// Has the pointer come to a row from elsewhere in the list.
  void moveOnto(std::size_t row) {
    list_.motion({.x = 50, .y = rowY(row)});
    list_.motion({.x = 100, .y = rowY(row)});
  }
  bool key(unsigned long keysym, bool shift = false, bool ctrl = false) {
    return list_.key({.keysym = keysym, .text = {}, .shift = shift, .ctrl = ctrl, .timeMs = now_});
  }
  bool type(const std::string& text) {
    now_ += 10;
    return list_.key(
        {.keysym = static_cast<unsigned char>(text[0]), .text = {}, .timeMs = now_, .typed = text});
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
    list_.prepare();
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
  ui::Style style_;
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

}  // namespace app
