#include "ui/x_errors.h"

#include <unistd.h>

#include <array>
#include <cassert>
#include <cstdio>
#include <string_view>

namespace ui {

namespace {

// Window thread only, like every Xlib call.
ErrorTrap* activeTrap = nullptr;
void (*lostConnectionAction)() = nullptr;

[[noreturn]] int handleLostConnection(Display*) {
  constexpr std::string_view kMessage = "Lost the connection to the X server.\n";
  // Nothing can be done about a failed write here.
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kMessage.data(), kMessage.size());
  if (lostConnectionAction) lostConnectionAction();
  _exit(1);
}

int handleError(Display* display, XErrorEvent* error) {
  if (activeTrap && activeTrap->takes(display, *error)) return 0;
  if (error->error_code == BadWindow) return 0;
  std::array<char, 128> text{};
  XGetErrorText(display, error->error_code, text.data(), static_cast<int>(text.size()));
  std::fprintf(stderr, "X error: %s (request %d.%d, resource 0x%lx)\n", text.data(),
               int{error->request_code}, int{error->minor_code}, error->resourceid);
  return 0;
}

}  // namespace

void installErrorHandlers() {
  XSetErrorHandler(handleError);
  XSetIOErrorHandler(handleLostConnection);
}

void setLostConnectionAction(void (*action)()) { lostConnectionAction = action; }

ErrorTrap::ErrorTrap(Display* display) : display_(display), firstSerial_(NextRequest(display)) {
  assert(!activeTrap && "traps do not nest");
  activeTrap = this;
}

ErrorTrap::~ErrorTrap() {
  XSync(display_, False);
  activeTrap = nullptr;
}

bool ErrorTrap::takes(const Display* display, const XErrorEvent& error) {
  if (display != display_ || error.serial < firstSerial_) return false;
  caught_ = true;
  return true;
}

bool ErrorTrap::caught() {
  XSync(display_, False);
  return caught_;
}

}  // namespace ui
