#include "ui/server_image.h"

#include <type_traits>
#include <utility>

#include "ui/back_buffer.h"
#include "ui/x11.h"

namespace ui {

namespace {

struct FreeGc {
  Display* display;
  void operator()(GC gc) const { XFreeGC(display, gc); }
};
using GcPtr = std::unique_ptr<std::remove_pointer_t<GC>, FreeGc>;

}  // namespace

ServerImage::ServerImage(Connection& connection) : connection_(connection) {}

ServerImage::~ServerImage() = default;

bool ServerImage::reserve(int width, int height) {
  const Connection::Native& x = connection_.native();
  return BackBuffer::fit(buffer_, connection_, RootWindow(x.display, x.screen), width, height);
}

void ServerImage::set(std::span<const std::uint32_t> pixels, int width, int height) {
  const bool complete =
      width > 0 && height > 0 &&
      pixels.size() >= static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (!complete || !reserve(width, height)) {
    buffer_.reset();
    return;
  }
  put({0, 0, width, height}, pixels);
}

void ServerImage::replace(const Rect& part, std::span<const std::uint32_t> pixels) {
  if (buffer_) put(part, pixels);
}

void ServerImage::put(const Rect& part, std::span<const std::uint32_t> pixels) {
  Display* display = connection_.native().display;
  const GcPtr gc(makeGc(display, buffer_->pixmap()), FreeGc{display});
  const PaintTarget target = {buffer_->pixmap(), buffer_->draw(), gc.get(), width(), height()};
  Canvas(connection_, target).putPixels(part.x, part.y, pixels, part.w, part.h);
}

void ServerImage::takeFrom(ServerImage& other) { buffer_ = std::move(other.buffer_); }

void ServerImage::clear() { buffer_.reset(); }

int ServerImage::width() const { return buffer_ ? buffer_->width() : 0; }
int ServerImage::height() const { return buffer_ ? buffer_->height() : 0; }

void ServerImage::draw(Canvas& canvas, int x, int y) const {
  const Rect visible = intersect({x, y, width(), height()}, canvas.clip());
  if (visible.empty()) return;
  const PaintTarget& target = canvas.target();
  XCopyArea(connection_.native().display, buffer_->pixmap(), target.drawable, target.gc,
            visible.x - x, visible.y - y, static_cast<unsigned>(visible.w),
            static_cast<unsigned>(visible.h), visible.x, visible.y);
}

}  // namespace ui
