#include "tests/app/whole_frame_watch.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "ui/back_buffer.h"
#include "ui/x11.h"

namespace test {

namespace {

constexpr std::size_t kNotesTold = 6;
constexpr unsigned long kColours = 0xFFFFFF;

struct DestroyImage {
  void operator()(XImage* image) const { XDestroyImage(image); }
};
using Image = std::unique_ptr<XImage, DestroyImage>;

Image imageOf(Display* display, Drawable drawable, int width, int height) {
  return Image(XGetImage(display, drawable, 0, 0, static_cast<unsigned>(width),
                         static_cast<unsigned>(height), AllPlanes, ZPixmap));
}

std::pair<int, int> sizeOf(Display* display, Drawable drawable) {
  ::Window root = 0;
  int x = 0;
  int y = 0;
  unsigned width = 0;
  unsigned height = 0;
  unsigned border = 0;
  unsigned depth = 0;
  XGetGeometry(display, drawable, &root, &x, &y, &width, &height, &border, &depth);
  return {static_cast<int>(width), static_cast<int>(height)};
}

/// Keeps other clients waiting, so that none resizes the window between two looks at it.
class ServerToOneself {
 public:
  explicit ServerToOneself(Display* display) : display_(display) { XGrabServer(display_); }
  ~ServerToOneself() {
    XUngrabServer(display_);
    XFlush(display_);
  }
  ServerToOneself(const ServerToOneself&) = delete;
  ServerToOneself& operator=(const ServerToOneself&) = delete;

 private:
  Display* display_;
};

/// What holds all pixels that differ; nothing when none does.
std::optional<ui::Rect> difference(XImage* a, XImage* b) {
  std::optional<ui::Rect> found;
  for (int y = 0; y < a->height; ++y) {
    const std::ptrdiff_t row = std::ptrdiff_t{y} * a->bytes_per_line;
    if (std::equal(a->data + row, a->data + row + a->bytes_per_line, b->data + row)) continue;
    for (int x = 0; x < a->width; ++x) {
      if (((XGetPixel(a, x, y) ^ XGetPixel(b, x, y)) & kColours) == 0) continue;
      const ui::Rect pixel{x, y, 1, 1};
      found = found ? ui::bounds(*found, pixel) : pixel;
    }
  }
  return found;
}

std::string text(const ui::Rect& rect) {
  return std::to_string(rect.w) + " x " + std::to_string(rect.h) + " at " + std::to_string(rect.x) +
         ", " + std::to_string(rect.y);
}

}  // namespace

WholeFrameWatch::WholeFrameWatch(ui::Connection& connection, ui::Window& window, int interval)
    : connection_(connection),
      window_(window),
      interval_(interval),
      prepareParts_(window.onPrepare),
      paintPart_(window.onPaint) {
  window_.onPrepare = [this] { prepare(); };
  window_.onPaint = [this](ui::Canvas& canvas) { paint(canvas); };
}

WholeFrameWatch::~WholeFrameWatch() {
  window_.onPrepare = prepareParts_;
  window_.onPaint = paintPart_;
}

void WholeFrameWatch::note(const std::string& what) { notes_.push_back(what); }

std::string WholeFrameWatch::recently() const {
  std::string all;
  const std::size_t told = std::min(kNotesTold, notes_.size());
  for (std::size_t i = notes_.size() - told; i < notes_.size(); ++i) all += notes_[i] + "; ";
  return all;
}

void WholeFrameWatch::prepare() {
  compare();
  countFrame();
  prepareParts_();
  if (++frames_ % interval_ != 0) return;
  const int width = window_.width();
  const int height = window_.height();
  whole_ = ui::BackBuffer::create(connection_, window_.xid(), width, height);
  if (!whole_) return;
  Display* display = connection_.native().display;
  GC gc = ui::makeGc(display, whole_->pixmap());
  const ui::PaintTarget target = {whole_->pixmap(), whole_->draw(), gc, width, height};
  ui::Canvas canvas(connection_, target);
  canvas.pushClip({0, 0, width, height});
  paintPart_(canvas);
  XFreeGC(display, gc);
}

void WholeFrameWatch::paint(ui::Canvas& canvas) {
  paintedPixels_ += long{canvas.clip().w} * canvas.clip().h;
  paintPart_(canvas);
}

void WholeFrameWatch::countFrame() {
  const long painted = std::exchange(paintedPixels_, 0);
  if (painted > 0 && painted < long{window_.width()} * window_.height() / 4) ++partial_;
}

void WholeFrameWatch::compare() {
  const std::unique_ptr<ui::BackBuffer> whole = std::move(whole_);
  Display* display = connection_.native().display;
  if (!whole) return;
  const ServerToOneself noOthers(display);
  // A window that has another size by now shows what the server has made of the frame.
  if (sizeOf(display, window_.xid()) != std::pair(whole->width(), whole->height())) return;
  const Image expected = imageOf(display, whole->pixmap(), whole->width(), whole->height());
  const Image seen = imageOf(display, window_.xid(), whole->width(), whole->height());
  ++compared_;
  const auto differing = difference(expected.get(), seen.get());
  if (differing) differences_.push_back(text(*differing) + " after " + recently());
}

}  // namespace test
