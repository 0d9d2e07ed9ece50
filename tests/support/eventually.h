#pragma once

#include <chrono>
#include <thread>

namespace test {

/// Asks `condition` every few milliseconds until it holds; false when it still does not after
/// a minute: a test that takes ten seconds alone takes more beside others, with a sanitizer.
template <typename Condition>
bool eventually(Condition&& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));  // between two looks
  }
  return true;
}

}  // namespace test
