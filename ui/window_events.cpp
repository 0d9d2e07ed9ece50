#include <poll.h>

#include <array>

#include "ui/input_events.h"
#include "ui/introduction.h"
#include "ui/steady_clock.h"
#include "ui/window_native.h"

// The event loop of the window, and what it does with each event.

namespace ui {

namespace {
template <typename Event>
Event at(std::int64_t nowMs, Event event) {
  event.timeMs = nowMs;
  return event;
}
}  // namespace

void Window::run() {
  running_ = true;
  while (running_) {
    tasks_.runAll();
    if (!running_) return;
    dispatchPending();
    if (!running_) return;
    tasks_.runAll();
    tick_.runIfDue(steadyMs());
    if (frameDue_) paint();
    if (startup_ && steadyMs() >= startupDeadlineMs_) endStartup();
    // Xlib may have read events into its queue while it waited for an answer, where no wait on the
    // descriptor sees them.
    if (running_ && XPending(native_->display) == 0) waitForWork();
  }
}

void Window::dispatchPending() {
  while (running_ && XPending(native_->display) > 0) {
    XEvent event;
    XNextEvent(native_->display, &event);
    native_->dispatch(event);
  }
}

/// Sleeps until X has something to say, a task is posted or the tick is due.
void Window::waitForWork() {
  // poll and not select: a program started with many descriptors open gets one at or above
  // FD_SETSIZE here, and select would write beyond its sets. poll passes over a descriptor of -1.
  std::array<pollfd, 2> descriptors = {
      {{ConnectionNumber(native_->display), POLLIN, 0}, {wakePipe_.readEnd(), POLLIN, 0}}};
  const int ready = poll(descriptors.data(), descriptors.size(), tick_.msUntilDue(steadyMs()));
  // A failure, such as an interrupting signal, just ends the wait.
  if (ready > 0 && descriptors[1].revents & POLLIN) wakePipe_.drain();
}

void Window::resized(int width, int height) {
  if (width == width_ && height == height_) return;
  width_ = width;
  height_ = height;
  if (onResize) onResize(width, height);
  invalidate();
}

void Window::close() {
  if (onCloseQuery && !onCloseQuery()) return;
  if (onClose) onClose();
  running_ = false;
}

void Window::Native::dispatch(XEvent& event) {
  switch (event.type) {
    case KeyPress:
      return handleKey(event.xkey);
    case ButtonPress:
      return handlePress(event.xbutton);
    case ButtonRelease:
      return handleRelease(event.xbutton);
    case MotionNotify:
      return handleMotion(event);
    case LeaveNotify:
      if (owner.onLeave) owner.onLeave();
      return;
    case Expose:
      return handleExpose(event.xexpose);
    case ConfigureNotify:
      return owner.resized(event.xconfigure.width, event.xconfigure.height);
    case ClientMessage:
      return handleClientMessage(event.xclient);
    case SelectionClear:
      return clipboard.handleClear(event.xselectionclear);
    case SelectionRequest:
      return clipboard.answer(event.xselectionrequest);
    default:
      return;
  }
}

/// The server tells of all that it lost in a series of rectangles: the frame comes after the last.
void Window::Native::handleExpose(const XExposeEvent& event) {
  owner.exposed_ = true;
  owner.damage_.add(intersect({event.x, event.y, event.width, event.height},
                              {0, 0, owner.width_, owner.height_}));
  if (event.count == 0) owner.requestFrame();
}

void Window::Native::handleClientMessage(const XClientMessageEvent& event) {
  if (static_cast<Atom>(event.data.l[0]) == wmDeleteWindow) owner.close();
}

void Window::Native::handleKey(XKeyEvent& event) {
  setUserTime(display, window, event.time);
  KeyEvent key = at(steadyMs(), keyEventOf(event));
  key.typed = typedKeys.typedBy(event, key.text);
  if (owner.onKey) owner.onKey(key);
}

void Window::Native::handlePress(const XButtonEvent& event) {
  setUserTime(display, window, event.time);
  if (const auto step = wheelStepOf(event.button)) {
    if (owner.onWheel) owner.onWheel(at(steadyMs(), mouseEventOf(event, 1)), step->dx, step->dy);
    return;
  }
  const std::int64_t time = steadyMs();
  const int count = clicks.press(event.x, event.y, time);
  if (owner.onPress) owner.onPress(at(time, mouseEventOf(event, count)));
}

void Window::Native::handleRelease(const XButtonEvent& event) {
  if (wheelStepOf(event.button)) return;
  if (owner.onRelease) owner.onRelease(at(steadyMs(), releaseEventOf(event, clicks.count())));
}

void Window::Native::handleMotion(XEvent& event) {
  // Only the newest position counts: a view that takes longer than the pointer's rate must not fall
  // behind.
  while (XCheckTypedWindowEvent(display, window, MotionNotify, &event)) {
  }
  if (owner.onMotion) owner.onMotion(at(steadyMs(), mouseEventOf(event.xmotion)));
}

}  // namespace ui
