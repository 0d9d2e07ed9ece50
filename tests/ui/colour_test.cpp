#include "ui/colour.h"

#include <gtest/gtest.h>

#include <array>

#include "ui/pixel_format.h"

namespace ui {
namespace {

TEST(Premultiplied, OpaqueColourSpreadsEachChannelOver16Bits) {
  EXPECT_EQ(premultiplied(0xFF0080FF), (PremultipliedColour{0, 0x80 * 257, 0xFFFF, 0xFFFF}));
}

TEST(Premultiplied, TranslucentColourIsMultipliedByItsAlphaAndCut) {
  // 200 * 77 * 257 / 255 = 15520.78, 3 * 77 * 257 / 255 = 232.8
  EXPECT_EQ(premultiplied(0x4DC80300), (PremultipliedColour{15520, 232, 0, 77 * 257}));
}

TEST(Premultiplied, InvisibleColourIsAllZeros) {
  EXPECT_EQ(premultiplied(0x00FFFFFF), (PremultipliedColour{0, 0, 0, 0}));
}

TEST(PixelFormat, OfAnOrdinaryScreenTakesColoursAsTheyAre) {
  const PixelFormat format = PixelFormat::of(24, 0xFF0000, 0xFF00, 0xFF);
  EXPECT_TRUE(format.isPlainRgb());
  EXPECT_EQ(format.pixelOf(0xAB123456), 0x123456u);
}

TEST(PixelFormat, OfTenBitsAChannelSpreadsEachChannel) {
  const PixelFormat format = PixelFormat::of(30, 0x3FF00000, 0xFFC00, 0x3FF);
  EXPECT_FALSE(format.isPlainRgb());
  EXPECT_EQ(format.pixelOf(0x00FFFFFF), 0x3FFFFFFFu);
  EXPECT_EQ(format.pixelOf(0x00000000), 0u);
  // 0x80 of 0xFF is 513.5 of 1023: 514.
  EXPECT_EQ(format.pixelOf(0x008000FF), 514ul << 20 | 0x3FF);
}

TEST(PixelFormat, OfSwappedChannelsPutsRedWhereTheMaskSays) {
  const PixelFormat format = PixelFormat::of(24, 0xFF, 0xFF00, 0xFF0000);
  EXPECT_FALSE(format.isPlainRgb());
  EXPECT_EQ(format.pixelOf(0x123456), 0x563412u);
}

TEST(PixelFormat, OfDepth32MakesEveryPixelOpaque) {
  const PixelFormat format = PixelFormat::of(32, 0xFF0000, 0xFF00, 0xFF);
  EXPECT_FALSE(format.isPlainRgb());
  EXPECT_EQ(format.pixelOf(0x00123456), 0xFF123456u);
}

TEST(PixelFormat, ConvertsARowAsItConvertsOnePixel) {
  const PixelFormat format = PixelFormat::of(30, 0x3FF00000, 0xFFC00, 0x3FF);
  const std::array<std::uint32_t, 3> from = {0x00FF8001, 0x7F0A0B0C, 0x00000000};
  std::array<std::uint32_t, 3> to = {1, 1, 1};
  format.convert(from, to);
  for (std::size_t i = 0; i < from.size(); ++i) EXPECT_EQ(to[i], format.pixelOf(from[i]));
}

TEST(PixelChannel, ShiftOfAZeroMaskIsZero) {
  EXPECT_EQ(PixelChannel{0}.shift(), 0u);
  EXPECT_EQ(PixelChannel{0xFFC00}.shift(), 10u);
  EXPECT_EQ(PixelChannel{0}.place(255), 0u);
}

}  // namespace
}  // namespace ui
