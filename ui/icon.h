#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ui/colour.h"
#include "ui/icon_data.h"
#include "ui/icon_decoder.h"

namespace ui {

class Canvas;

/// The program's icon, for drawing inside its window at any size. Decoded on first use; when that
/// fails it is never tried again and nothing is drawn. Window thread only.
class Icon {
 public:
  /// A copy of the icon made ready for `Canvas::putPixels`.
  struct Scaled {
    int size;
    Colour background;
    std::vector<std::uint32_t> pixels;  // size * size of them, 0x00RRGGBB
  };

  /// `png` is a whole PNG file of up to 4096 x 4096 pixels; its bytes outlive the icon.
  explicit Icon(std::span<const std::byte> png = embeddedIcon()) : png_(png) {}

  /// Decodes on the first call. Returns whether there is a picture.
  bool load();
  /// Draws the icon as a square of `size` device pixels with its upper left corner at (x, y), on
  /// `background`, whose alpha is ignored. Draws nothing when `size` is below 1.
  void draw(Canvas& canvas, int x, int y, int size, Colour background);

  /// The copies kept for the next frames, oldest first: those last made, four at most.
  const std::vector<Scaled>& scaled() const { return scaled_; }

 private:
  const Scaled& scaledTo(int size, Colour background);

  std::span<const std::byte> png_;
  bool loaded_ = false;
  bool tried_ = false;
  IconImage image_;
  std::vector<Scaled> scaled_;
};

/// `image` as size * size pixels, 0x00RRGGBB, laid over `background`. A box filter: every pixel is
/// the mean of the source pixels that it covers, weighted by alpha, so that the colour of an
/// invisible pixel does not show; enlarging repeats pixels. `size` is at least 1.
std::vector<std::uint32_t> flattened(const IconImage& image, int size, Colour background);

}  // namespace ui
