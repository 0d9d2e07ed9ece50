#pragma once

#include <thread>

#include "base/file_descriptor.h"
#include "tests/support/environment.h"

namespace test {

/// Stands between one client and the X server that DISPLAY names, and spoils the client's requests
/// for windows so that the server refuses them, as one without memory would. DISPLAY names this for
/// the scope.
class WindowlessServer {
 public:
  /// Throws std::runtime_error when the server or a socket cannot be had.
  WindowlessServer();
  ~WindowlessServer();
  WindowlessServer(const WindowlessServer&) = delete;
  WindowlessServer& operator=(const WindowlessServer&) = delete;

 private:
  void serve();

  base::FileDescriptor listening_;
  base::FileDescriptor server_;
  ScopedEnvironment environment_;
  std::thread thread_;
};

}  // namespace test
