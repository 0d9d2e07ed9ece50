#include "ui/startup_notification.h"

#include <X11/Xatom.h>

#include <algorithm>
#include <memory>

#include "ui/introduction.h"
#include "ui/properties.h"
#include "ui/x11.h"
#include "ui/x_errors.h"

namespace ui {

namespace {

/// `sender` is what those who listen tell the messages of several clients apart by.
void tellOfEnd(Display* display, ::Window sender, const StartupId& id) {
  const ::Window root = DefaultRootWindow(display);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = sender;
  event.xclient.message_type = XInternAtom(display, "_NET_STARTUP_INFO_BEGIN", False);
  event.xclient.format = 8;
  const Atom more = XInternAtom(display, "_NET_STARTUP_INFO", False);
  for (const StartupMessagePart& part : startupEndMessage(id)) {
    std::ranges::copy(part, event.xclient.data.b);
    XSendEvent(display, root, False, PropertyChangeMask, &event);
    event.xclient.message_type = more;
  }
  XFlush(display);
}

struct CloseConnection {
  void operator()(Display* display) const { XCloseDisplay(display); }
};

}  // namespace

StartupNotification::~StartupNotification() {
  if (over()) return;
  installErrorHandlers();
  const std::unique_ptr<Display, CloseConnection> connection(XOpenDisplay(nullptr));
  Display* display = connection.get();
  if (!display) return;
  // A server that gives no window is one reason to be here, and the number alone does as well.
  const ErrorTrap refusal(display);
  const ::Window sender =
      XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
  tellOfEnd(display, sender, id_);
}

void StartupNotification::announce(const Connection& connection, unsigned long window) const {
  if (id_.none()) return;
  Display* display = connection.native().display;
  replaceProperty(display, window, XInternAtom(display, "_NET_STARTUP_ID", False),
                  XInternAtom(display, "UTF8_STRING", False), id_.text());
  if (const auto time = id_.time()) setUserTime(display, window, *time);
}

void StartupNotification::end(const Connection& connection, unsigned long window) {
  if (!over()) tellOfEnd(connection.native().display, window, id_);
}

}  // namespace ui
