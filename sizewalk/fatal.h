#pragma once

namespace sizewalk {

/// Writes `message` as one line to standard error and ends the program with status 1, running no
/// exit handlers: other threads may be in the middle of their work.
[[noreturn]] void endProgram(const char* message) noexcept;

}  // namespace sizewalk
