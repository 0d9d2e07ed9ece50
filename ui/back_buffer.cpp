#include "ui/back_buffer.h"

#include "ui/x_errors.h"

namespace ui {

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
      XCreatePixmap(x.display, window, static_cast<unsigned>(width), static_cast<unsigned>(height),
                    static_cast<unsigned>(x.depth));
  // Xlib names a pixmap before the server has made it.
  if (trap.caught()) return nullptr;
  std::unique_ptr<BackBuffer> buffer(new BackBuffer(x.display, pixmap, width, height));
  buffer->draw_ = XftDrawCreate(x.display, pixmap, x.visual, x.colormap);
  return buffer->draw_ ? std::move(buffer) : nullptr;
}

BackBuffer::BackBuffer(Display* display, Pixmap pixmap, int width, int height)
    : display_(display), pixmap_(pixmap), width_(width), height_(height) {}

BackBuffer::~BackBuffer() {
  if (draw_) XftDrawDestroy(draw_);
  XFreePixmap(display_, pixmap_);
}

}  // namespace ui
