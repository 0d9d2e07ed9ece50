#pragma once

#include <array>
#include <cstdint>

namespace test {

/// Lets permissions count for this thread, and for the threads it starts meanwhile, even when the
/// tests run as the super-user, who may read everything otherwise. Does nothing for an ordinary
/// user.
class OrdinaryFileAccess {
 public:
  OrdinaryFileAccess();
  ~OrdinaryFileAccess();
  OrdinaryFileAccess(const OrdinaryFileAccess&) = delete;
  OrdinaryFileAccess& operator=(const OrdinaryFileAccess&) = delete;

 private:
  /// The thread's effective capabilities before, as capset(2) lays them out.
  std::array<std::uint32_t, 2> effective_{};
};

}  // namespace test
