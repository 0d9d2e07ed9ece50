#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "base/detached_threads.h"
#include "tests/app/map/treemap_picture_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/posted_tasks.h"

namespace app {

/// Large enough to be sent in bands, so many of them.
inline constexpr ui::Rect kLargePlace{0, 0, 1000, 800};
inline constexpr int kBandsOfLarge = 25;

/// Pictures of a tree that grows, made in the background; what they post is run when a test says.
class BackgroundPictureTest : public test::WindowTest {
 protected:
  BackgroundPictureTest() {
    folders_ = test::fillRoot(tree_, {test::file(1000, 5), test::folder(), test::folder()});
    test::fill(tree_, folders_[0], {test::file(1000, 6)});
    picture_.setRect(kPicturePlace);
    picture_.onRendered = [this] { ++told_; };
    picture_.show(shownTree_, sizewalk::kRootNode);
    picture_.update();
  }

  void growTree() {
    test::fill(tree_, folders_[1], {test::file(3000, 7)});
    picture_.markOutdated();
  }
  /// Begins a picture of the grown tree and waits until it is posted.
  void makeInBackground() {
    growTree();
    ASSERT_FALSE(picture_.update()) << "nothing is there to be seen yet";
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  }
  static bool picturesHaveEnded() {
    return base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20));
  }
  /// Shows the last picture in `kLargePlace`, and has made one of the grown tree.
  void makeLargeInBackground() {
    picture_.setRect(kLargePlace);
    picture_.update();
    makeInBackground();
  }
  /// All that `picture` leaves in the window, seen in windows full one after the other.
  std::vector<std::uint32_t> seenOf(TreemapPicture& picture) {
    const ui::Rect place = picture.rect();
    std::vector<std::uint32_t> seen;
    for (int y = 0; y < place.h; y += 100) {
      for (int x = 0; x < place.w; x += 200) {
        picture.setRect({-x, -y, place.w, place.h});
        const test::Picture part = paint([&](ui::Canvas& canvas) { picture.paint(canvas); });
        for (int i = 0; i < 200 * 100; ++i) seen.push_back(part.at(i % 200, i / 200));
      }
    }
    picture.setRect(place);
    return seen;
  }
  /// What is seen where the same is sent at once.
  std::vector<std::uint32_t> seenAtOnce(const std::vector<sizewalk::NodeId>& selected,
                                        std::optional<sizewalk::KindIndex> kind = {}) {
    TreemapPicture second(*connection, colours_);
    second.setRect(kLargePlace);
    second.show(shownTree_, sizewalk::kRootNode);
    second.setSelected(selected);
    second.setHighlight(kind);
    second.update();
    return seenOf(second);
  }
  /// As it is drawn without a background.
  std::vector<std::uint32_t> drawnAtOnce(const ui::Rect& place, sizewalk::NodeId focus) {
    return renderTreemap(tree_, focus, place.w, place.h, colours_, {}, {}).pixels;
  }
  /// How long `drawnAtOnce` takes.
  std::chrono::steady_clock::duration drawingTime(const ui::Rect& place) {
    const auto begin = std::chrono::steady_clock::now();
    drawnAtOnce(place, sizewalk::kRootNode);
    return std::chrono::steady_clock::now() - begin;
  }

  const std::shared_ptr<sizewalk::FileTree> shownTree_ =
      std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  sizewalk::FileTree& tree_ = *shownTree_;
  std::vector<sizewalk::NodeId> folders_;
  KindColours colours_{true};
  test::PostedTasks tasks_;
  int told_ = 0;
  TreemapPicture picture_{*connection, colours_, tasks_.post()};
};

}  // namespace app
