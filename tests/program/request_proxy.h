#pragma once

#include <functional>
#include <span>
#include <string>
#include <thread>

#include "base/file_descriptor.h"
#include "tests/support/environment.h"

namespace test {

/// Stands between clients and the X server that DISPLAY names, and shows each of their requests
/// before the server gets it. Serves one connection after another. DISPLAY names this for the
/// scope.
class RequestProxy {
 public:
  /// Called on the proxy's thread with a whole request of the X protocol, in the byte order of this
  /// machine, which it may change; the first byte is the number of its kind.
  using Watch = std::function<void(std::span<char> request)>;

  /// Throws std::runtime_error when a socket cannot be had.
  explicit RequestProxy(Watch watch);
  /// The clients have ended by now.
  ~RequestProxy();
  RequestProxy(const RequestProxy&) = delete;
  RequestProxy& operator=(const RequestProxy&) = delete;

 private:
  void serve();
  void relay(int client, int server) const;

  const Watch watch_;
  const std::string server_;  // its display
  base::FileDescriptor listening_;
  ScopedEnvironment environment_;
  std::thread thread_;
};

/// Leaves no width to any window that is asked for, so that the server refuses it as one without
/// memory would.
void spoilWindows(std::span<char> request);

}  // namespace test
