#pragma once

#include <memory>

#include "ui/fonts.h"
#include "ui/geometry.h"

namespace ui {

/// The process's connection to its X server: the default screen with its root visual, and the
/// interface scale. Belongs to the window thread. Outlives every window made on it.
class Connection {
 public:
  /// Connects to the display that DISPLAY names. Null when there is none, or when its default
  /// screen has fewer than 24 bits a pixel: the toolkit draws true colours only.
  ///
  /// Also installs the process's X error handlers (ui/x_errors.h).
  static std::unique_ptr<Connection> open();
  /// Closes the fonts, then the display.
  ~Connection();
  /// Has `action` called on the window thread when a server has gone away, right before that ends
  /// the process: for what the user has done and no thread has saved yet. It uses nothing of the
  /// toolkit. Null for none.
  static void setLostAction(void (*action)());
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Bits a pixel of the default screen's root, 24 or more.
  int depth() const;
  /// Device pixels in a logical pixel, 0.75 to 4.0.
  double scale() const { return scale_; }
  /// `logical` pixels in device pixels, rounded half up.
  int scaled(double logical) const { return ui::scaled(logical, scale_); }

  /// The interface's typeface at `size` points, opened the first time that it is asked for. Without
  /// a single font installed the handle draws nothing.
  Font font(double size, FontWeight weight);

  /// The Xlib handles; defined in ui/x11.h for the toolkit's own use.
  struct Native;
  Native& native() const { return *native_; }

 private:
  Connection(std::unique_ptr<Native> native, double scale);

  std::unique_ptr<Native> native_;
  double scale_;
};

/// The interface scale of a screen: its dpi / 96, kept within 0.75 and 4.0. The dpi is "Xft.dpi" of
/// `resources` when that is a number above 0, else it follows from the screen's height; a screen
/// that does not know its height (0 mm) has scale 1.0. `resources`: the display's resource database
/// as text, or null when it has none.
double scaleFor(const char* resources, int heightPx, int heightMm);

}  // namespace ui
