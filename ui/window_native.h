#pragma once

#include <array>
#include <memory>

#include "ui/back_buffer.h"
#include "ui/clipboard.h"
#include "ui/typed_keys.h"
#include "ui/window.h"
#include "ui/x11.h"

namespace ui {

/// The X side of a `Window`, and the handlers of its events.
struct Window::Native {
  explicit Native(Window& window);
  ~Native();
  Native(const Native&) = delete;
  Native& operator=(const Native&) = delete;

  /// Makes the X window and the GC; false when the server refuses.
  bool makeWindow(int width, int height);
  /// Registers for the close button of the window manager, and says what window this is.
  void introduceToWindowManager();

  /// Gives the window the cursor of `shape`, which is made the first time that it is asked for.
  void applyPointer(PointerShape shape);

  void dispatch(XEvent& event);
  void handleExpose(const XExposeEvent& event);
  void handleClientMessage(const XClientMessageEvent& event);
  void handleKey(XKeyEvent& event);
  void handlePress(const XButtonEvent& event);
  void handleRelease(const XButtonEvent& event);
  void handleMotion(XEvent& event);

  Window& owner;
  Display* display;
  ::Window window = 0;
  GC gc = nullptr;
  std::unique_ptr<BackBuffer> backBuffer;
  /// By `PointerShape`; 0 where not made yet.
  std::array<Cursor, 4> cursors{};
  Atom wmDeleteWindow = 0;
  Clipboard clipboard;
  ClickCounter clicks;
  TypedKeys typedKeys;
};

}  // namespace ui
