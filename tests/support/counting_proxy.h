#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/environment.h"

namespace test {

/// An X display between clients and a server, which passes everything on and counts what clients
/// send. DISPLAY names it for the scope: whoever connects meanwhile is counted. The scope of
/// the server ends later.
class CountingProxy {
 public:
  /// `display` is that of a server on this machine, such as ":3". Takes connections once it
  /// returns. Throws std::runtime_error when there is no free display number.
  explicit CountingProxy(const std::string& display);
  /// Breaks the connections that are left.
  ~CountingProxy();
  CountingProxy(const CountingProxy&) = delete;
  CountingProxy& operator=(const CountingProxy&) = delete;

  /// Such as ":1000".
  const std::string& display() const { return display_; }
  /// All that clients have sent so far. What a client sent before a round trip is counted when the
  /// round trip ends (XSync). Any thread.
  std::uint64_t bytesToServer() const { return bytesToServer_; }

 private:
  struct Link;

  void takeConnections();
  void link(int client);

  const std::string server_;  // number of its display
  std::string display_;
  int listener_ = -1;
  std::atomic<std::uint64_t> bytesToServer_ = 0;
  std::vector<std::unique_ptr<Link>> links_;  // of `thread_` until that has ended
  ScopedEnvironment environment_;
  std::thread thread_;
};

}  // namespace test
