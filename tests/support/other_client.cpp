#include "tests/support/other_client.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <stdexcept>
#include <tuple>

#include "tests/support/eventually.h"

namespace test {

namespace {
constexpr Time kRequestTime = 12345;
}

struct OtherClient::Native {
  Native() : display(XOpenDisplay(nullptr)) {
    if (!display) throw std::runtime_error("no X server");
  }
  ~Native() { XCloseDisplay(display); }

  Atom atom(const std::string& name) const { return XInternAtom(display, name.c_str(), False); }
  void sync() const { XSync(display, False); }
  void send(::Window window, XEvent& event) const {
    event.xany.window = window;
    XSendEvent(display, window, False, NoEventMask, &event);
    sync();
  }

  void pressOrReleaseKey(KeySym keysym, Bool down) const {
    const KeyCode code = XKeysymToKeycode(display, keysym);
    if (code == 0) throw std::runtime_error("no such key");
    XTestFakeKeyEvent(display, code, down, CurrentTime);
    sync();
  }
  ::Window makeWindow() const {
    return XCreateSimpleWindow(display, DefaultRootWindow(display), -10, -10, 1, 1, 0, 0, 0);
  }

  bool isShown(::Window window, const std::string& className) const {
    XWindowAttributes attributes{};
    XClassHint hint{};
    if (!XGetWindowAttributes(display, window, &attributes)) return false;
    if (attributes.map_state != IsViewable || !XGetClassHint(display, window, &hint)) return false;
    const bool matches = hint.res_class && className == hint.res_class;
    XFree(hint.res_name);
    XFree(hint.res_class);
    return matches;
  }
  /// Of `window` and what is inside it, such as the frame of a window manager; 0 for none.
  ::Window findShown(::Window window, const std::string& className) const {
    if (isShown(window, className)) return window;
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    XQueryTree(display, window, &root, &parent, &children, &count);
    const std::unique_ptr<::Window, decltype(&XFree)> owner(children, &XFree);
    for (const ::Window child : std::span(children, count)) {
      if (const ::Window found = findShown(child, className)) return found;
    }
    return 0;
  }

  Display* display;
  ::Window requestor = 0;
};

OtherClient::OtherClient() : native_(std::make_unique<Native>()) {}
OtherClient::~OtherClient() = default;

void OtherClient::movePointer(int x, int y) {
  XTestFakeMotionEvent(native_->display, -1, x, y, CurrentTime);
  native_->sync();
}

void OtherClient::pressButton(unsigned button) {
  XTestFakeButtonEvent(native_->display, button, True, CurrentTime);
  native_->sync();
}

void OtherClient::releaseButton(unsigned button) {
  XTestFakeButtonEvent(native_->display, button, False, CurrentTime);
  native_->sync();
}

void OtherClient::focus(unsigned long window) {
  XSetInputFocus(native_->display, window, RevertToPointerRoot, CurrentTime);
  native_->sync();
}

void OtherClient::pressKey(unsigned long keysym) { native_->pressOrReleaseKey(keysym, True); }
void OtherClient::releaseKey(unsigned long keysym) { native_->pressOrReleaseKey(keysym, False); }

void OtherClient::typeForeignKey(unsigned long keysym) {
  Display* display = native_->display;
  int first = 0;
  int last = 0;
  XDisplayKeycodes(display, &first, &last);
  const auto code = static_cast<unsigned>(last);
  std::array<KeySym, 2> symbols = {keysym, keysym};  // without and with Shift
  XChangeKeyboardMapping(display, last, 2, symbols.data(), 1);
  XTestFakeKeyEvent(display, code, True, CurrentTime);
  XTestFakeKeyEvent(display, code, False, CurrentTime);
  native_->sync();
}

void OtherClient::claimInputMethod(const std::string& name) {
  takeSelection("@server=" + name);
  const Atom server = native_->atom("@server=" + name);
  XChangeProperty(native_->display, DefaultRootWindow(native_->display),
                  native_->atom("XIM_SERVERS"), XA_ATOM, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(&server), 1);
  native_->sync();
}

void OtherClient::requestSelection(const std::string& selection, const std::string& target,
                                   const std::string& name) {
  native_->requestor = native_->makeWindow();
  XConvertSelection(native_->display, native_->atom(selection), native_->atom(target),
                    name.empty() ? None : native_->atom(name), native_->requestor, kRequestTime);
  native_->sync();
}

void OtherClient::sendSelectionRequest(unsigned long owner, const std::string& selection,
                                       const std::string& target) {
  native_->requestor = native_->makeWindow();
  XEvent event{};
  event.xselectionrequest.type = SelectionRequest;
  event.xselectionrequest.owner = owner;
  event.xselectionrequest.requestor = native_->requestor;
  event.xselectionrequest.selection = native_->atom(selection);
  event.xselectionrequest.target = native_->atom(target);
  event.xselectionrequest.property = native_->atom("ANSWER");
  XSendEvent(native_->display, owner, False, NoEventMask, &event);
  native_->sync();
}

void OtherClient::destroyRequestor() {
  XDestroyWindow(native_->display, native_->requestor);
  native_->sync();
}

std::optional<OtherClient::Answer> OtherClient::answer() {
  XEvent event;
  native_->sync();
  if (!XCheckTypedWindowEvent(native_->display, native_->requestor, SelectionNotify, &event)) {
    return std::nullopt;
  }
  const XSelectionEvent& notify = event.xselection;
  return Answer{atomName(notify.selection), atomName(notify.target),
                notify.property ? atomName(notify.property) : "", notify.time == kRequestTime};
}

unsigned long OtherClient::requestor() const { return native_->requestor; }

void OtherClient::takeSelection(const std::string& selection) {
  XSetSelectionOwner(native_->display, native_->atom(selection), native_->makeWindow(),
                     CurrentTime);
  native_->sync();
}

unsigned long OtherClient::selectionOwner(const std::string& selection) {
  return XGetSelectionOwner(native_->display, native_->atom(selection));
}

unsigned long OtherClient::shownWindow(const std::string& className) {
  unsigned long found = 0;
  const auto find = [&] {
    XGrabServer(native_->display);  // else a window may go while it is looked at
    found = native_->findShown(root(), className);
    XUngrabServer(native_->display);
    native_->sync();
    return found != 0;
  };
  if (!eventually(find)) {
    throw std::runtime_error("no window of class " + className);
  }
  return found;
}

void OtherClient::holdBackWindows() {
  XSelectInput(native_->display, DefaultRootWindow(native_->display), SubstructureRedirectMask);
  native_->sync();
}

void OtherClient::listenToRoot() {
  XSelectInput(native_->display, root(), SubstructureNotifyMask);
  native_->sync();
}

void OtherClient::listenToStarts() {
  XSelectInput(native_->display, root(), PropertyChangeMask);
  native_->sync();
}

std::optional<OtherClient::Message> OtherClient::messageToRoot() {
  XEvent event;
  native_->sync();
  if (!XCheckTypedEvent(native_->display, ClientMessage, &event)) return std::nullopt;
  const XClientMessageEvent& sent = event.xclient;
  Message message = {sent.window, atomName(sent.message_type), sent.format};
  if (sent.format == 32) std::ranges::copy(sent.data.l, message.words.begin());
  if (sent.format == 8) message.bytes.assign(sent.data.b, sizeof sent.data.b);
  return message;
}

void OtherClient::ignoreRoot() {
  XSelectInput(native_->display, root(), NoEventMask);
  native_->sync();
}

unsigned long OtherClient::root() const { return DefaultRootWindow(native_->display); }

unsigned long OtherClient::showWindow() {
  const ::Window window = XCreateSimpleWindow(native_->display, root(), 0, 0, 300, 200, 0, 0, 0);
  XMapWindow(native_->display, window);
  native_->sync();
  return window;
}

void OtherClient::minimize(unsigned long window) {
  XIconifyWindow(native_->display, window, DefaultScreen(native_->display));
  native_->sync();
}

bool OtherClient::isViewable(unsigned long window) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(native_->display, window, &attributes);
  return attributes.map_state == IsViewable;
}

void OtherClient::moveWindow(unsigned long window, int x, int y) {
  XMoveWindow(native_->display, window, x, y);
  native_->sync();
}

void OtherClient::resizeWindow(unsigned long window, int width, int height) {
  XResizeWindow(native_->display, window, static_cast<unsigned>(width),
                static_cast<unsigned>(height));
  native_->sync();
}

void OtherClient::sendConfigure(unsigned long window, int width, int height) {
  XEvent event{};
  event.xconfigure.type = ConfigureNotify;
  event.xconfigure.event = window;
  event.xconfigure.width = width;
  event.xconfigure.height = height;
  native_->send(window, event);
}

void OtherClient::sendExpose(unsigned long window, int count) {
  XEvent event{};
  event.xexpose.type = Expose;
  std::tie(event.xexpose.width, event.xexpose.height) = sizeOf(window);
  event.xexpose.count = count;
  native_->send(window, event);
}

void OtherClient::sendProtocol(unsigned long window, const std::string& protocol) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.message_type = native_->atom("WM_PROTOCOLS");
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(native_->atom(protocol));
  native_->send(window, event);
}

void OtherClient::destroyWindow(unsigned long window) {
  XDestroyWindow(native_->display, window);
  native_->sync();
}

namespace {

struct Property {
  Atom type = 0;
  int format = 0;
  unsigned long length = 0;
  unsigned char* data = nullptr;
  ~Property() { XFree(data); }
};

void readProperty(Display* display, ::Window window, Atom name, Property& property) {
  unsigned long rest = 0;
  XGetWindowProperty(display, window, name, 0, 1 << 20, False, AnyPropertyType, &property.type,
                     &property.format, &property.length, &rest, &property.data);
}

}  // namespace

std::string OtherClient::textProperty(unsigned long window, const std::string& name,
                                      const std::string& type) {
  Property property;
  readProperty(native_->display, window, native_->atom(name), property);
  if (property.type != native_->atom(type) || property.format != 8) return {};
  return {reinterpret_cast<const char*>(property.data), property.length};
}

std::vector<unsigned long> OtherClient::longProperty(unsigned long window,
                                                     const std::string& name) {
  Property property;
  readProperty(native_->display, window, native_->atom(name), property);
  if (property.format != 32) return {};
  const auto* items = reinterpret_cast<const unsigned long*>(property.data);
  return {items, items + property.length};
}

std::string OtherClient::atomName(unsigned long atom) {
  char* name = XGetAtomName(native_->display, atom);
  const std::string copy = name ? name : "";
  XFree(name);
  return copy;
}

std::pair<int, int> OtherClient::sizeOf(unsigned long window) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(native_->display, window, &attributes);
  return {attributes.width, attributes.height};
}

long OtherClient::eventMask(unsigned long window) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(native_->display, window, &attributes);
  return attributes.all_event_masks;
}

int OtherClient::bitGravity(unsigned long window) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(native_->display, window, &attributes);
  return attributes.bit_gravity;
}

void OtherClient::scribbleOver(unsigned long window, unsigned long pixel) {
  const auto [width, height] = sizeOf(window);
  GC gc = XCreateGC(native_->display, window, 0, nullptr);
  XSetForeground(native_->display, gc, pixel);
  XFillRectangle(native_->display, window, gc, 0, 0, static_cast<unsigned>(width),
                 static_cast<unsigned>(height));
  XFreeGC(native_->display, gc);
  native_->sync();
}

unsigned long OtherClient::screenPixel(unsigned long window, int x, int y) {
  return screenPixels(window, x, y, 1, 1).front();
}

std::vector<unsigned long> OtherClient::screenPixels(unsigned long window, int x, int y, int w,
                                                     int h) {
  XImage* image = XGetImage(native_->display, window, x, y, static_cast<unsigned>(w),
                            static_cast<unsigned>(h), AllPlanes, ZPixmap);
  if (!image) throw std::runtime_error("the window is not on the screen");
  std::vector<unsigned long> pixels;
  for (int row = 0; row < h; ++row) {
    for (int column = 0; column < w; ++column) pixels.push_back(XGetPixel(image, column, row));
  }
  XDestroyImage(image);
  return pixels;
}

}  // namespace test
