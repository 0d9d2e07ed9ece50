#pragma once

#include <string>

#include "ui/x11.h"

namespace ui {

// What the window manager is told of a top-level window: the properties of the ICCCM and of the
// EWMH (Extended Window Manager Hints 1.5) that this toolkit sets. There is no _NET_WM_ICON: the
// icon is that of the desktop entry, which WM_CLASS leads to.

/// Says what kind of window and of client it is, before it is shown: a window of the usual type
/// that takes the keyboard, the locale, and the process with its machine, so that a hung program
/// can be ended from the desktop.
void introduce(Display* display, ::Window window);

/// Names the window, and its icon alike, for today's window managers and for old ones.
void setTitles(Display* display, ::Window window, const std::string& title);

/// Says when the user last did something that concerns the window, by the server's clock: what he
/// asks for elsewhere after that may come in front of it. 0, which is no time, does nothing.
void setUserTime(Display* display, ::Window window, Time time);

}  // namespace ui
