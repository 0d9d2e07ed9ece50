#include "ui/single_instance.h"

#include <memory>
#include <utility>

#include "ui/properties.h"
#include "ui/x11.h"
#include "ui/x_errors.h"

namespace ui {

namespace {

struct CloseDisplay {
  void operator()(Display* display) const { XCloseDisplay(display); }
};

void leaveText(Display* display, ::Window window, const char* property, const std::string& text) {
  const Atom type = XInternAtom(display, "UTF8_STRING", False);
  replaceProperty(display, window, XInternAtom(display, property, False), type, text);
}

/// The message with which a pager asks the window manager to raise and focus `window`.
void askToActivate(Display* display, ::Window window) {
  constexpr long kFromPager = 2;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "_NET_ACTIVE_WINDOW", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = kFromPager;
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(display, DefaultRootWindow(display), False,
             SubstructureNotifyMask | SubstructureRedirectMask, &event);
}

}  // namespace

bool handOver(const InstanceNames& names, const std::string& text) {
  installErrorHandlers();
  const std::unique_ptr<Display, CloseDisplay> connection(XOpenDisplay(nullptr));
  Display* display = connection.get();
  if (!display) return false;
  const Atom selection = XInternAtom(display, names.selection, False);
  ::Window owner = XGetSelectionOwner(display, selection);
  while (owner != None) {
    if (!text.empty()) leaveText(display, owner, names.property, text);
    askToActivate(display, owner);
    // An owner that ended meanwhile may have missed it; the error handler passes over its
    // BadWindow.
    const ::Window reached = std::exchange(owner, XGetSelectionOwner(display, selection));
    if (owner == reached) return true;
  }
  return false;
}

void claimInstance(const InstanceNames& names, const Connection& connection, unsigned long window) {
  Display* display = connection.native().display;
  XSetSelectionOwner(display, XInternAtom(display, names.selection, False), window, CurrentTime);
  XFlush(display);
}

}  // namespace ui
