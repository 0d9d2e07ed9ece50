#pragma once

#include <string>
#include <vector>

namespace bench {

/// How a program ended.
enum class Ending {
  /// With status 0.
  Success,
  /// With another status, or by a signal.
  Failure,
  NotInstalled,
};

/// Runs a program, looked up on PATH, to its end, however long that takes, with its output thrown
/// away. Throws std::system_error when it cannot be started for another reason than its absence.
Ending runQuietly(const std::vector<std::string>& command);

}  // namespace bench
