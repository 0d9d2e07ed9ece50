#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ui/colour.h"
#include "ui/geometry.h"

namespace ui {

class Connection;
struct PaintTarget;

/// The surface that a window hands to its paint callable: the window's back buffer, in device
/// pixels, and a stack of clip rectangles that nested views push and pop. Everything drawn obeys
/// the top of the stack. All shapes are filled rectangles or made of them, without anti-aliasing.
///
/// Lives for one paint, on the window thread. Nothing drawn reports an error.
class Canvas {
 public:
  /// `target` outlives the canvas. The stack starts empty: the whole buffer is drawable.
  Canvas(Connection& connection, const PaintTarget& target);

  Connection& connection() const { return connection_; }
  int width() const;
  int height() const;
  /// The X handles; defined in ui/x11.h for the toolkit's own use.
  const PaintTarget& target() const { return target_; }

  /// The rectangle that drawing is confined to. Views skip what lies outside.
  Rect clip() const;
  /// Confines drawing to what `rect` and the clip in force share, which may be nothing.
  void pushClip(const Rect& rect);
  /// Undoes the last `pushClip`; harmless on an empty stack.
  void popClip();

  /// Whether a ring is seen round what has the keyboard, as it is at first. Whoever draws one asks.
  bool showsRings() const { return showsRings_; }
  void setShowsRings(bool shows) { showsRings_ = shows; }

  /// Fills `rect`; a translucent colour blends over what is there.
  void fillRect(const Rect& rect, Colour colour);
  /// An outline one pixel wide, just inside `rect`. Its corners are filled twice, which shows with
  /// translucent colours.
  void strokeRect(const Rect& rect, Colour colour);
  /// A horizontal or vertical line one pixel wide, both ends included. A slanted line draws
  /// nothing.
  void line(int x1, int y1, int x2, int y2, Colour colour);
  /// Fills `rect` with its corners rounded off; costs four rectangles a row of the radius. The
  /// radius is at most half of either side; below 1 the corners are square.
  void fillRoundRect(const Rect& rect, int radius, Colour colour);
  /// Copies a block of `w` x `h` pixels to (x, y). `pixels` holds them row by row without padding,
  /// each 0x00RRGGBB in the machine's byte order; the top byte is ignored. Fewer than w * h of them
  /// draw nothing.
  void putPixels(int x, int y, std::span<const std::uint32_t> pixels, int w, int h);

 private:
  void applyClip();
  void putVisible(const Rect& block, const Rect& visible, std::span<const std::uint32_t> pixels);

  Connection& connection_;
  const PaintTarget& target_;
  std::vector<Rect> clips_;
  bool showsRings_ = true;
};

/// The rectangles that make up `rect` with corners of `radius`, no two of them overlapping: three
/// bands, then four runs for each corner row, sampled at pixel centres. One rectangle when the
/// radius, limited to half of either side, is below 1; none when `rect` is empty.
std::vector<Rect> roundRectRuns(const Rect& rect, int radius);

}  // namespace ui
