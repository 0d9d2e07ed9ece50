#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/x_server_state.h"

namespace test {

/// A running Xvfb, which ends with the object, and with the test program however that ends.
class XServerProcess {
 public:
  /// Returns when the server takes connections. Throws std::runtime_error when it does not start.
  explicit XServerProcess(const std::vector<std::string>& arguments);
  ~XServerProcess();
  XServerProcess(const XServerProcess&) = delete;
  XServerProcess& operator=(const XServerProcess&) = delete;

  const std::vector<std::string>& arguments() const { return arguments_; }
  const std::string& display() const { return display_; }
  pid_t pid() const { return pid_; }
  /// The size of its address space in bytes.
  std::size_t memory() const;

  /// Once its clients left, for which it waits some seconds at most, undoes what they left behind.
  /// False when they stay, when the server ended or when it differs from a new one.
  bool becomesAsNew() const;

 private:
  void end() const;

  const std::vector<std::string> arguments_;
  /// Who may end it: not a process that was forked from the test's.
  const pid_t owner_;
  pid_t pid_ = -1;
  std::string display_;
  std::optional<XServerState> asNew_;
};

}  // namespace test
