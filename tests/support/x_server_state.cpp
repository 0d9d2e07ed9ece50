#include "tests/support/x_server_state.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <thread>

namespace test {

namespace {

constexpr std::chrono::seconds kClientsLeaveWithin{2};

using Client = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

Client connect(const std::string& display) {
  return {XOpenDisplay(display.c_str()), &XCloseDisplay};
}

::Window rootOf(const Client& client) { return DefaultRootWindow(client.get()); }

struct Pointer {
  int x = 0;
  int y = 0;
  /// The buttons and modifiers that are down.
  unsigned mask = 0;
};

Pointer pointerOf(const Client& client) {
  Pointer pointer;
  ::Window root = 0;
  ::Window child = 0;
  int xInRoot = 0;
  int yInRoot = 0;
  XQueryPointer(client.get(), rootOf(client), &root, &child, &xInRoot, &yInRoot, &pointer.x,
                &pointer.y, &pointer.mask);
  return pointer;
}

bool isAnythingPressed(const Client& client) {
  std::array<char, 32> keys{};
  XQueryKeymap(client.get(), keys.data());
  return pointerOf(client).mask != 0 || std::ranges::any_of(keys, [](char c) { return c != 0; });
}

std::vector<unsigned long> rootPropertiesOf(const Client& client) {
  int count = 0;
  const std::unique_ptr<Atom, decltype(&XFree)> atoms(
      XListProperties(client.get(), rootOf(client), &count), &XFree);
  return {atoms.get(), atoms.get() + count};
}

std::vector<unsigned long> keySymbolsOf(const Client& client) {
  int first = 0;
  int last = 0;
  int perKey = 0;
  XDisplayKeycodes(client.get(), &first, &last);
  const std::unique_ptr<KeySym, decltype(&XFree)> symbols(
      XGetKeyboardMapping(client.get(), static_cast<KeyCode>(first), last - first + 1, &perKey),
      &XFree);
  return {symbols.get(), symbols.get() + std::ptrdiff_t{last - first + 1} * perKey};
}

}  // namespace

XServerState::XServerState(const std::string& display, pid_t server)
    : display_(display), server_(server) {
  const Client client = connect(display);
  if (!client) throw std::runtime_error("the X server takes no connections");
  filesForOneClient_ = openFiles();
  const Pointer pointer = pointerOf(client);
  pointerX_ = pointer.x;
  pointerY_ = pointer.y;
  XGetInputFocus(client.get(), &focus_, &revertFocusTo_);
  rootProperties_ = rootPropertiesOf(client);
  keySymbols_ = keySymbolsOf(client);
}

bool XServerState::restore() const {
  const Client client = connect(display_);
  if (!client || !awaitLastClient()) return false;
  if (isAnythingPressed(client) || keySymbolsOf(client) != keySymbols_) return false;
  for (const Atom property : rootPropertiesOf(client)) {
    if (std::ranges::find(rootProperties_, property) == rootProperties_.end()) {
      XDeleteProperty(client.get(), rootOf(client), property);
    }
  }
  XWarpPointer(client.get(), None, rootOf(client), 0, 0, 0, 0, pointerX_, pointerY_);
  XSetInputFocus(client.get(), focus_, revertFocusTo_, CurrentTime);
  XSync(client.get(), False);
  return true;
}

std::size_t XServerState::openFiles() const {
  const std::filesystem::directory_iterator files("/proc/" + std::to_string(server_) + "/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

// A client has left once the server closed its connection, before it answers anybody else.
bool XServerState::awaitLastClient() const {
  const auto deadline = std::chrono::steady_clock::now() + kClientsLeaveWithin;
  while (openFiles() != filesForOneClient_) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(500));  // between two looks
  }
  return true;
}

}  // namespace test
