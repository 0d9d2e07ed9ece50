#include "ui/icon.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_directory.h"
#include "tests/ui/png_file.h"
#include "tests/ui/window_test_base.h"
#include "ui/canvas.h"

namespace test {
namespace {

using Pixels = std::vector<std::uint32_t>;
using SizesAndGrounds = std::vector<std::pair<int, ui::Colour>>;

constexpr ui::Colour kGround = 0xFF0A1464;  // 10, 20, 100

TEST(FlattenedIcon, HasTheImagesOwnPixelsAtItsOwnSize) {
  // Opaque, half covered, and invisible: 200 * 128/255 + 10 * 127/255 = 105.37.
  const ui::IconImage image{2, 2, {0xFF123456, 0x80C8C8C8, 0x00FFFFFF, 0xFFFFFFFF}};
  EXPECT_EQ(ui::flattened(image, 2, kGround), (Pixels{0x123456, 0x696E96, 0x0A1464, 0xFFFFFF}));
}

TEST(FlattenedIcon, IsTheMeanOfTheWholeImageInOnePixel) {
  const ui::IconImage image{2, 2, {0xFFC80000, 0xFF640000, 0xFF000000, 0xFF140000}};
  EXPECT_EQ(ui::flattened(image, 1, kGround), (Pixels{0x500000}));
}

TEST(FlattenedIcon, WeighsColoursByTheirAlpha) {
  // The two invisible pixels count for coverage, not for colour: (150 + 50) / 2.
  const ui::IconImage image{2, 2, {0xFFC8C8C8, 0xFF646464, 0x00FFFFFF, 0x00000000}};
  EXPECT_EQ(ui::flattened(image, 1, 0xFF323232), (Pixels{0x646464}));
  // 153 is 3/5: the colour is (3/5 * 100 + 1 * 200) / (8/5) = 162.5, covering 4/5.
  const ui::IconImage uneven{2, 2, {0x99646464, 0xFFC8C8C8, 0x99646464, 0xFFC8C8C8}};
  EXPECT_EQ(ui::flattened(uneven, 1, 0xFF000000), (Pixels{0x828282}));
}

TEST(FlattenedIcon, IsTheBareGroundWhereNothingCovers) {
  const ui::IconImage image{1, 1, {0x00FFFFFF}};
  EXPECT_EQ(ui::flattened(image, 2, kGround), Pixels(4, 0x0A1464));
}

TEST(FlattenedIcon, TruncatesFractions) {
  const ui::IconImage image{2, 2, {0xFF000001, 0xFF000001, 0xFF000001, 0xFF000000}};
  EXPECT_EQ(ui::flattened(image, 1, kGround), (Pixels{0}));
}

TEST(FlattenedIcon, RepeatsPixelsWhenEnlarged) {
  const ui::IconImage image{2, 2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004}};
  EXPECT_EQ(ui::flattened(image, 4, kGround),
            (Pixels{1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4}));
  EXPECT_EQ(ui::flattened(image, 3, kGround), (Pixels{1, 1, 2, 1, 1, 2, 3, 3, 4}));
}

TEST(FlattenedIcon, GivesTheLaterPixelsMoreWhenBoxesAreUneven) {
  // Columns and rows fall into 0 and 1..2.
  const ui::IconImage image{3,
                            3,
                            {0xFF000010, 0xFF000020, 0xFF000030, 0xFF000040, 0xFF000050, 0xFF000060,
                             0xFF000070, 0xFF000080, 0xFF000090}};
  EXPECT_EQ(ui::flattened(image, 2, kGround), (Pixels{0x10, 0x28, 0x58, 0x70}));
}

TEST(FlattenedIcon, FitsALongImageIntoASquare) {
  const ui::IconImage wide{4, 1, {0xFF000010, 0xFF000020, 0xFF000030, 0xFF000040}};
  EXPECT_EQ(ui::flattened(wide, 2, kGround), (Pixels{0x18, 0x38, 0x18, 0x38}));
  const ui::IconImage tall{1, 4, {0xFF000010, 0xFF000020, 0xFF000030, 0xFF000040}};
  EXPECT_EQ(ui::flattened(tall, 2, kGround), (Pixels{0x18, 0x18, 0x38, 0x38}));
}

TEST(FlattenedIcon, KeepsAnEvenColourAtEverySize) {
  const ui::IconImage image{7, 5, std::vector<ui::Colour>(35, 0xFF4B8DF3)};
  for (int size = 1; size <= 40; ++size) {
    const Pixels pixels = ui::flattened(image, size, kGround);
    EXPECT_EQ(pixels, Pixels(static_cast<std::size_t>(size * size), 0x4B8DF3)) << size;
  }
}

TEST(EmbeddedIcon, IsThePackagedFile) {
  const std::string file = readFile(HEAPGAUGE_ICON_FILE);
  const auto expected = std::as_bytes(std::span(file));
  const auto embedded = ui::embeddedIcon();
  EXPECT_TRUE(std::equal(embedded.begin(), embedded.end(), expected.begin(), expected.end()));
}

TEST(EmbeddedIcon, IsASquareWithPixelsToSpare) {
  const std::optional<ui::IconImage> image = ui::decodeIcon(ui::embeddedIcon());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width, image->height);
  // 44 logical pixels at the greatest scale, 4.
  EXPECT_GE(image->width, 176);
}

TEST(EmbeddedIcon, StandsOutFromLightAndDarkGrounds) {
  const std::optional<ui::IconImage> image = ui::decodeIcon(ui::embeddedIcon());
  ASSERT_TRUE(image);
  for (const std::uint32_t ground : {0xF6F5F4U, 0x242428U}) {
    const Pixels pixels = ui::flattened(*image, 44, ground);
    // The corners are the ground's, most of the rest is not.
    EXPECT_EQ(pixels.front(), ground);
    EXPECT_EQ(pixels.back(), ground);
    EXPECT_LT(std::count(pixels.begin(), pixels.end(), ground), 44 * 44 / 2);
  }
}

/// A PNG of 4 x 4 pixels of differing colour and alpha.
std::vector<std::byte> smallPng() {
  std::mt19937 random(1);
  std::vector<std::uint8_t> rows(4 * 4 * 4);
  std::generate(rows.begin(), rows.end(), [&] { return static_cast<std::uint8_t>(random()); });
  return makePng({.width = 4, .height = 4, .colourType = PNG_COLOR_TYPE_RGBA, .rows = rows});
}

TEST(Icon, LoadsTheProgramsOwn) { EXPECT_TRUE(ui::Icon().load()); }

TEST(Icon, NeverTriesAgainAfterAFailure) {
  const std::vector<std::byte> good = smallPng();
  std::vector<std::byte> bytes(good.size());
  ui::Icon icon(bytes);
  EXPECT_FALSE(icon.load());
  bytes = good;
  ASSERT_TRUE(ui::Icon(bytes).load());
  EXPECT_FALSE(icon.load());
}

TEST(Icon, DecodesOnce) {
  std::vector<std::byte> bytes = smallPng();
  ui::Icon icon(bytes);
  EXPECT_TRUE(icon.load());
  std::fill(bytes.begin(), bytes.end(), std::byte{0});
  EXPECT_TRUE(icon.load());
}

class IconOnWindow : public WindowTest {
 protected:
  /// What `icon` leaves on a ground of its own.
  Picture drawn(ui::Icon& icon, int x, int y, int size) {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, kGround);
      icon.draw(canvas, x, y, size, kGround);
    });
  }

  static SizesAndGrounds kept(const ui::Icon& icon) {
    SizesAndGrounds result;
    for (const auto& entry : icon.scaled()) result.emplace_back(entry.size, entry.background);
    return result;
  }

  const std::vector<std::byte> png_ = smallPng();
};

/// `picture` shows `pixels`, a square of `size`, at (x, y) and the ground everywhere else.
void expectSquare(const Picture& picture, const Pixels& pixels, int x, int y, int size) {
  for (int py = 0; py < picture.height; ++py) {
    for (int px = 0; px < picture.width; ++px) {
      const bool inside = px >= x && px < x + size && py >= y && py < y + size;
      const std::uint32_t expected =
          inside ? pixels[static_cast<std::size_t>((py - y) * size + px - x)] : kGround & 0xFFFFFF;
      ASSERT_EQ(picture.at(px, py), expected) << px << "," << py;
    }
  }
}

TEST_F(IconOnWindow, IsDrawnFlattenedAtItsOwnSize) {
  ui::Icon icon(png_);
  const Picture picture = drawn(icon, 30, 20, 4);
  expectSquare(picture, ui::flattened(*ui::decodeIcon(png_), 4, kGround), 30, 20, 4);
}

TEST_F(IconOnWindow, IsDrawnAtAnySizeAndTheSameFromMemory) {
  ui::Icon icon;
  const Pixels expected = ui::flattened(*ui::decodeIcon(ui::embeddedIcon()), 44, kGround);
  expectSquare(drawn(icon, 100, 50, 44), expected, 100, 50, 44);
  expectSquare(drawn(icon, 10, 5, 44), expected, 10, 5, 44);
  EXPECT_EQ(kept(icon), (SizesAndGrounds{{44, kGround}}));
}

TEST_F(IconOnWindow, DrawsNothingBelowOnePixel) {
  ui::Icon icon(png_);
  for (const int size : {0, -1, -100}) {
    EXPECT_EQ(drawn(icon, 30, 20, size).count(kGround & 0xFFFFFF), 200 * 100) << size;
  }
  EXPECT_TRUE(icon.scaled().empty());
}

TEST_F(IconOnWindow, DrawsNothingWhenDamaged) {
  std::vector<std::byte> damaged = png_;
  damaged.resize(damaged.size() / 2);
  ui::Icon icon(damaged);
  EXPECT_EQ(drawn(icon, 30, 20, 44).count(kGround & 0xFFFFFF), 200 * 100);
  EXPECT_TRUE(icon.scaled().empty());
}

TEST_F(IconOnWindow, KeepsTheLastFourSizes) {
  ui::Icon icon(png_);
  paint([&](ui::Canvas& canvas) {
    for (const int size : {1, 2, 3, 4}) icon.draw(canvas, 0, 0, size, kGround);
    EXPECT_EQ(kept(icon),
              (SizesAndGrounds{{1, kGround}, {2, kGround}, {3, kGround}, {4, kGround}}));
    icon.draw(canvas, 0, 0, 5, kGround);
    EXPECT_EQ(kept(icon),
              (SizesAndGrounds{{2, kGround}, {3, kGround}, {4, kGround}, {5, kGround}}));
  });
}

TEST_F(IconOnWindow, ForgetsTheOldestHoweverOftenItIsDrawn) {
  ui::Icon icon(png_);
  paint([&](ui::Canvas& canvas) {
    for (const int size : {1, 2, 3, 4, 1, 1, 5}) icon.draw(canvas, 0, 0, size, kGround);
    EXPECT_EQ(kept(icon),
              (SizesAndGrounds{{2, kGround}, {3, kGround}, {4, kGround}, {5, kGround}}));
  });
}

TEST_F(IconOnWindow, TellsGroundsOfOneSizeApart) {
  ui::Icon icon(png_);
  constexpr ui::Colour kOther = 0xFFFFFFFF;
  paint([&](ui::Canvas& canvas) {
    for (const ui::Colour ground : {kGround, kOther, kGround}) {
      icon.draw(canvas, 0, 0, 8, ground);
    }
  });
  EXPECT_EQ(kept(icon), (SizesAndGrounds{{8, kGround}, {8, kOther}}));
  EXPECT_NE(icon.scaled()[0].pixels, icon.scaled()[1].pixels);
}

}  // namespace
}  // namespace test
