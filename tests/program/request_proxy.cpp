#include "tests/program/request_proxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace test {

namespace {

using base::FileDescriptor;

/// Display 0's; the others follow.
constexpr int kFirstPort = 6000;

void check(bool fine, const char* what) {
  if (!fine) throw std::runtime_error(what);
}

/// To the server of `display`, such as ":3".
FileDescriptor connectToServer(const std::string& display) {
  const std::string path = "/tmp/.X11-unix/X" + display.substr(1);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  check(path.size() < sizeof address.sun_path, "the X server's socket has too long a name");
  std::memcpy(address.sun_path, path.data(), path.size());
  FileDescriptor server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  check(connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
        "no X server");
  return server;
}

/// Listens on a port that the kernel picks; those are far above `kFirstPort`.
int listenOnLoopback(int fd) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  check(bind(fd, generic, length) == 0 && listen(fd, 1) == 0, "no socket to listen on");
  check(getsockname(fd, generic, &length) == 0, "the socket has no name");
  return ntohs(address.sin_port);
}

/// What a client sends, in the byte order of this machine.
class Requests {
 public:
  void add(const char* bytes, std::size_t count) { waiting_.append(bytes, count); }

  /// Takes out what is there in whole requests, after `watch` saw each.
  std::string take(const RequestProxy::Watch& watch) {
    std::size_t end = 0;
    while (const std::size_t length = lengthAt(end)) {
      if (greeted_) watch(std::span(waiting_).subspan(end, length));
      greeted_ = true;
      end += length;
    }
    const std::string taken = waiting_.substr(0, end);
    waiting_.erase(0, end);
    return taken;
  }

 private:
  template <typename Number>
  std::size_t numberAt(std::size_t position) const {
    Number number = 0;
    std::memcpy(&number, waiting_.data() + position, sizeof number);
    return number;
  }

  /// Of the message at `start`; 0 when it is not there to its end.
  std::size_t lengthAt(std::size_t start) const {
    const std::size_t there = waiting_.size() - start;
    if (there < (greeted_ ? 4 : 12)) return 0;
    const std::size_t length = greeted_ ? requestLength(start) : greetingLength(start);
    return length <= there ? length : 0;
  }
  /// In units of four bytes; a long request has a 0 there and its length after that.
  std::size_t requestLength(std::size_t start) const {
    const std::size_t units = numberAt<std::uint16_t>(start + 2);
    if (units > 0) return 4 * units;
    return waiting_.size() < start + 8 ? 8 : 4 * numberAt<std::uint32_t>(start + 4);
  }
  /// Two strings follow, each filled up to a multiple of four.
  std::size_t greetingLength(std::size_t start) const {
    const auto padded = [](std::size_t length) { return (length + 3) / 4 * 4; };
    return 12 + padded(numberAt<std::uint16_t>(start + 6)) +
           padded(numberAt<std::uint16_t>(start + 8));
  }

  std::string waiting_;
  bool greeted_ = false;  // the message that opens a connection has passed
};

bool sendAll(int to, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

}  // namespace

RequestProxy::RequestProxy(Watch watch)
    : watch_(std::move(watch)),
      server_(std::getenv("DISPLAY")),
      listening_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int port = listenOnLoopback(listening_.get());
  environment_.set("DISPLAY", "127.0.0.1:" + std::to_string(port - kFirstPort));
  thread_ = std::thread([this] { serve(); });
}

RequestProxy::~RequestProxy() {
  shutdown(listening_.get(), SHUT_RDWR);  // ends the wait for the next client
  thread_.join();
}

void RequestProxy::serve() {
  for (;;) {
    const FileDescriptor client(accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.valid()) return;
    relay(client.get(), connectToServer(server_).get());
  }
}

/// Passes on what both sides say until one of them ends.
void RequestProxy::relay(int client, int server) const {
  Requests requests;
  std::array<char, 4096> buffer;
  std::array<pollfd, 2> sides = {{{client, POLLIN, 0}, {server, POLLIN, 0}}};
  while (poll(sides.data(), sides.size(), -1) > 0) {
    if (sides[1].revents) {
      const ssize_t got = read(server, buffer.data(), buffer.size());
      if (got <= 0 || !sendAll(client, {buffer.data(), static_cast<std::size_t>(got)})) return;
    }
    if (sides[0].revents) {
      const ssize_t got = read(client, buffer.data(), buffer.size());
      if (got <= 0) return;
      requests.add(buffer.data(), static_cast<std::size_t>(got));
      if (!sendAll(server, requests.take(watch_))) return;
    }
  }
}

void spoilWindows(std::span<char> request) {
  constexpr char kCreateWindow = 1;
  constexpr std::size_t kWidthAt = 16;
  if (request[0] == kCreateWindow) request[kWidthAt] = request[kWidthAt + 1] = 0;
}

}  // namespace test
