#pragma once

#include <string>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/other_client.h"

namespace bench {

/// The built program in a process of its own, with a home of its own, on the server that DISPLAY
/// names; it ends with the scope. It shows how long files are, since those that take no time to
/// make occupy nothing.
class RunningProgram {
 public:
  /// Its window is resized to `width` x `height` and has the keyboard. `client` outlives the
  /// object and is of the same server.
  RunningProgram(test::OtherClient& client, const std::string& scannedPath, int width, int height);

  /// Waits until the program has used no processor time for half a second: then no scan runs and
  /// all is shown. Throws std::runtime_error when that does not come.
  void waitUntilIdle() const;
  int threads() const;
  /// The most that was resident so far, in bytes.
  double peakMemory() const;

 private:
  /// The number after `field` in what the system tells of the process.
  long status(const std::string& field) const;

  const test::PrivateHome home_;
  test::Child child_;
};

}  // namespace bench
