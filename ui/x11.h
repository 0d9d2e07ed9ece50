#pragma once

// The one header of the toolkit that brings in Xlib. Included from .cpp files and other private
// headers only: Xlib defines None, Bool, Status and Success as macros, which would break
// application code.

#include <X11/Xft/Xft.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <memory>
#include <vector>

#include "ui/connection.h"
#include "ui/pixel_format.h"

namespace ui {

class FontSet;

/// The X side of a `Connection`.
struct Connection::Native {
  Native();
  /// Closes the fonts, then the display.
  ~Native();

  Display* display = nullptr;
  int screen = 0;
  Visual* visual = nullptr;
  Colormap colormap = 0;
  int depth = 0;
  PixelFormat pixelFormat;
  /// Never removed: handles hold indices.
  std::vector<std::unique_ptr<FontSet>> fontSets;
};

/// What a `Canvas` draws into. Owns nothing.
struct PaintTarget {
  Pixmap drawable;
  XftDraw* draw;
  GC gc;
  int width;
  int height;
};

}  // namespace ui
