#include "app/command_line.h"

#include <cstddef>
#include <cstdlib>

#include "app/model/product.h"

namespace app {

CommandLine parseCommandLine(std::span<const char* const> arguments) {
  CommandLine result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    const bool hasValue = i + 1 < arguments.size();
    if (argument == "--version") {
      result.action = CommandLine::Action::PrintVersion;
      return result;
    }
    if (argument == "--help" || argument == "-h") {
      result.action = CommandLine::Action::PrintUsage;
      return result;
    }
    if (argument == "--capture" && hasValue) {
      result.capturePath = arguments[++i];
    } else if (argument == "--capture-after" && hasValue) {
      result.captureDelay = std::strtod(arguments[++i], nullptr);
    } else if (!argument.empty() && !argument.starts_with('-')) {
      result.path = argument;
    }
  }
  return result;
}

std::string versionText() { return std::string(kProductVersion) + "\n"; }

std::string usageText() {
  return std::string(kProductName) + " " + kProductVersion +
         "\n"
         "usage: heapgauge [path]\n"
         "  path    a folder to scan at once, instead of the chooser\n"
         "\n"
         "  --capture FILE        draw one frame to a PPM file and exit\n"
         "  --capture-after SEC   how long to wait first (default 1)\n"
         "\n"
         "Environment:\n"
         "  HEAPGAUGE_THEME=light|dark   override the desktop's setting\n";
}

std::string noDisplayMessage() {
  return "Cannot open a connection to the X display.\n"
         "This is a graphical application; DISPLAY has to be set.\n"
         "On a Wayland-only session it reaches the screen through XWayland.\n";
}

std::string noWindowMessage() { return "Could not create the window.\n"; }

}  // namespace app
