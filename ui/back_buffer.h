#pragma once

#include <memory>

#include "ui/x11.h"

namespace ui {

/// A GC for drawables like `drawable`, for the caller to free. The server does not report copies
/// that are made with it: nobody would wait for these events, one a copy.
GC makeGc(Display* display, Drawable drawable);

/// The pixmap a window is painted in before it is shown, with its Xft draw. A large one has some
/// room beside and below, so that an edge that is dragged does not take a new one at every step:
/// the memory is fresh each time, at 3840 x 2160 some 33 MB.
class BackBuffer {
 public:
  /// A buffer of `width` x `height` (at least 1 each) for `window`. Null when the server has no
  /// room for it or no draw can be made on it. Waits for the server's answer.
  static std::unique_ptr<BackBuffer> create(const Connection& connection, ::Window window,
                                            int width, int height);
  /// Has `buffer` be one of that size: the same where that has room, or a new one, for which the
  /// old one goes first. Of another size than before there is nothing certain in it. False when
  /// there is none, as with `create`.
  static bool fit(std::unique_ptr<BackBuffer>& buffer, const Connection& connection,
                  ::Window window, int width, int height);
  ~BackBuffer();
  BackBuffer(const BackBuffer&) = delete;
  BackBuffer& operator=(const BackBuffer&) = delete;

  Pixmap pixmap() const { return pixmap_; }
  XftDraw* draw() const { return draw_; }
  int width() const { return width_; }
  int height() const { return height_; }

 private:
  BackBuffer(Display* display, Pixmap pixmap, int width, int height);
  bool takeSize(int width, int height);

  Display* display_;
  Pixmap pixmap_;
  XftDraw* draw_ = nullptr;
  int width_;
  int height_;
};

}  // namespace ui
