#pragma once

#include <cstdint>
#include <string>

namespace bench {

/// What a bare walk saw.
struct BareTotals {
  std::uint64_t entries = 0;
  std::uint64_t allocatedBytes = 0;
};

/// The least that a parallel walk can do: `threads` threads that share a stack of directories and
/// issue the same listing and status calls as the scanner, with the same flags and buffer. Keeps no
/// tree and no names.
BareTotals bareWalk(const std::string& root, int threads);

}  // namespace bench
