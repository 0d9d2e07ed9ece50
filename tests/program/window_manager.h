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
  PrivateHome home_;
  Child child_;
};

}  // namespace test
