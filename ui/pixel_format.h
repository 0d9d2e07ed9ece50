#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ui {

/// Where a channel lies in a pixel value.
struct PixelChannel {
  unsigned long mask = 0;

  /// Zero bits below the lowest set bit; 0 for a zero mask.
  unsigned shift() const;
  /// An 8-bit intensity spread over the channel's width, rounded to nearest: 0 stays 0, 255 becomes
  /// all ones.
  unsigned long place(std::uint32_t intensity) const;
};

/// How the screen lays out a pixel of 32 bits.
struct PixelFormat {
  PixelChannel red;
  PixelChannel green;
  PixelChannel blue;
  /// Bits outside the channels that are to be set in every pixel. On a screen of depth 32 these are
  /// the alpha bits, without which a compositor shows an image as transparent.
  unsigned long opaqueBits = 0;

  static PixelFormat of(int depth, unsigned long redMask, unsigned long greenMask,
                        unsigned long blueMask);

  /// True when a value 0x00RRGGBB is a pixel as it stands.
  bool isPlainRgb() const;
  /// The pixel for 0x..RRGGBB; the top byte is ignored.
  unsigned long pixelOf(std::uint32_t rgb) const;
  /// Converts min(from.size(), to.size()) pixels.
  void convert(std::span<const std::uint32_t> from, std::span<std::uint32_t> to) const;
};

}  // namespace ui
