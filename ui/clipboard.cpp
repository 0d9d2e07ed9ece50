#include "ui/clipboard.h"

#include <X11/Xatom.h>

#include <array>

#include "ui/properties.h"

namespace ui {

Clipboard::Clipboard(Display* display)
    : display_(display),
      clipboard_(XInternAtom(display, "CLIPBOARD", False)),
      utf8String_(XInternAtom(display, "UTF8_STRING", False)),
      targets_(XInternAtom(display, "TARGETS", False)) {}

void Clipboard::offer(const std::string& text, ::Window window) {
  text_ = text;
  if (window == 0) return;
  claim_ = NextRequest(display_);
  XSetSelectionOwner(display_, clipboard_, window, CurrentTime);
  XFlush(display_);
}

void Clipboard::handleClear(const XSelectionClearEvent& event) {
  // The window may own other selections as well, whose loss says nothing about this one.
  if (event.selection != clipboard_) return;
  // Sent before the server had read the last claim: that loss is made good. Times would not tell,
  // since nobody says at which the server took the claim.
  if (event.serial < claim_) return;
  text_.clear();
}

void Clipboard::answer(const XSelectionRequestEvent& request) const {
  // A client from before ICCCM names no property and expects the answer on the one named like the
  // target.
  const Atom property = request.property ? request.property : request.target;
  XEvent notify{};
  notify.xselection.type = SelectionNotify;
  notify.xselection.requestor = request.requestor;
  notify.xselection.selection = request.selection;
  notify.xselection.target = request.target;
  notify.xselection.time = request.time;
  notify.xselection.property = deliver(request, property) ? property : None;
  XSendEvent(display_, request.requestor, False, NoEventMask, &notify);
}

bool Clipboard::deliver(const XSelectionRequestEvent& request, Atom property) const {
  if (request.selection != clipboard_) return false;
  if (request.target == targets_) {
    const std::array<Atom, 3> offered = {targets_, utf8String_, XA_STRING};
    XChangeProperty(display_, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(offered.data()),
                    static_cast<int>(offered.size()));
    return true;
  }
  if (request.target != utf8String_ && request.target != XA_STRING) return false;
  return replaceProperty(display_, request.requestor, property, request.target, text_);
}

}  // namespace ui
