#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/environment.h"

namespace test {

class XServerProcess;

struct XServerOptions {
  int width = 1280;
  int height = 800;
  /// Bits a pixel of the root: 8, 16, 24 or 30.
  int depth = 24;
  /// Dots per inch that the size of the screen in millimetres is computed from.
  int dpi = 96;
  /// The resource database (RESOURCE_MANAGER), such as "Xft.dpi:\t144\n"; empty for none.
  std::string resources = {};
  std::vector<std::string> extraArguments = {};
  /// Started for this scope alone: for tests that end the server or look at its memory.
  bool startedAnew = false;
};

/// An X server (Xvfb, on a display number that it picks itself) with no other client, which DISPLAY
/// names for the scope. A server takes longer to start than most tests take, so the next scope that
/// wants one of the same options is given this one, if it could be made as new: pointer, focus and
/// the root's properties are put back, and one that differs otherwise is ended. So is one that a
/// client stays with for seconds after the scope. All end with the test program however that ends.
/// For the main thread.
class XServer {
 public:
  /// Returns when the server takes connections. Throws std::runtime_error when it does not start.
  explicit XServer(const XServerOptions& options = {});
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  /// Such as ":3".
  const std::string& display() const;
  pid_t pid() const;
  /// The size of its address space in bytes, which holds the pixmaps of its clients.
  std::size_t memory() const;

 private:
  void publishResources(const std::string& resources) const;

  const bool startedAnew_;
  std::unique_ptr<XServerProcess> process_;
  ScopedEnvironment environment_;
};

}  // namespace test
