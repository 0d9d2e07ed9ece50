// One thread takes connections; each of them has a thread for either direction, which blocks where
// its receiver is slow. A single thread for all would stand still with a client that reads nothing.

#include "tests/support/counting_proxy.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <stdexcept>

namespace test {

namespace {

constexpr int kFirstNumber = 1000;  // far from those of servers
constexpr int kLastNumber = 1999;
constexpr int kBacklog = 16;

enum class Namespace { Abstract, Files };

/// Where the display `number` of this machine takes connections. Clients try the abstract namespace
/// first, where a name needs no directory and goes with its socket.
struct Address {
  Address(const std::string& number, Namespace where) {
    address.sun_family = AF_UNIX;
    const std::string path = "/tmp/.X11-unix/X" + number;
    // Either with a zero byte: before an abstract name, after that of a file.
    std::ranges::copy(path, address.sun_path + (where == Namespace::Abstract ? 1 : 0));
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + 1);
  }
  const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }

  sockaddr_un address{};
  socklen_t length = 0;
};

int unixSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

/// Listens as the display `number`; -1 when somebody else does.
int listenAs(const std::string& number) {
  const int listener = unixSocket();
  const Address address(number, Namespace::Abstract);
  if (bind(listener, address.get(), address.length) == 0 && listen(listener, kBacklog) == 0) {
    return listener;
  }
  close(listener);
  return -1;
}

/// -1 when there is no server.
int connectTo(const std::string& number) {
  for (const Namespace where : {Namespace::Abstract, Namespace::Files}) {
    const int server = unixSocket();
    const Address address(number, where);
    if (connect(server, address.get(), address.length) == 0) return server;
    close(server);
  }
  return -1;
}

bool sendAll(int to, std::span<const char> bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(sent));
  }
  return true;
}

/// Passes on what comes until the sender ends or the receiver is gone; then neither gets any more.
void passOn(int from, int to, std::atomic<std::uint64_t>* bytes) {
  std::vector<char> buffer(std::size_t{1} << 18);
  while (true) {
    const ssize_t got = recv(from, buffer.data(), buffer.size(), 0);
    if (got <= 0) break;
    // Before they go on: what is answered has been counted.
    *bytes += static_cast<std::uint64_t>(got);
    if (!sendAll(to, std::span(buffer).first(static_cast<std::size_t>(got)))) break;
  }
  shutdown(from, SHUT_RDWR);
  shutdown(to, SHUT_RDWR);
}

}  // namespace

/// A client's connection and the one made to the server for it.
struct CountingProxy::Link {
  Link(int client, int server, std::atomic<std::uint64_t>* bytes)
      : client_(client),
        server_(server),
        up_([this, bytes] { passOn(client_, server_, bytes); }),
        down_([this] { passOn(server_, client_, &answered_); }) {}

  ~Link() {
    shutdown(client_, SHUT_RDWR);
    shutdown(server_, SHUT_RDWR);
    up_.join();
    down_.join();
    close(client_);
    close(server_);
  }
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

 private:
  const int client_;
  const int server_;
  std::atomic<std::uint64_t> answered_ = 0;  // nobody asks
  std::thread up_;
  std::thread down_;
};

CountingProxy::CountingProxy(const std::string& display)
    : server_(display.substr(display.find(':') + 1)) {
  for (int number = kFirstNumber; listener_ < 0 && number <= kLastNumber; ++number) {
    listener_ = listenAs(std::to_string(number));
    display_ = ":" + std::to_string(number);
  }
  if (listener_ < 0) throw std::runtime_error("no free display number");
  environment_.set("DISPLAY", display_);
  thread_ = std::thread([this] { takeConnections(); });
}

CountingProxy::~CountingProxy() {
  shutdown(listener_, SHUT_RDWR);  // ends accept
  thread_.join();
  close(listener_);
}

void CountingProxy::takeConnections() {
  while (true) {
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) return;
    link(client);
  }
}

void CountingProxy::link(int client) {
  const int server = connectTo(server_);
  if (server < 0) {
    close(client);  // as when the server refuses
    return;
  }
  links_.push_back(std::make_unique<Link>(client, server, &bytesToServer_));
}

}  // namespace test
