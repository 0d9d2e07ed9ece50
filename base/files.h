#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace base {

/// The whole content of a file, bytes as they are. Nothing when it cannot be opened or read to its
/// end.
std::optional<std::string> readWholeFile(const std::string& path);

enum class WriteOutcome {
  Written,
  /// The file could not be opened; nothing was changed.
  NotOpened,
  /// The file was opened but not all of `content` reached it; what did stays there.
  Incomplete,
};

/// Makes `content` the whole content of the file, created with mode 0600 when it is missing.
WriteOutcome writeWholeFile(const std::string& path, std::string_view content);

}  // namespace base
