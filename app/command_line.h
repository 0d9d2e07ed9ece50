#pragma once

#include <span>
#include <string>
#include <string_view>

namespace app {

/// What the command line asks for.
struct CommandLine {
  enum class Action {
    /// Open the window.
    Run,
    /// Print `versionText()` to standard output and end with status 0.
    PrintVersion,
    /// Print `usageText()` to standard output and end with status 0.
    PrintUsage,
  };

  Action action = Action::Run;
  /// The folder to scan at once; empty shows the welcome view.
  std::string path;
  /// The file that one frame is written to before the program ends; empty means that nothing is
  /// captured.
  std::string capturePath;
  /// Seconds to wait before the capture: whatever strtod reads, so it may be negative, infinite or
  /// NaN.
  double captureDelay = 1.0;
};

/// Reads the arguments after the program's name, first to last, each by its whole text. Never
/// fails: unknown options, and options that lack their value, are ignored, and of several paths the
/// last counts. "--version" and "--help" end the reading; what came before them is still filled in.
CommandLine parseCommandLine(std::span<const char* const> arguments);

/// The version and a line feed.
std::string versionText();

/// The answer to "--help", several lines.
std::string usageText();

/// For standard error when there is no usable X display; the exit status is 1.
std::string noDisplayMessage();

/// For standard error when the main window cannot be made; the exit status is 1.
std::string noWindowMessage();

}  // namespace app
