#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// The whole content of a regular file, bytes as they are. Nothing when `path` is anything else,
/// when it cannot be opened or read to its end, or when it holds more than `largest` bytes; errno
/// says why, and is ENOENT only where there is nothing. Never waits for another program: a FIFO or
/// a device counts as unreadable.
std::optional<std::string> readWholeFile(const std::string& path,
                                         std::size_t largest = std::string::npos);

/// What is left to read of the open file `fd`, to its end. Nothing when reading fails, or as soon
/// as that is more than `largest` bytes; errno says why.
std::optional<std::string> readRest(int fd, std::size_t largest = std::string::npos);

/// Writes all of `bytes` to the open file `fd`. False when not all of them could be written.
bool writeAll(int fd, std::string_view bytes);

enum class WriteOutcome {
  Written,
  /// The file could not be opened; nothing was changed.
  NotOpened,
  /// The file was opened but not all of `content` reached it; what did stays there.
  Incomplete,
};

/// Makes `content` the whole content of the file, created with mode 0600 when it is missing. Never
/// waits for a reader of a FIFO.
WriteOutcome writeWholeFile(const std::string& path, std::string_view content);

}  // namespace base
