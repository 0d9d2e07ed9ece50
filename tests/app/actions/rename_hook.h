#pragma once

#include <functional>

namespace test {

/// Stands between the program and the kernel for renameat2(2) during a scope: `before` is called
/// with the number of the call, from 1, and returns 0 for the kernel to be asked or the errno to
/// fail with. One at a time.
class RenameHook {
 public:
  explicit RenameHook(std::function<int(int call)> before);
  ~RenameHook();
  RenameHook(const RenameHook&) = delete;
  RenameHook& operator=(const RenameHook&) = delete;
};

}  // namespace test
