#include "ui/window.h"

#include <X11/cursorfont.h>
#include <sys/time.h>

#include <algorithm>
#include <utility>

#include "ui/capture.h"
#include "ui/introduction.h"
#include "ui/startup_notification.h"
#include "ui/steady_clock.h"
#include "ui/window_native.h"
#include "ui/x_errors.h"

namespace ui {

namespace {

constexpr long kEventMask = KeyPressMask | ButtonPressMask | ButtonReleaseMask | LeaveWindowMask |
                            PointerMotionMask | ExposureMask | StructureNotifyMask |
                            FocusChangeMask;

/// What the first frame takes on a busy machine, and no more than users wait for a pointer.
constexpr std::int64_t kLongestStartupMs = 2000;

/// Number of `shape` in the X server's cursor font.
unsigned cursorGlyph(PointerShape shape) {
  switch (shape) {
    case PointerShape::Hand:
      return XC_hand2;
    case PointerShape::ResizeHorizontal:
      return XC_sb_h_double_arrow;
    case PointerShape::ResizeVertical:
      return XC_sb_v_double_arrow;
    case PointerShape::Arrow:
      break;
  }
  return XC_left_ptr;
}

}  // namespace

Window::Native::Native(Window& ownerWindow)
    : owner(ownerWindow),
      display(ownerWindow.connection_.native().display),
      clipboard(display),
      typedKeys(display) {}

Window::Native::~Native() {
  typedKeys.detach();
  backBuffer.reset();
  for (const Cursor cursor : cursors) {
    if (cursor) XFreeCursor(display, cursor);
  }
  if (gc) XFreeGC(display, gc);
  if (window) {
    XDestroyWindow(display, window);
    XFlush(display);
  }
}

bool Window::Native::makeWindow(int width, int height) {
  const Connection::Native& x = owner.connection_.native();
  XSetWindowAttributes attributes{};
  attributes.background_pixel = BlackPixel(display, x.screen);
  attributes.event_mask = kEventMask;
  // Keeps the old frame in place while a larger one is being painted; the default forgets it.
  attributes.bit_gravity = NorthWestGravity;

  ErrorTrap trap(display);
  const ::Window made =
      XCreateWindow(display, RootWindow(display, x.screen), 0, 0, static_cast<unsigned>(width),
                    static_cast<unsigned>(height), 0, x.depth, InputOutput, x.visual,
                    CWBackPixel | CWEventMask | CWBitGravity, &attributes);
  if (made == 0 || trap.caught()) return false;
  window = made;
  gc = makeGc(display, window);
  typedKeys.attach(window);
  return true;
}

void Window::Native::introduceToWindowManager() {
  wmDeleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(display, window, &wmDeleteWindow, 1);
  introduce(display, window);
}

void Window::Native::applyPointer(PointerShape shape) {
  Cursor& cursor = cursors[static_cast<std::size_t>(shape)];
  if (!cursor) cursor = XCreateFontCursor(display, cursorGlyph(shape));
  XDefineCursor(display, window, cursor);
}

Window::Window(Connection& connection)
    : connection_(connection), native_(std::make_unique<Native>(*this)) {}

Window::~Window() = default;

bool Window::create(const std::string& title, int width, int height) {
  if (native_->window) return false;
  width = std::max(1, width);
  height = std::max(1, height);
  if (!native_->makeWindow(width, height)) return false;
  width_ = width;
  height_ = height;
  setTitle(title);
  native_->introduceToWindowManager();
  if (startup_) startup_->announce(connection_, xid());
  native_->applyPointer(pointer_);
  return true;
}

void Window::setTitle(const std::string& title) {
  if (native_->window) setTitles(native_->display, native_->window, title);
}

void Window::setClass(const std::string& name, const std::string& className) {
  if (!native_->window) return;
  std::string nameCopy = name;  // Xlib takes them as pointers to non-const
  std::string classCopy = className;
  XClassHint hint{nameCopy.data(), classCopy.data()};
  XSetClassHint(native_->display, native_->window, &hint);
}

void Window::setMinSize(int width, int height) {
  if (!native_->window) return;
  XSizeHints hints{};
  hints.flags = PMinSize;
  hints.min_width = width;
  hints.min_height = height;
  XSetWMNormalHints(native_->display, native_->window, &hints);
}

void Window::show() {
  if (!native_->window) return;
  XMapWindow(native_->display, native_->window);
  XFlush(native_->display);
  startupDeadlineMs_ = steadyMs() + kLongestStartupMs;
}

void Window::setPointer(PointerShape shape) {
  if (shape == pointer_) return;
  pointer_ = shape;
  if (native_->window) native_->applyPointer(shape);
}

void Window::invalidate() {
  damage_.addAll();
  frameDue_ = true;
}

void Window::invalidate(const Rect& rect) {
  // Nothing is lost by that: one of another size is painted whole.
  const Rect seen = intersect(rect, {0, 0, width_, height_});
  if (seen.empty()) return;
  Damage& frame = prepared_ ? *prepared_ : damage_;
  frame.add(seen);
  if (!prepared_) frameDue_ = true;
}

void Window::requestFrame() { frameDue_ = true; }

void Window::post(Task task) {
  tasks_.append(std::move(task));
  wakePipe_.wake();
}

void Window::setTick(int intervalMs, std::function<void()> onTick) {
  tick_.set(intervalMs, std::move(onTick), steadyMs());
}

void Window::stopTick() { tick_.stop(); }

void Window::quit() { running_ = false; }

unsigned long Window::xid() const { return native_->window; }

std::int64_t Window::now() {
  timeval time{};
  gettimeofday(&time, nullptr);
  return std::int64_t{time.tv_sec} * 1000 + time.tv_usec / 1000;
}

void Window::setClipboardText(const std::string& text) {
  native_->clipboard.offer(text, native_->window);
}

const std::string& Window::clipboardText() const { return native_->clipboard.text(); }

bool Window::fitBackBuffer() {
  const int width = std::max(1, width_);
  const int height = std::max(1, height_);
  std::unique_ptr<BackBuffer>& buffer = native_->backBuffer;
  if (buffer && buffer->width() == width && buffer->height() == height) return true;
  if (!native_->window) return false;
  damage_.addAll();  // nothing is in it yet
  return BackBuffer::fit(buffer, connection_, native_->window, width, height);
}

void Window::paint() {
  frameDue_ = false;
  if (!fitBackBuffer()) return;
  const std::vector<Rect> parts = prepareFrame();
  for (const Rect& part : parts) paintPart(part);
  for (const Rect& part : parts) showPart(part);
  XFlush(native_->display);
  if (exposed_) endStartup();
}

void Window::endStartup() {
  if (auto* startup = std::exchange(startup_, nullptr)) startup->end(connection_, xid());
}

/// Returns what is to be painted.
std::vector<Rect> Window::prepareFrame() {
  Damage damage = std::exchange(damage_, {});
  prepared_ = &damage;
  if (onPrepare) onPrepare();
  prepared_ = nullptr;
  return damage.within({0, 0, width_, height_});
}

void Window::paintPart(const Rect& part) {
  const BackBuffer& buffer = *native_->backBuffer;
  const PaintTarget target = {buffer.pixmap(), buffer.draw(), native_->gc, buffer.width(),
                              buffer.height()};
  Canvas canvas(connection_, target);
  canvas.pushClip(part);
  if (onPaint) onPaint(canvas);
  canvas.popClip();
}

void Window::showPart(const Rect& part) {
  XCopyArea(native_->display, native_->backBuffer->pixmap(), native_->window, native_->gc, part.x,
            part.y, static_cast<unsigned>(part.w), static_cast<unsigned>(part.h), part.x, part.y);
}

bool Window::capture(const std::string& path) const {
  const BackBuffer* buffer = native_->backBuffer.get();
  if (!buffer || width_ < 1 || height_ < 1) return false;
  // The window grew since the last paint: the buffer lacks the rest of the picture.
  if (buffer->width() < width_ || buffer->height() < height_) return false;
  struct Destroy {
    void operator()(XImage* image) const { XDestroyImage(image); }
  };
  const std::unique_ptr<XImage, Destroy> image(
      XGetImage(native_->display, buffer->pixmap(), 0, 0, static_cast<unsigned>(width_),
                static_cast<unsigned>(height_), AllPlanes, ZPixmap));
  if (!image) return false;
  return writePpm(path, width_, height_, connection_.native().pixelFormat,
                  [image = image.get()](int x, int y) { return XGetPixel(image, x, y); });
}

}  // namespace ui
