#include "ui/canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/ui/window_test_base.h"
#include "ui/x11.h"

namespace test {
namespace {

constexpr ui::Colour kWhite = 0xFFFFFFFF;
constexpr ui::Colour kRed = 0xFFFF0000;
constexpr ui::Rect kAll{0, 0, 200, 100};

bool contains(const ui::Rect& rect, int x, int y) {
  return x >= rect.x && x < rect.x + rect.w && y >= rect.y && y < rect.y + rect.h;
}

/// Everything in `expected` has the colour `rgb`, and nothing outside does.
void expectExactly(const Picture& picture, std::uint32_t rgb, const ui::Rect& expected) {
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      ASSERT_EQ(picture.at(x, y) == rgb, contains(expected, x, y)) << x << "," << y;
    }
  }
}

class CanvasTest : public WindowTest {
 protected:
  /// What `draw` leaves on white ground.
  Picture onWhite(const std::function<void(ui::Canvas&)>& draw) {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect(kAll, kWhite);
      draw(canvas);
    });
  }
};

TEST_F(CanvasTest, IsAsLargeAsTheWindow) {
  int width = 0;
  int height = 0;
  paint([&](ui::Canvas& canvas) {
    width = canvas.width();
    height = canvas.height();
    EXPECT_EQ(canvas.clip(), kAll);
  });
  EXPECT_EQ(width, 200);
  EXPECT_EQ(height, 100);
}

TEST_F(CanvasTest, FillRectFillsExactlyItsPixels) {
  const auto picture = onWhite([](ui::Canvas& canvas) { canvas.fillRect({10, 20, 30, 40}, kRed); });
  expectExactly(picture, 0xFF0000, {10, 20, 30, 40});
}

TEST_F(CanvasTest, FillRectWithoutAreaDrawsNothing) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRect({10, 20, 0, 40}, kRed);
    canvas.fillRect({10, 20, 40, -3}, kRed);
    canvas.strokeRect({10, 20, -4, 5}, kRed);
    canvas.fillRoundRect({10, 20, 0, 5}, 3, kRed);
  });
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100);
}

TEST_F(CanvasTest, FillRectFarOutsideDoesNotWrapAround) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRect({65536, 65536, 10, 10}, kRed);
    canvas.fillRect({-65536, 0, 100, 10}, kRed);
    canvas.fillRect({-100'000, 50, 200'000, 10}, 0xFF0000FF);
  });
  EXPECT_EQ(picture.count(0xFF0000), 0);
  expectExactly(picture, 0x0000FF, {0, 50, 200, 10});
}

TEST_F(CanvasTest, TranslucentFillBlendsOverWhatIsThere) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, 10, 10}, 0xFF0000FF);
    canvas.fillRect({0, 0, 20, 10}, 0x80FF0000);
  });
  const auto near = [](std::uint32_t rgb, int red, int green, int blue) {
    const int r = static_cast<int>(rgb >> 16);
    const int g = static_cast<int>(rgb >> 8 & 0xFF);
    const int b = static_cast<int>(rgb & 0xFF);
    return std::abs(r - red) <= 1 && std::abs(g - green) <= 1 && std::abs(b - blue) <= 1;
  };
  EXPECT_TRUE(near(picture.at(5, 5), 128, 0, 127)) << std::hex << picture.at(5, 5);
  EXPECT_TRUE(near(picture.at(15, 5), 255, 127, 127)) << std::hex << picture.at(15, 5);
}

TEST_F(CanvasTest, AlphaZeroDrawsNothing) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRect(kAll, 0x00FF0000);
    canvas.strokeRect(kAll, 0x00FF0000);
    canvas.line(0, 0, 50, 0, 0x00FF0000);
    canvas.fillRoundRect(kAll, 8, 0x00FF0000);
  });
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100);
}

TEST_F(CanvasTest, StrokeRectOutlinesInside) {
  const auto picture = onWhite([](ui::Canvas& canvas) { canvas.strokeRect({10, 20, 5, 4}, kRed); });
  EXPECT_EQ(picture.count(0xFF0000), 2 * 5 + 2 * 2);
  for (const auto& [x, y] : {std::pair{10, 20}, {14, 20}, {10, 23}, {14, 23}, {12, 20}, {10, 22}}) {
    EXPECT_EQ(picture.at(x, y), 0xFF0000u) << x << "," << y;
  }
  EXPECT_EQ(picture.at(11, 21), 0xFFFFFFu);
}

TEST_F(CanvasTest, StrokeRectFillsItsCornersTwice) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.strokeRect({10, 10, 10, 10}, 0x80000000);
  });
  EXPECT_LT(picture.at(10, 10), picture.at(15, 10));
  EXPECT_EQ(picture.at(10, 10), picture.at(19, 19));
  EXPECT_EQ(picture.at(15, 10), picture.at(10, 15));
}

TEST_F(CanvasTest, LineIncludesBothEnds) {
  const auto horizontal = onWhite([](ui::Canvas& canvas) { canvas.line(20, 7, 11, 7, kRed); });
  expectExactly(horizontal, 0xFF0000, {11, 7, 10, 1});
  const auto vertical = onWhite([](ui::Canvas& canvas) { canvas.line(8, 30, 8, 12, kRed); });
  expectExactly(vertical, 0xFF0000, {8, 12, 1, 19});
}

TEST_F(CanvasTest, LineFromAPointToItselfIsOnePixel) {
  const auto picture = onWhite([](ui::Canvas& canvas) { canvas.line(5, 5, 5, 5, kRed); });
  expectExactly(picture, 0xFF0000, {5, 5, 1, 1});
}

TEST_F(CanvasTest, SlantedLineDrawsNothing) {
  const auto picture = onWhite([](ui::Canvas& canvas) { canvas.line(0, 0, 10, 10, kRed); });
  EXPECT_EQ(picture.count(0xFF0000), 0);
}

TEST_F(CanvasTest, RoundRectLeavesItsCornersOut) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRoundRect({10, 20, 40, 30}, 8, kRed);
  });
  // Row i of a corner of radius 8 is int(sqrt(64 - (7.5 - i)^2) + 0.5) long.
  const std::vector<int> spans = {3, 5, 6, 7, 7, 8, 8, 8};
  for (int i = 0; i < 8; ++i) {
    const int span = spans[static_cast<std::size_t>(i)];
    for (const int y : {20 + i, 49 - i}) {
      for (int x = 10; x < 50; ++x) {
        const bool inside = x >= 18 - span && x < 42 + span;
        ASSERT_EQ(picture.at(x, y) == 0xFF0000, inside) << x << "," << y;
      }
    }
  }
  EXPECT_EQ(picture.at(10, 35), 0xFF0000u);
  EXPECT_EQ(picture.at(49, 35), 0xFF0000u);
}

TEST_F(CanvasTest, TranslucentRoundRectIsEvenlyBlended) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    canvas.fillRoundRect({10, 20, 41, 31}, 9, 0x80000000);
  });
  const std::uint32_t blended = picture.at(30, 35);
  EXPECT_EQ(picture.count(0xFFFFFF) + picture.count(blended), 200 * 100);
}

TEST_F(CanvasTest, RoundRectWithoutRoomForARadiusIsPlain) {
  const auto noRadius = onWhite([](ui::Canvas& canvas) {
    canvas.fillRoundRect({10, 20, 30, 20}, 0, kRed);
  });
  expectExactly(noRadius, 0xFF0000, {10, 20, 30, 20});
  const auto flat = onWhite([](ui::Canvas& canvas) {
    canvas.fillRoundRect({10, 20, 30, 1}, 6, kRed);
  });
  expectExactly(flat, 0xFF0000, {10, 20, 30, 1});
}

TEST_F(CanvasTest, ClipConfinesEverything) {
  const std::vector<std::uint32_t> pixels(200 * 100, 0x0000FF);
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip({10, 10, 50, 50});
    canvas.pushClip({30, 30, 100, 100});
    EXPECT_EQ(canvas.clip(), (ui::Rect{30, 30, 30, 30}));
    canvas.putPixels(0, 0, pixels, 200, 100);
    canvas.fillRect({40, 0, 1, 100}, kRed);
    canvas.popClip();
    canvas.fillRect({10, 0, 1, 100}, kRed);
  });
  EXPECT_EQ(picture.count(0x0000FF), 30 * 29);
  EXPECT_EQ(picture.count(0xFF0000), 30 + 50);
  EXPECT_EQ(picture.at(30, 30), 0x0000FFu);
  EXPECT_EQ(picture.at(59, 59), 0x0000FFu);
  EXPECT_EQ(picture.at(40, 45), 0xFF0000u);
  EXPECT_EQ(picture.at(10, 59), 0xFF0000u);
  EXPECT_EQ(picture.at(10, 60), 0xFFFFFFu);
}

TEST_F(CanvasTest, ClipOutsideTheCurrentOneDrawsNothingUntilPopped) {
  const std::vector<std::uint32_t> pixels(200 * 100, 0x0000FF);
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip({0, 0, 50, 50});
    canvas.pushClip({60, 60, 10, 10});
    EXPECT_EQ(canvas.clip(), (ui::Rect{0, 0, 0, 0}));
    canvas.fillRect(kAll, kRed);
    canvas.putPixels(0, 0, pixels, 200, 100);
    // What the text drawing of Xft is confined to.
    const XftColor colour = {0x00FF00, {0, 0xFFFF, 0, 0xFFFF}};
    XftDrawRect(canvas.target().draw, &colour, 0, 0, 200, 100);
    canvas.popClip();
    canvas.fillRect({49, 49, 2, 2}, kRed);
  });
  expectExactly(picture, 0xFF0000, {49, 49, 1, 1});
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - 1);
}

TEST_F(CanvasTest, ClipConfinesXftAsWell) {
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip({20, 30, 40, 10});
    const XftColor colour = {0xFF0000, {0xFFFF, 0, 0, 0xFFFF}};
    XftDrawRect(canvas.target().draw, &colour, 0, 0, 200, 100);
  });
  expectExactly(picture, 0xFF0000, {20, 30, 40, 10});
}

TEST_F(CanvasTest, ClipConfinesTheGraphicsContextAsWell) {
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip({20, 30, 40, 10});
    const ui::PaintTarget& target = canvas.target();
    Display* display = connection->native().display;
    XSetForeground(display, target.gc, 0xFF0000);
    XFillRectangle(display, target.drawable, target.gc, 0, 0, 200, 100);
  });
  expectExactly(picture, 0xFF0000, {20, 30, 40, 10});
}

TEST_F(CanvasTest, ClipLeftBehindDoesNotConfineWhatIsShown) {
  onWhite([](ui::Canvas& canvas) { canvas.pushClip({0, 0, 1, 1}); });
  settle();
  EXPECT_EQ(other.screenPixel(window.xid(), 150, 80), 0xFFFFFFu);
}

TEST_F(CanvasTest, PoppingAnEmptyStackLeavesTheWholeBufferDrawable) {
  const auto picture = onWhite([](ui::Canvas& canvas) {
    for (int i = 0; i < 3; ++i) canvas.popClip();
    EXPECT_EQ(canvas.clip(), kAll);
    canvas.fillRect(kAll, kRed);
  });
  EXPECT_EQ(picture.count(0xFF0000), 200 * 100);
}

TEST_F(CanvasTest, ClipOfOneFrameDoesNotReachIntoTheNext) {
  onWhite([](ui::Canvas& canvas) { canvas.pushClip({0, 0, 1, 1}); });
  const auto picture = onWhite([](ui::Canvas& canvas) { canvas.fillRect(kAll, kRed); });
  EXPECT_EQ(picture.count(0xFF0000), 200 * 100);
}

/// A block in which every pixel tells its place.
std::vector<std::uint32_t> numbered(int w, int h) {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) pixels.push_back(static_cast<std::uint32_t>(x << 16 | y << 8 | 7));
  }
  return pixels;
}

TEST_F(CanvasTest, PutPixelsCopiesEachPixelToItsPlaceAndIgnoresTheTopByte) {
  auto pixels = numbered(30, 20);
  for (std::uint32_t& pixel : pixels) pixel |= 0x55000000;
  const auto picture =
      onWhite([&](ui::Canvas& canvas) { canvas.putPixels(15, 25, pixels, 30, 20); });
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      ASSERT_EQ(picture.at(15 + x, 25 + y), static_cast<std::uint32_t>(x << 16 | y << 8 | 7));
    }
  }
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - 30 * 20);
}

TEST_F(CanvasTest, PutPixelsPartlyOutsideShowsTheRightPart) {
  const auto pixels = numbered(30, 20);
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.putPixels(-10, -5, pixels, 30, 20);
    canvas.pushClip({105, 58, 10, 10});
    canvas.putPixels(100, 50, pixels, 30, 20);
    canvas.putPixels(65536 + 105, 65536 + 58, pixels, 30, 20);
  });
  EXPECT_EQ(picture.at(0, 0), 0x0A0507u);
  EXPECT_EQ(picture.at(19, 14), 0x1D1307u);
  EXPECT_EQ(picture.at(20, 14), 0xFFFFFFu);
  EXPECT_EQ(picture.at(105, 58), 0x050807u);
  EXPECT_EQ(picture.at(114, 67), 0x0E1107u);
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - 20 * 15 - 10 * 10);
}

TEST_F(CanvasTest, PutPixelsWithoutAreaOrWithTooFewPixelsDrawsNothing) {
  const auto pixels = numbered(4, 4);
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.putPixels(0, 0, pixels, 0, 4);
    canvas.putPixels(0, 0, pixels, 4, -1);
    canvas.putPixels(0, 0, pixels, 5, 4);
  });
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100);
}

TEST_F(CanvasTest, PutPixelsTakesAnImageLargerThanOneRequest) {
  show(1280, 800);
  std::vector<std::uint32_t> pixels(5000 * 1000, 0x102030);  // 20 MB, a request holds 16
  const Picture picture =
      paint([&](ui::Canvas& canvas) { canvas.putPixels(-100, -100, pixels, 5000, 1000); });
  EXPECT_EQ(picture.count(0x102030), 1280 * 800);
}

// Ten bits a channel: colours have to be spread, and the depth of images is not 24.
TEST(DeepScreen, ShowsFillsAndPixelsInTheirColours) {
  WindowOnServer deep({.depth = 30});
  const std::vector<std::uint32_t> pixels = {0x00FF8000, 0x00FF8000, 0x0000FF01, 0x0000FF01};
  deep.paint([&](ui::Canvas& canvas) {
    canvas.fillRect(kAll, 0xFF8000FF);
    canvas.putPixels(10, 10, pixels, 2, 2);
    canvas.pushClip({20, 21, 100, 1});
    canvas.putPixels(20, 20, pixels, 2, 2);
  });
  const unsigned long window = deep.window.xid();
  // XRender cuts 0x8080 of 16 bits to 514 of ten.
  EXPECT_EQ(deep.other.screenPixel(window, 0, 0), 514ul << 20 | 0x3FF);
  EXPECT_EQ(deep.other.screenPixel(window, 11, 10), 0x3FFul << 20 | 514ul << 10);
  EXPECT_EQ(deep.other.screenPixel(window, 11, 11), 0x3FFul << 10 | 4);
  EXPECT_EQ(deep.other.screenPixel(window, 20, 20), 514ul << 20 | 0x3FF);
  EXPECT_EQ(deep.other.screenPixel(window, 20, 21), 0x3FFul << 10 | 4);
}

TEST(ServerWithoutRender, StillShowsOpaqueFills) {
  WindowOnServer plain({.extraArguments = {"-extension", "RENDER"}});
  const Picture picture = plain.paint([](ui::Canvas& canvas) {
    canvas.fillRect(kAll, kWhite);
    canvas.pushClip({10, 10, 20, 20});
    canvas.fillRect(kAll, 0xFF123456);
    canvas.fillRect(kAll, 0x00FF0000);
  });
  expectExactly(picture, 0x123456, {10, 10, 20, 20});
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - 20 * 20);
}

TEST(RoundRectRuns, NeverOverlap) {
  for (int radius = -1; radius < 14; ++radius) {
    for (int w = 1; w < 24; ++w) {
      for (int h = 1; h < 24; ++h) {
        std::vector<int> hits(24 * 24, 0);
        for (const ui::Rect& run : ui::roundRectRuns({0, 0, w, h}, radius)) {
          for (int y = run.y; y < run.y + run.h; ++y) {
            for (int x = run.x; x < run.x + run.w; ++x)
              ++hits.at(static_cast<std::size_t>(y * 24 + x));
          }
        }
        ASSERT_LE(*std::max_element(hits.begin(), hits.end()), 1) << radius << ' ' << w << ' ' << h;
      }
    }
  }
}

}  // namespace
}  // namespace test
