#pragma once

#include "tests/support/child.h"
#include "tests/support/environment.h"

namespace test {

/// A real window manager (openbox) on the X server that DISPLAY names, with none of the user's
/// settings. It ends with the scope.
class WindowManager {
 public:
  /// Returns when it manages windows. Throws std::runtime_error when it does not come to that.
  WindowManager();

 private:
  /// Where it is installed with its theme, which it does not start without.
  struct SystemDirectories {
    SystemDirectories();
    ScopedEnvironment environment;
  };

  PrivateHome home_;
  SystemDirectories directories_;
  Child child_;
};

}  // namespace test
