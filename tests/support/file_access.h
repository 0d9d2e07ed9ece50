#pragma once

#include <array>
#include <cstdint>
#include <functional>

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

/// Calls `act` on a thread for which permissions count in every respect, and waits for its end.
/// `OrdinaryFileAccess` does not reach access(2), which goes by what the super-user might take
/// back.
void asOrdinaryUser(const std::function<void()>& act);

}  // namespace test
