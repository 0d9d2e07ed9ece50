#pragma once

#include <cstdint>

namespace ui {

/// 0xAARRGGBB, not premultiplied; an alpha of 0xFF is opaque, 0 invisible.
using Colour = std::uint32_t;

/// The alpha of a colour that hides what is below it.
inline constexpr Colour kOpaque = 0xFF000000;

constexpr std::uint32_t alphaOf(Colour colour) { return colour >> 24; }

/// A colour as XRender takes it: 16 bits a channel, the colour channels multiplied by alpha.
struct PremultipliedColour {
  std::uint16_t red;
  std::uint16_t green;
  std::uint16_t blue;
  std::uint16_t alpha;

  bool operator==(const PremultipliedColour&) const = default;
};

constexpr PremultipliedColour premultiplied(Colour colour) {
  const std::uint32_t alpha = alphaOf(colour);
  const auto channel = [&](unsigned shift) {
    return static_cast<std::uint16_t>(((colour >> shift) & 0xFF) * alpha * 257 / 255);
  };
  return {channel(16), channel(8), channel(0), static_cast<std::uint16_t>(alpha * 257)};
}

}  // namespace ui
