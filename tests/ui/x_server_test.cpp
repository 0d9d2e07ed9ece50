#include "tests/support/x_server.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "base/file_descriptor.h"
#include "tests/support/other_client.h"
#include "ui/x11.h"

namespace test {
namespace {

using Client = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

/// What a client that has just come sees of the server that DISPLAY names.
struct ServerAsSeen {
  std::pair<int, int> pointer;
  unsigned pressed = 0;
  ::Window focus = 0;
  int rootProperties = 0;
  unsigned windows = 0;

  bool operator==(const ServerAsSeen&) const = default;
};

ServerAsSeen lookAtServer() {
  const Client client(XOpenDisplay(nullptr), &XCloseDisplay);
  Display* display = client.get();
  const ::Window root = DefaultRootWindow(display);
  ServerAsSeen seen;
  ::Window window = 0;
  int ignored = 0;
  XQueryPointer(display, root, &window, &window, &ignored, &ignored, &seen.pointer.first,
                &seen.pointer.second, &seen.pressed);
  XGetInputFocus(display, &seen.focus, &ignored);
  XFree(XListProperties(display, root, &seen.rootProperties));
  ::Window* windows = nullptr;
  XQueryTree(display, root, &window, &window, &windows, &seen.windows);
  XFree(windows);
  return seen;
}

/// The server that the next scope is given.
pid_t nextServer() { return XServer().pid(); }

/// Xlib would end the program with the server.
base::FileDescriptor connectWithoutXlib(const XServer& server) {
  base::FileDescriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  std::ranges::copy("/tmp/.X11-unix/X" + server.display().substr(1), address.sun_path);
  const auto* of = reinterpret_cast<const sockaddr*>(&address);
  if (connect(connection.get(), of, sizeof address) != 0) return {};
  return connection;
}

TEST(XServer, IsKeptForTheNextScopeAsNew) {
  ServerAsSeen asNew;
  {
    const XServer server({.startedAnew = true});
    asNew = lookAtServer();
  }
  pid_t used = 0;
  {
    const XServer server({.resources = "Xft.dpi:\t144\n"});
    used = server.pid();
    OtherClient client;
    client.focus(client.showWindow());
    client.claimInputMethod("silent");
    client.movePointer(3, 4);
    ASSERT_NE(lookAtServer().rootProperties, asNew.rootProperties);
    ASSERT_NE(lookAtServer().focus, asNew.focus);
    ASSERT_NE(lookAtServer().pointer, asNew.pointer);
    ASSERT_NE(lookAtServer().windows, asNew.windows);
  }
  const XServer server;
  EXPECT_EQ(server.pid(), used);
  EXPECT_EQ(lookAtServer(), asNew);
}

TEST(XServer, IsKeptForScopesOfTheSameOptionsOnly) {
  const pid_t used = nextServer();
  EXPECT_NE(XServer({.dpi = 192}).pid(), used);
  EXPECT_EQ(nextServer(), used);
}

TEST(XServer, IsForOneScopeAtATime) {
  const XServer server;
  EXPECT_NE(nextServer(), server.pid());
}

TEST(XServer, StartedAnewIsForItsScopeAlone) {
  const pid_t used = nextServer();
  pid_t startedAnew = 0;
  {
    const XServer server({.startedAnew = true});
    startedAnew = server.pid();
  }
  EXPECT_NE(startedAnew, used);
  EXPECT_EQ(nextServer(), used);
}

/// The server is not given to the next scope after one in which `leave` left something behind.
void expectNotKeptAfter(const std::function<void(const XServer&)>& leave) {
  const pid_t used = nextServer();
  {
    const XServer server;
    ASSERT_EQ(server.pid(), used);
    leave(server);
  }
  EXPECT_NE(nextServer(), used);
}

TEST(XServer, IsNotKeptWithAKeyDown) {
  expectNotKeptAfter([](const XServer&) { OtherClient().pressKey(XK_space); });
}

TEST(XServer, IsNotKeptWithAButtonDown) {
  expectNotKeptAfter([](const XServer&) { OtherClient().pressButton(1); });
}

TEST(XServer, IsNotKeptWithAnotherKeyboard) {
  expectNotKeptAfter([](const XServer&) { OtherClient().typeForeignKey(XK_eacute); });
}

TEST(XServer, IsNotKeptWithAClientThatStays) {
  base::FileDescriptor connection;
  expectNotKeptAfter([&](const XServer& server) {
    connection = connectWithoutXlib(server);
    ASSERT_TRUE(connection.valid());
  });
}

}  // namespace
}  // namespace test
