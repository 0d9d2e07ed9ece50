#pragma once

#include <string_view>

#include "ui/x11.h"

namespace ui {

/// Replaces a property of `window` by `bytes`, format 8, with no zero after them. False, with the
/// property left as it is, when they are more than one request can carry: Xlib does not split a
/// property, and the server breaks the connection over a request that is too long.
bool replaceProperty(Display* display, ::Window window, Atom property, Atom type,
                     std::string_view bytes);

/// Replaces a property of `window` by one number of 32 bits, or one atom.
void replaceNumber(Display* display, ::Window window, Atom property, Atom type,
                   unsigned long number);

}  // namespace ui
