#pragma once

#include <string>

#include "ui/connection.h"

namespace ui {

/// What the instances of one program on one X display know each other by: names of X atoms, which
/// no other program uses.
struct InstanceNames {
  /// The selection that the running instance's window owns.
  const char* selection;
  /// The property of that window that takes the text of a later start.
  const char* property;
};

/// Looks for a running instance on the display that DISPLAY names, and hands over to it: `text`, if
/// not empty, becomes the property of its window, as UTF8_STRING and byte for byte, and the window
/// manager is asked to activate the window (_NET_ACTIVE_WINDOW of the EWMH). Only X server and
/// window manager take part, so an instance that hangs does not hold this up.
///
/// Text that one request cannot carry is left out, and the window activated all the same.
///
/// False when there is nobody to hand over to: no running instance, one that ended meanwhile, or no
/// display. Uses a connection of its own, closed on return; window thread only. Also installs the
/// process's X error handlers (ui/x_errors.h).
bool handOver(const InstanceNames& names, const std::string& text);

/// Makes `window` of `connection` (`Window::xid`) the one that later starts find. Lasts until the
/// connection is closed, however the process ends, or another window is made the one.
void claimInstance(const InstanceNames& names, const Connection& connection, unsigned long window);

}  // namespace ui
