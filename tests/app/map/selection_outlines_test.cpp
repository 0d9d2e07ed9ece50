#include "app/map/selection_outlines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "app/map/treemap_picture.h"
#include "tests/app/map/map_tree.h"
#include "tests/support/counting_proxy.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/window.h"

namespace app {
namespace {

using Pixels = std::vector<std::uint32_t>;
using Rects = std::vector<ui::Rect>;

constexpr int kMapWidth = 60;
constexpr int kMapHeight = 40;
constexpr ui::Rect kMap{0, 0, kMapWidth, kMapHeight};
constexpr std::uint32_t kAccent = 0x3366CC;

class Drawing {
 public:
  explicit Drawing(const Rects& outlines, int thickness = 1, const ui::Rect& area = kMap)
      : area_(area) {
    for (int y = area.y; y < area.y + area.h; ++y) {
      for (int x = area.x; x < area.x + area.w; ++x) pixels_.push_back(plain(x, y));
    }
    drawOutlines(outlines, {.thickness = thickness, .accent = 0xFF000000 | kAccent}, area, pixels_);
  }

  static std::uint32_t plain(int x, int y) {
    return static_cast<std::uint32_t>(0x404040 + 4 * x + (y << 9));
  }
  std::uint32_t at(int x, int y) const {
    return pixels_[static_cast<std::size_t>((y - area_.y) * area_.w + x - area_.x)];
  }
  const Pixels& pixels() const { return pixels_; }

 private:
  ui::Rect area_;
  Pixels pixels_;
};

Rects someOutlines(std::minstd_rand& random, std::size_t count) {
  std::uniform_int_distribution<int> side(1, 30);
  std::uniform_int_distribution<int> place(-5, 50);
  Rects outlines(count);
  for (ui::Rect& rect : outlines) rect = {place(random), place(random), side(random), side(random)};
  return outlines;
}

TEST(DrawOutlines, DrawsThreeLinesInsideTheEdge) {
  const Drawing drawing({{10, 5, 20, 12}});
  for (int y = 0; y < kMapHeight; ++y) {
    for (int x = 0; x < kMapWidth; ++x) {
      const int depth = std::min({x - 10, y - 5, 29 - x, 16 - y});
      const std::uint32_t plain = Drawing::plain(x, y);
      if (depth == 0) {
        ASSERT_EQ(drawing.at(x, y), 0xFFFFFFu);
      } else if (depth == 1) {
        ASSERT_EQ(drawing.at(x, y), kAccent);
      } else if (depth == 2) {
        ASSERT_EQ(drawing.at(x, y) >> 16, (plain >> 16) / 4) << "a quarter shines through";
      } else {
        ASSERT_EQ(drawing.at(x, y), plain) << x << "," << y;
      }
    }
  }
}

TEST(DrawOutlines, DrawsEachPixelOfTheDarkLineOnce) {
  for (const ui::Rect& rect : {ui::Rect{4, 4, 5, 9}, {4, 4, 9, 5}, {4, 4, 5, 5}, {4, 4, 6, 6}}) {
    const Drawing drawing({rect});
    for (int y = 6; y < rect.y + rect.h - 2; ++y) {
      for (int x = 6; x < rect.x + rect.w - 2; ++x) {
        const bool edge =
            std::min({x - 6, y - 6, rect.x + rect.w - 3 - x, rect.y + rect.h - 3 - y}) == 0;
        const std::uint32_t plain = Drawing::plain(x, y) >> 16;
        ASSERT_EQ(drawing.at(x, y) >> 16, edge ? plain / 4 : plain) << x << "," << y;
      }
    }
  }
}

TEST(DrawOutlines, DrawsThickerLinesWhereTheScaleIsLarger) {
  const Drawing drawing({{10, 5, 40, 30}}, 2);
  for (const int depth : {0, 1}) EXPECT_EQ(drawing.at(10 + depth, 20), 0xFFFFFFu);
  for (const int depth : {2, 3}) EXPECT_EQ(drawing.at(10 + depth, 20), kAccent);
  for (const int depth : {4, 5}) EXPECT_LT(drawing.at(10 + depth, 20), 0x200000u);
  EXPECT_EQ(drawing.at(16, 20), Drawing::plain(16, 20));
}

TEST(DrawOutlines, DrawsOnAPartOfTheMapWhatIsThereOnTheWhole) {
  std::minstd_rand random(3);
  std::uniform_int_distribution<int> place(0, 30);
  std::uniform_int_distribution<int> side(1, 10);
  for (int round = 0; round < 200; ++round) {
    const Rects outlines = someOutlines(random, 12);
    const Drawing whole(outlines, 1 + round % 3);
    const ui::Rect area = {place(random), place(random), side(random), side(random)};
    const Drawing part(outlines, 1 + round % 3, area);
    for (int y = area.y; y < area.y + area.h; ++y) {
      for (int x = area.x; x < area.x + area.w; ++x) ASSERT_EQ(part.at(x, y), whole.at(x, y));
    }
  }
}

TEST(OutlineBands, HoldEveryPixelThatAnOutlineChanges) {
  std::minstd_rand random(5);
  for (int round = 0; round < 500; ++round) {
    const int thickness = 1 + round % 3;
    const ui::Rect outline = someOutlines(random, 1).front();
    Rects bands;
    addOutlineBands(outline, {.thickness = thickness}, &bands);
    const Drawing with({outline}, thickness);
    for (int y = 0; y < kMapHeight; ++y) {
      for (int x = 0; x < kMapWidth; ++x) {
        const auto holds = [&](const ui::Rect& band) { return band.contains(x, y); };
        const bool changes = with.at(x, y) != Drawing::plain(x, y);
        ASSERT_TRUE(!changes || std::ranges::any_of(bands, holds)) << x << "," << y;
      }
    }
  }
}

TEST(OutlineBands, AreAFewPixelsOfALargeItem) {
  Rects bands;
  addOutlineBands({0, 0, 1000, 800}, {}, &bands);
  long pixels = 0;
  for (const ui::Rect& band : bands) pixels += long{band.w} * band.h;
  EXPECT_EQ(pixels, 2 * 3 * 1000 + 2 * 3 * 794);
  bands.clear();
  addOutlineBands({0, 0, 8, 8}, {}, &bands);
  EXPECT_EQ(bands, (Rects{{0, 0, 8, 8}}));
}

/// What a huge selection costs on the way to the server, which is where its time would go.
TEST(SelectionTraffic, IsThatOfWhatChanges) {
  constexpr std::uint32_t kItems = 20'000;
  constexpr ui::Rect kPlace{0, 0, 1200, 900};
  const test::XServer server;
  const test::CountingProxy proxy(server.display());
  const auto connection = ui::Connection::open();
  ASSERT_NE(connection, nullptr);
  ui::Window window(*connection);
  ASSERT_TRUE(window.create("map", kPlace.w, kPlace.h));

  const auto tree = std::make_shared<sizewalk::FileTree>();
  test::fillRoot(*tree, std::vector<test::MapEntry>(kItems, test::file(1000)));
  KindColours colours(true);
  TreemapPicture picture(*connection, colours);
  picture.setRect(kPlace);
  picture.show(tree, sizewalk::kRootNode);
  std::vector<sizewalk::NodeId> selected;
  window.onPrepare = [&] {
    picture.setSelected(selected);
    picture.update();
  };
  window.onPaint = [&](ui::Canvas& canvas) {
    picture.paint(canvas);
    window.quit();
  };
  const test::TempDirectory directory;
  const auto bytesOfFrame = [&] {
    const std::uint64_t before = proxy.bytesToServer();
    window.invalidate();
    window.run();
    EXPECT_TRUE(window.capture(directory.path() + "/frame"));  // waits for the server
    return proxy.bytesToServer() - before;
  };
  const std::uint64_t whole = std::uint64_t{4} * kPlace.w * kPlace.h;
  EXPECT_GE(bytesOfFrame(), whole) << "the first picture";
  for (std::uint32_t i = 0; i < kItems; ++i) selected.push_back(tree->firstChild(0) + i);
  EXPECT_GE(bytesOfFrame(), whole) << "all is outlined now";
  EXPECT_LT(bytesOfFrame(), 2000u) << "as it was";
  selected.erase(selected.begin() + 77);
  const std::uint64_t one = bytesOfFrame();
  EXPECT_GT(one, 100u);
  EXPECT_LT(one, 10'000u);
}

}  // namespace
}  // namespace app
