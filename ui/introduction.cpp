#include "ui/introduction.h"

#include <X11/Xatom.h>
#include <unistd.h>

#include <array>
#include <clocale>

#include "ui/properties.h"

namespace ui {

namespace {

Atom atom(Display* display, const char* name) { return XInternAtom(display, name, False); }

void takeTheKeyboard(Display* display, ::Window window) {
  XWMHints hints{};
  hints.flags = InputHint;
  hints.input = True;
  XSetWMHints(display, window, &hints);
}

/// A process id alone would be taken for one of the window manager's own machine.
void nameProcess(Display* display, ::Window window) {
  std::array<char, 256> machine{};
  if (gethostname(machine.data(), machine.size() - 1) != 0 || !machine[0]) return;
  replaceProperty(display, window, XA_WM_CLIENT_MACHINE, XA_STRING, machine.data());
  replaceNumber(display, window, atom(display, "_NET_WM_PID"), XA_CARDINAL,
                static_cast<unsigned long>(getpid()));
}

}  // namespace

void introduce(Display* display, ::Window window) {
  takeTheKeyboard(display, window);
  replaceNumber(display, window, atom(display, "_NET_WM_WINDOW_TYPE"), XA_ATOM,
                atom(display, "_NET_WM_WINDOW_TYPE_NORMAL"));
  if (const char* locale = std::setlocale(LC_CTYPE, nullptr)) {
    replaceProperty(display, window, atom(display, "WM_LOCALE_NAME"), XA_STRING, locale);
  }
  nameProcess(display, window);
}

void setTitles(Display* display, ::Window window, const std::string& title) {
  XStoreName(display, window, title.c_str());
  XSetIconName(display, window, title.c_str());
  const Atom utf8 = atom(display, "UTF8_STRING");
  replaceProperty(display, window, atom(display, "_NET_WM_NAME"), utf8, title);
  replaceProperty(display, window, atom(display, "_NET_WM_ICON_NAME"), utf8, title);
}

void setUserTime(Display* display, ::Window window, Time time) {
  if (time == 0) return;
  replaceNumber(display, window, atom(display, "_NET_WM_USER_TIME"), XA_CARDINAL, time);
}

}  // namespace ui
