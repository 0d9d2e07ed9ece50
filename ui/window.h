#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/damage.h"
#include "ui/input.h"
#include "ui/task_queue.h"
#include "ui/tick.h"
#include "ui/wake_pipe.h"

namespace ui {

class StartupNotification;

/// The program's top-level window and its event loop. The application sets the callables, each of
/// which may be left empty; one that is running must not replace itself.
///
/// Everything is painted into a back buffer, which holds the whole frame, and shown from there, at
/// most once a turn of the loop. A frame paints and shows no more than what was invalidated. Sizes
/// are device pixels. All of it belongs to the thread that calls `run`, the window thread, except
/// `post`.
class Window {
 public:
  /// A frame is due: whatever is costly or changes state, such as layout, is done here, once for
  /// all that happened since the last frame. `onPaint` follows, unless there is nothing to paint.
  std::function<void()> onPrepare;
  /// Draws the part of the window that the canvas is confined to: once for each rectangle that is
  /// to be painted again, each time as if all of the window were drawn.
  std::function<void(Canvas&)> onPaint;
  /// Buttons other than the wheel.
  std::function<void(const MouseEvent&)> onPress;
  std::function<void(const MouseEvent&)> onRelease;
  /// The pointer moved; of several motions waiting, the last.
  std::function<void(const MouseEvent&)> onMotion;
  /// The pointer left the window.
  std::function<void()> onLeave;
  /// One step of the wheel: `dy` -1 is up, `dx` -1 left.
  std::function<void(const MouseEvent&, int dx, int dy)> onWheel;
  std::function<void(const KeyEvent&)> onKey;
  std::function<void(int width, int height)> onResize;
  /// The window is about to close: `run` ends after it.
  std::function<void()> onClose;
  /// Asked when the user closes the window; false keeps it open.
  std::function<bool()> onCloseQuery;

  /// No X window yet. `connection` outlives this.
  explicit Window(Connection& connection);
  /// Ends every X resource. Tasks that did not run are destroyed; no thread may be in `post`.
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Before `create`: this is the window that `startup` leads to, which outlives it. The start ends
  /// with the first frame on the screen, or while the loop runs two seconds after `show`: a window
  /// that is not seen by then is on another desktop or minimized.
  void follow(StartupNotification& startup) { startup_ = &startup; }
  /// Makes the X window, not yet shown. A side below 1 becomes 1: X knows no empty windows.
  /// False when the server refuses, or when there is a window already.
  bool create(const std::string& title, int width, int height);

  // The following four do nothing before `create`.

  /// Names the window and its icon. `title` is UTF-8.
  void setTitle(const std::string& title);
  /// The instance and class names by which window managers and desktop entries know the program.
  void setClass(const std::string& name, const std::string& className);
  void setMinSize(int width, int height);
  void show();

  /// What the pointer looks like over the window, `Arrow` at first. Remembered before `create`, and
  /// asks the server for nothing while it stays the same, so that every motion may call it.
  void setPointer(PointerShape shape);
  PointerShape pointer() const { return pointer_; }

  /// Asks for a repaint of all in this turn of the loop, or in the next when called while painting.
  void invalidate();
  /// Asks for a repaint of `rect` in this turn of the loop. While a frame is being prepared that is
  /// part of it; while it is being painted, of the next. What lies outside the window is left
  /// alone.
  void invalidate(const Rect& rect);
  /// Asks for a frame of no more than what is invalidated by then, also while it is prepared.
  void requestFrame();
  /// Has the window thread run `task`, after those posted before. Any thread, and tasks too; the
  /// task is destroyed on the window thread.
  void post(Task task);
  /// Calls `onTick` every `intervalMs` while the loop runs, instead of any earlier tick. Late ticks
  /// are not made up for.
  void setTick(int intervalMs, std::function<void()> onTick);
  void stopTick();

  /// Handles tasks, events, ticks and repaints until `quit` or an accepted close.
  void run();
  /// Does what the close button of the window manager does: asks `onCloseQuery`, and unless that
  /// says no calls `onClose` and has `run` return.
  void close();
  /// Has `run` return once what is being called has returned.
  void quit();

  /// Writes the last painted frame to `path` as a PPM file, from the back buffer: what covers the
  /// window does not show. False when nothing was painted at this size yet or the file cannot be
  /// opened; later write errors are not reported.
  bool capture(const std::string& path) const;

  /// Offers `text` to other clients as the CLIPBOARD selection, until one of them takes it over.
  /// Before `create` the text is only kept.
  void setClipboardText(const std::string& text);
  /// What this window offers; empty once another client took the selection over.
  const std::string& clipboardText() const;

  /// The time of day in milliseconds since the epoch. The user may set it: spans go by `steadyMs`.
  static std::int64_t now();

  int width() const { return width_; }
  int height() const { return height_; }
  /// The X window's id, 0 before `create`: to own a selection with.
  unsigned long xid() const;

 private:
  struct Native;

  void dispatchPending();
  void paint();
  std::vector<Rect> prepareFrame();
  void paintPart(const Rect& part);
  void showPart(const Rect& part);
  bool fitBackBuffer();
  void waitForWork();
  void endStartup();
  void resized(int width, int height);

  Connection& connection_;
  std::unique_ptr<Native> native_;
  int width_ = 0;
  int height_ = 0;
  PointerShape pointer_ = PointerShape::Arrow;
  bool running_ = false;
  bool frameDue_ = false;
  /// Null without a start to end, or when it is over.
  StartupNotification* startup_ = nullptr;
  /// As `steadyMs` tells; a window that is not to be shown yet has none.
  std::int64_t startupDeadlineMs_ = std::numeric_limits<std::int64_t>::max();
  /// The window has come to be seen.
  bool exposed_ = false;
  /// What the next frame paints.
  Damage damage_;
  /// What the frame paints that is being prepared; null while none is.
  Damage* prepared_ = nullptr;
  // Made with the window and never changed, so that `post` needs no lock to use it.
  const WakePipe wakePipe_;
  TaskQueue tasks_;
  Tick tick_;
};

}  // namespace ui
