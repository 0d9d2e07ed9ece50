#pragma once

#include "ui/x11.h"

namespace ui {

/// Replaces Xlib's handlers for the process, which end it through `exit` while threads still run.
///
/// An X error never ends the program. BadWindow is passed over in silence: another client may
/// destroy its window between asking for the clipboard and getting the answer. Any other error is a
/// mistake of ours and prints one line to standard error.
///
/// A lost connection prints one line to standard error, calls what `setLostConnectionAction` was
/// given and leaves with `_exit(1)`: nothing of X may be called after it, which destructors would
/// do.
///
/// May be called again.
void installErrorHandlers();

/// As `Connection::setLostAction`.
void setLostConnectionAction(void (*action)());

/// Catches the X errors of the requests made during its life, instead of letting them be reported.
/// Traps do not nest, and live on the window thread.
class ErrorTrap {
 public:
  explicit ErrorTrap(Display* display);
  ~ErrorTrap();
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

  /// Waits for the server to answer every request made so far; true when one of the trap's failed.
  bool caught();

  /// For the error handler: notes an error that is the trap's. False for those of earlier requests
  /// and of other displays.
  bool takes(const Display* display, const XErrorEvent& error);

 private:
  Display* display_;
  unsigned long firstSerial_;
  bool caught_ = false;
};

}  // namespace ui
