#pragma once

#include <string>
#include <vector>

// The question to the update server. It says which version runs and on what kind of system, and
// nothing else.

namespace app {

/// The address that answers which version is the latest: $HEAPGAUGE_UPDATE_URL when it is set and
/// not empty, otherwise "/api/latest-version" of the server that was set when the program was
/// built; either with the question appended. Reads the environment: not to be called while another
/// thread changes it.
std::string updateAddress();

/// The commands that write what is at `address` to their standard output, with success only if all
/// of it came. Each gives up by itself where the server does not answer.
std::vector<std::string> curlCommand(const std::string& address);
std::vector<std::string> wgetCommand(const std::string& address);

/// What is at `address`, by curl or, where that brings nothing, by wget; empty when neither does.
/// As long as `runCapture` makes it. Waits for those programs. Not for the window thread.
std::string fetchUpdateAnswer(const std::string& address);

}  // namespace app
