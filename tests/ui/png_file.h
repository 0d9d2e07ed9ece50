#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

/// A PNG file to be made. The rows are as the format has them: samples packed, most significant
/// bits and bytes first, each row padded to a whole byte.
struct PngFile {
  int width = 1;
  int height = 1;
  /// One of PNG_COLOR_TYPE_*, and a depth that goes with it.
  int colourType = 0;
  int bitDepth = 8;
  std::vector<std::uint8_t> rows = {};
  bool interlaced = false;
  /// Red, green and blue of each colour; for palette images only.
  std::vector<std::array<std::uint8_t, 3>> palette = {};
  /// What the tRNS chunk holds, none when empty: an alpha for each of the first colours of a
  /// palette, otherwise the one grey, or the red, green and blue, that is invisible.
  std::vector<std::uint16_t> transparency = {};
};

/// The whole file. Ends the program when libpng refuses to write it.
std::vector<std::byte> makePng(const PngFile& file);

}  // namespace test
