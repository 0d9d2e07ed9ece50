#pragma once

#include <cerrno>

namespace sizewalk {

/// A system call interrupted by a signal is asked again this often, but not for ever: on a file
/// system that keeps being interrupted the entry counts as unreadable.
inline constexpr int kInterruptRetries = 100;

/// Runs `call`, which returns a negative value and sets errno on failure, again while it is
/// interrupted.
template <typename Call>
auto retryInterrupted(Call call) {
  auto result = call();
  for (int i = 0; result < 0 && errno == EINTR && i < kInterruptRetries; ++i) result = call();
  return result;
}

}  // namespace sizewalk
