#include "ui/canvas.h"

#include <X11/extensions/Xrender.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

#include "ui/x11.h"

namespace ui {

namespace {

/// `rect` lies inside a drawable, whose sides the protocol limits to 16 bits.
XRectangle toXRectangle(const Rect& rect) {
  return {static_cast<short>(rect.x), static_cast<short>(rect.y),
          static_cast<unsigned short>(std::max(0, rect.w)),
          static_cast<unsigned short>(std::max(0, rect.h))};
}

/// A description of `pixels`, rows of `w` of them, for Xlib. Xlib reads the pixels and owns
/// nothing.
XImage imageOver(const std::uint32_t* pixels, int w, int h, const Connection::Native& x) {
  XImage image{};
  image.width = w;
  image.height = h;
  image.format = ZPixmap;
  image.data = const_cast<char*>(reinterpret_cast<const char*>(pixels));
  image.byte_order = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
  image.bitmap_unit = 32;
  image.bitmap_bit_order = image.byte_order;
  image.bitmap_pad = 32;
  image.depth = x.depth;  // must equal the drawable's, else BadMatch
  image.bytes_per_line = w * 4;
  image.bits_per_pixel = 32;
  image.red_mask = x.pixelFormat.red.mask;
  image.green_mask = x.pixelFormat.green.mask;
  image.blue_mask = x.pixelFormat.blue.mask;
  return image;
}

}  // namespace

std::vector<Rect> roundRectRuns(const Rect& rect, int radius) {
  if (rect.empty()) return {};
  const auto [x, y, w, h] = rect;
  const int r = std::min({h / 2, radius, w / 2});
  if (r < 1) return {rect};

  std::vector<Rect> runs = {
      {x + r, y, w - 2 * r, h}, {x, y + r, r, h - 2 * r}, {x + w - r, y + r, r, h - 2 * r}};
  for (int i = 0; i < r; ++i) {
    const double dy = (r - i) - 0.5;
    const double squared = static_cast<double>(r) * r - dy * dy;
    const int span = squared > 0 ? static_cast<int>(std::sqrt(squared) + 0.5) : 0;
    if (span < 1) continue;
    runs.push_back({x + r - span, y + i, span, 1});
    runs.push_back({x + w - r, y + i, span, 1});
    runs.push_back({x + r - span, y + h - 1 - i, span, 1});
    runs.push_back({x + w - r, y + h - 1 - i, span, 1});
  }
  return runs;
}

Canvas::Canvas(Connection& connection, const PaintTarget& target)
    : connection_(connection), target_(target) {}

int Canvas::width() const { return target_.width; }
int Canvas::height() const { return target_.height; }

Rect Canvas::clip() const {
  return clips_.empty() ? Rect{0, 0, target_.width, target_.height} : clips_.back();
}

void Canvas::pushClip(const Rect& rect) {
  clips_.push_back(intersect(rect, clip()));
  applyClip();
}

void Canvas::popClip() {
  if (!clips_.empty()) clips_.pop_back();
  applyClip();
}

void Canvas::applyClip() {
  XRectangle rectangle = toXRectangle(clip());
  XftDrawSetClipRectangles(target_.draw, 0, 0, &rectangle, 1);
  XSetClipRectangles(connection_.native().display, target_.gc, 0, 0, &rectangle, 1, Unsorted);
}

void Canvas::fillRect(const Rect& rect, Colour colour) {
  // An invisible colour is dropped here because the fallback below cannot blend. The server would
  // clip as well, but the protocol cuts coordinates to 16 bits: what lies far outside the window
  // must not wrap around into it.
  const Rect visible = intersect(rect, clip());
  if (visible.empty() || alphaOf(colour) == 0) return;

  const XRectangle r = toXRectangle(visible);
  const Connection::Native& x = connection_.native();
  const auto [red, green, blue, alpha] = premultiplied(colour);
  const XftColor xftColour = {x.pixelFormat.pixelOf(colour), {red, green, blue, alpha}};
  // Xlib joins neighbouring fills of one colour into one request by itself.
  if (const Picture picture = XftDrawPicture(target_.draw)) {
    XRenderFillRectangle(x.display, PictOpOver, picture, &xftColour.color, r.x, r.y, r.width,
                         r.height);
  } else {
    XftDrawRect(target_.draw, &xftColour, r.x, r.y, r.width, r.height);
  }
}

void Canvas::strokeRect(const Rect& rect, Colour colour) {
  if (rect.empty()) return;
  const auto [x, y, w, h] = rect;
  fillRect({x, y, w, 1}, colour);
  fillRect({x, y + h - 1, w, 1}, colour);
  fillRect({x, y, 1, h}, colour);
  fillRect({x + w - 1, y, 1, h}, colour);
}

void Canvas::line(int x1, int y1, int x2, int y2, Colour colour) {
  if (y1 == y2) {
    fillRect({std::min(x1, x2), y1, std::abs(x1 - x2) + 1, 1}, colour);
  } else if (x1 == x2) {
    fillRect({x1, std::min(y1, y2), 1, std::abs(y1 - y2) + 1}, colour);
  }
}

void Canvas::fillRoundRect(const Rect& rect, int radius, Colour colour) {
  for (const Rect& run : roundRectRuns(rect, radius)) fillRect(run, colour);
}

void Canvas::putPixels(int x, int y, std::span<const std::uint32_t> pixels, int w, int h) {
  const Rect block{x, y, w, h};
  if (block.empty()) return;
  if (pixels.size() < static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) return;
  // Only the visible part travels: a view that repaints a small clip sends a small image.
  const Rect visible = intersect(block, clip());
  if (!visible.empty()) putVisible(block, visible, pixels);
}

void Canvas::putVisible(const Rect& block, const Rect& visible,
                        std::span<const std::uint32_t> pixels) {
  const Connection::Native& x = connection_.native();
  int sourceY = visible.y - block.y;
  const auto rowLength = static_cast<std::size_t>(block.w);
  std::vector<std::uint32_t> converted;
  if (!x.pixelFormat.isPlainRgb()) {
    pixels = pixels.subspan(static_cast<std::size_t>(sourceY) * rowLength,
                            static_cast<std::size_t>(visible.h) * rowLength);
    converted.resize(pixels.size());
    x.pixelFormat.convert(pixels, converted);
    pixels = converted;
    sourceY = 0;
  }
  XImage image = imageOver(pixels.data(), block.w, sourceY + visible.h, x);
  if (!XInitImage(&image)) return;
  XPutImage(x.display, target_.drawable, target_.gc, &image, visible.x - block.x, sourceY,
            visible.x, visible.y, static_cast<unsigned>(visible.w),
            static_cast<unsigned>(visible.h));
}

}  // namespace ui
