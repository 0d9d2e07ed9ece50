#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

namespace test {

/// The absolute path of a program on PATH; empty when there is none.
std::string programOnPath(const std::string& name);

/// A real HTTP server on this machine, a python3 of its own, until the end of the scope. For the
/// scope no proxy stands between it and who asks it, and HOME is a directory of the test's own.
///
/// What it has: "answer", "status/N" (the answer, with that status), "redirect/N" (N redirects
/// before the answer), "cut" (less of an answer than it announces) and "never" (no answer at all).
class UpdateServer {
 public:
  /// Throws std::runtime_error when it does not start. Needs python3 on PATH.
  explicit UpdateServer(const std::string& answer = {});

  void setAnswer(const std::string& answer) const;
  std::string address(const std::string& path) const;
  /// Nobody is at the address any more after this.
  void stop() { server_.reset(); }

  /// A line for each request, with tabs between address, user agent and accepted types.
  std::vector<std::string> requests() const;

 private:
  TempDirectory directory_;
  PrivateHome home_;
  ScopedEnvironment environment_;
  std::optional<Child> server_;
  std::string port_;
};

}  // namespace test
