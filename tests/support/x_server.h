#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/environment.h"

namespace test {

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
};

/// An X server of the test's own (Xvfb, on a display number that it picks itself), which DISPLAY
/// names for the scope. It ends with the scope, and with the test program however that ends.
class XServer {
 public:
  /// Returns when the server takes connections. Throws std::runtime_error when it does not start.
  explicit XServer(const XServerOptions& options = {});
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  /// Such as ":3".
  const std::string& display() const { return display_; }
  pid_t pid() const { return pid_; }
  /// The size of its address space in bytes, which holds the pixmaps of its clients.
  std::size_t memory() const;

 private:
  void start(const std::vector<std::string>& arguments, int displayPipe);
  void publishResources(const std::string& resources) const;

  pid_t pid_ = -1;
  std::string display_;
  ScopedEnvironment environment_;
};

}  // namespace test
