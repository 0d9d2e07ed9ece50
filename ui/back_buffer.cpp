#include "ui/back_buffer.h"

#include <algorithm>

#include "ui/x_errors.h"

namespace ui {

namespace {

constexpr int kStep = 256;
constexpr int kLongestSide = 32767;  // of any pixmap

/// The pixmap's side for a buffer of this one.
int withRoom(int side) {
  if (side < kStep) return side;
  return std::max(side, std::min((side + kStep - 1) / kStep * kStep, kLongestSide));
}

}  // namespace

GC makeGc(Display* display, Drawable drawable) {
  XGCValues values{};
  values.graphics_exposures = False;
  return XCreateGC(display, drawable, GCGraphicsExposures, &values);
}

std::unique_ptr<BackBuffer> BackBuffer::create(const Connection& connection, ::Window window,
                                               int width, int height) {
  const Connection::Native& x = connection.native();
  ErrorTrap trap(x.display);
  const Pixmap pixmap =
      XCreatePixmap(x.display, window, static_cast<unsigned>(withRoom(width)),
                    static_cast<unsigned>(withRoom(height)), static_cast<unsigned>(x.depth));
  // Xlib names a pixmap before the server has made it.
  if (trap.caught()) return nullptr;
  std::unique_ptr<BackBuffer> buffer(new BackBuffer(x.display, pixmap, width, height));
  buffer->draw_ = XftDrawCreate(x.display, pixmap, x.visual, x.colormap);
  return buffer->draw_ ? std::move(buffer) : nullptr;
}

bool BackBuffer::fit(std::unique_ptr<BackBuffer>& buffer, const Connection& connection,
                     ::Window window, int width, int height) {
  if (buffer && buffer->takeSize(width, height)) return true;
  buffer.reset();  // first, so that two of them never exist at once
  buffer = create(connection, window, width, height);
  return buffer != nullptr;
}

/// Where a smaller pixmap would do, it is not kept.
bool BackBuffer::takeSize(int width, int height) {
  if (withRoom(width) != withRoom(width_) || withRoom(height) != withRoom(height_)) return false;
  width_ = width;
  height_ = height;
  return true;
}

BackBuffer::BackBuffer(Display* display, Pixmap pixmap, int width, int height)
    : display_(display), pixmap_(pixmap), width_(width), height_(height) {}

BackBuffer::~BackBuffer() {
  if (draw_) XftDrawDestroy(draw_);
  XFreePixmap(display_, pixmap_);
}

}  // namespace ui
