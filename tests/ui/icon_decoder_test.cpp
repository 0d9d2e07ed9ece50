#include "ui/icon_decoder.h"

#include <gtest/gtest.h>
#include <png.h>

#include <span>
#include <string>
#include <vector>

#include "tests/ui/png_file.h"

namespace test {
namespace {

using Pixels = std::vector<ui::Colour>;

/// The pixels that come out of `file`; none when it is refused or has another size.
Pixels decoded(const PngFile& file) {
  const std::optional<ui::IconImage> image = ui::decodeIcon(makePng(file));
  if (!image || image->width != file.width || image->height != file.height) return {};
  return image->pixels;
}

PngFile rgba3x2() {
  return {.width = 3,
          .height = 2,
          .colourType = PNG_COLOR_TYPE_RGBA,
          .rows = {0x11, 0x22, 0x33, 0xFF, 0x44, 0x55, 0x66, 0x80, 0x77, 0x88, 0x99, 0x00,
                   0xAA, 0xBB, 0xCC, 0x01, 0xDD, 0xEE, 0xF0, 0xFE, 0x01, 0x02, 0x03, 0x04}};
}
const Pixels kRgba3x2 = {0xFF112233, 0x80445566, 0x00778899, 0x01AABBCC, 0xFEDDEEF0, 0x04010203};

/// A black image without detail.
PngFile blank(int width, int height) {
  return {.width = width,
          .height = height,
          .colourType = PNG_COLOR_TYPE_GRAY,
          .rows = std::vector<std::uint8_t>(static_cast<std::size_t>(width) *
                                            static_cast<std::size_t>(height))};
}

/// Where the four letters of the first chunk of that name begin.
std::size_t findChunk(const std::vector<std::byte>& png, const std::string& name) {
  const std::string text(reinterpret_cast<const char*>(png.data()), png.size());
  return text.find(name);
}

TEST(DecodeIcon, KeepsColourAndAlphaRowByRow) { EXPECT_EQ(decoded(rgba3x2()), kRgba3x2); }

TEST(DecodeIcon, ReadsInterlacedImages) {
  PngFile file = rgba3x2();
  file.interlaced = true;
  EXPECT_EQ(decoded(file), kRgba3x2);
}

TEST(DecodeIcon, TakesColoursWithoutAlphaForOpaque) {
  EXPECT_EQ(decoded({.width = 2,
                     .colourType = PNG_COLOR_TYPE_RGB,
                     .rows = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66}}),
            (Pixels{0xFF112233, 0xFF445566}));
}

TEST(DecodeIcon, MakesTheTransparentColourInvisible) {
  EXPECT_EQ(decoded({.width = 2,
                     .colourType = PNG_COLOR_TYPE_RGB,
                     .rows = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66},
                     .transparency = {0x44, 0x55, 0x66}}),
            (Pixels{0xFF112233, 0x00445566}));
}

TEST(DecodeIcon, StripsTheLowHalfOfLongSamples) {
  EXPECT_EQ(decoded({.colourType = PNG_COLOR_TYPE_RGB,
                     .bitDepth = 16,
                     .rows = {0x12, 0xFF, 0x34, 0x80, 0x56, 0x00}}),
            (Pixels{0xFF123456}));
  EXPECT_EQ(decoded({.colourType = PNG_COLOR_TYPE_RGBA,
                     .bitDepth = 16,
                     .rows = {0x12, 0xFF, 0x34, 0x80, 0x56, 0x00, 0x78, 0xFF}}),
            (Pixels{0x78123456}));
  EXPECT_EQ(decoded({.colourType = PNG_COLOR_TYPE_GRAY, .bitDepth = 16, .rows = {0x7F, 0xFF}}),
            (Pixels{0xFF7F7F7F}));
  EXPECT_EQ(decoded({.colourType = PNG_COLOR_TYPE_GRAY_ALPHA,
                     .bitDepth = 16,
                     .rows = {0x7F, 0xFF, 0x40, 0xFF}}),
            (Pixels{0x407F7F7F}));
}

TEST(DecodeIcon, SpreadsGreyOfFewBitsOverTheWholeRange) {
  EXPECT_EQ(
      decoded({.width = 2, .colourType = PNG_COLOR_TYPE_GRAY, .bitDepth = 1, .rows = {0b01000000}}),
      (Pixels{0xFF000000, 0xFFFFFFFF}));
  EXPECT_EQ(
      decoded({.width = 4, .colourType = PNG_COLOR_TYPE_GRAY, .bitDepth = 2, .rows = {0b00011011}}),
      (Pixels{0xFF000000, 0xFF555555, 0xFFAAAAAA, 0xFFFFFFFF}));
  EXPECT_EQ(decoded({.width = 2, .colourType = PNG_COLOR_TYPE_GRAY, .bitDepth = 4, .rows = {0x3C}}),
            (Pixels{0xFF333333, 0xFFCCCCCC}));
  EXPECT_EQ(decoded({.colourType = PNG_COLOR_TYPE_GRAY, .rows = {0x7B}}), (Pixels{0xFF7B7B7B}));
}

TEST(DecodeIcon, ReadsGreyWithAlpha) {
  EXPECT_EQ(
      decoded(
          {.width = 2, .colourType = PNG_COLOR_TYPE_GRAY_ALPHA, .rows = {0x10, 0x20, 0x30, 0x40}}),
      (Pixels{0x20101010, 0x40303030}));
}

TEST(DecodeIcon, MakesTheTransparentGreyInvisible) {
  EXPECT_EQ(decoded({.width = 2,
                     .colourType = PNG_COLOR_TYPE_GRAY,
                     .rows = {0x10, 0x20},
                     .transparency = {0x20}}),
            (Pixels{0xFF101010, 0x00202020}));
  EXPECT_EQ(decoded({.width = 2,
                     .colourType = PNG_COLOR_TYPE_GRAY,
                     .bitDepth = 2,
                     .rows = {0b01110000},
                     .transparency = {1}}),
            (Pixels{0x00555555, 0xFFFFFFFF}));
}

TEST(DecodeIcon, LooksUpPalettesOfEveryDepth) {
  PngFile file = {.width = 2,
                  .colourType = PNG_COLOR_TYPE_PALETTE,
                  .palette = {{0x11, 0x22, 0x33}, {0x44, 0x55, 0x66}}};
  const Pixels expected = {0xFF445566, 0xFF112233};
  const std::vector<std::vector<std::uint8_t>> rows = {
      {0b10000000}, {0b01000000}, {0x10}, {0x01, 0x00}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    file.bitDepth = 1 << i;
    file.rows = rows[i];
    EXPECT_EQ(decoded(file), expected) << file.bitDepth;
  }
}

TEST(DecodeIcon, TakesThePalettesAlpha) {
  EXPECT_EQ(decoded({.width = 2,
                     .colourType = PNG_COLOR_TYPE_PALETTE,
                     .rows = {0, 1},
                     .palette = {{0x11, 0x22, 0x33}, {0x44, 0x55, 0x66}},
                     .transparency = {0x7F}}),
            (Pixels{0x7F112233, 0xFF445566}));
}

TEST(DecodeIcon, TakesFourThousandAndNinetySixPixelsEachWayAtMost) {
  EXPECT_EQ(decoded(blank(4096, 1)).size(), 4096U);
  EXPECT_EQ(decoded(blank(1, 4096)).size(), 4096U);
  EXPECT_FALSE(ui::decodeIcon(makePng(blank(4097, 1))));
  EXPECT_FALSE(ui::decodeIcon(makePng(blank(1, 4097))));
}

TEST(DecodeIcon, RefusesWhatIsNoPng) {
  EXPECT_FALSE(ui::decodeIcon({}));
  const std::string gif = "GIF89a\1\0\1\0\x80\0\0\0\0\0\xff\xff\xff!\xf9\4\1\0\0\0\0,";
  EXPECT_FALSE(ui::decodeIcon(std::as_bytes(std::span(gif))));
  std::vector<std::byte> zeros(1000);
  EXPECT_FALSE(ui::decodeIcon(zeros));
}

TEST(DecodeIcon, RefusesAFileCutAnywhereInItsPixels) {
  const std::vector<std::byte> png = makePng(rgba3x2());
  const std::size_t end = findChunk(png, "IEND") - 4;  // its length stands before the name
  for (std::size_t length = 0; length < end; ++length) {
    // A copy, so that a read past the end is one past an allocation.
    const std::vector<std::byte> cut(png.begin(), png.begin() + static_cast<long>(length));
    EXPECT_FALSE(ui::decodeIcon(cut)) << length << " of " << end << " bytes";
  }
}

TEST(DecodeIcon, RefusesDamageInHeaderAndPixels) {
  const std::vector<std::byte> png = makePng(rgba3x2());
  const std::size_t end = findChunk(png, "IEND") - 4;
  for (std::size_t at = 0; at < end; ++at) {
    std::vector<std::byte> damaged = png;
    damaged[at] ^= std::byte{0xFF};
    EXPECT_FALSE(ui::decodeIcon(damaged)) << "byte " << at << " of " << end;
  }
}

TEST(DecodeIcon, PrintsNothingAboutDamage) {
  std::vector<std::byte> png = makePng(rgba3x2());
  png[findChunk(png, "IDAT") + 6] ^= std::byte{0xFF};
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  EXPECT_FALSE(ui::decodeIcon(png));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace test
