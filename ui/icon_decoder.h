#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "ui/colour.h"

namespace ui {

/// A decoded icon, 1 to 4096 pixels each way.
struct IconImage {
  int width = 0;
  int height = 0;
  std::vector<Colour> pixels;  // row by row without padding, rows top to bottom
};

/// Decodes a whole PNG file of any colour type and depth; 16-bit samples lose their low half.
/// Nothing when `png` is no PNG, is damaged or too short, or holds more than 4096 pixels one way.
/// Prints nothing.
std::optional<IconImage> decodeIcon(std::span<const std::byte> png);

}  // namespace ui
