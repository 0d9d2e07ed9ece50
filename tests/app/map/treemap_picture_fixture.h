#pragma once

#include <memory>

#include "app/map/treemap_picture.h"
#include "tests/app/map/map_tree.h"
#include "tests/ui/window_test_base.h"

namespace app {

/// Of a picture, in a window of 200 x 100.
inline constexpr ui::Rect kPicturePlace{20, 10, 120, 80};

/// A picture of a tree of two files, in a window of 200 x 100.
class TreemapPictureTest : public test::WindowTest {
 protected:
  explicit TreemapPictureTest(const test::XServerOptions& options = {})
      : test::WindowTest(options) {
    test::fillRoot(tree_, {test::file(1000, 5), {.kind = 6, .apparent = 10, .allocated = 1000}});
    picture_.setRect(kPicturePlace);
  }

  /// What the picture leaves on white ground.
  test::Picture painted() {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, 0xFFFFFFFF);
      picture_.paint(canvas);
    });
  }

  const std::shared_ptr<sizewalk::FileTree> shownTree_ =
      std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  sizewalk::FileTree& tree_ = *shownTree_;
  KindColours colours_{true};
  TreemapPicture picture_{*connection, colours_};
};

}  // namespace app
