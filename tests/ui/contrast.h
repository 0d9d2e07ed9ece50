#pragma once

#include <algorithm>
#include <cmath>

#include "ui/colour.h"

namespace test {

/// How bright an opaque colour looks, from 0 to 1: the relative luminance of WCAG 2.
inline double luminance(ui::Colour colour) {
  const auto channel = [&](int shift) {
    const double value = (colour >> shift & 0xFF) / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * channel(16) + 0.7152 * channel(8) + 0.0722 * channel(0);
}

/// WCAG's contrast ratio, from 1 to 21. Text takes 4.5, lines and large signs 3.
inline double contrast(ui::Colour a, ui::Colour b) {
  const double lighter = std::max(luminance(a), luminance(b));
  const double darker = std::min(luminance(a), luminance(b));
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace test
