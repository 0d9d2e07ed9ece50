#pragma once

#include <string>
#include <vector>

namespace app {

/// Starts the program `argv[0]`, looked up on PATH, with the arguments `argv`, bytes as they are:
/// no shell reads them. It runs in a session of its own and is nobody's child here: no end of it
/// has to be waited for, and neither the end of this program nor of its terminal ends it. Its
/// standard input, output and error are /dev/null; no other descriptor, signal mask or ignored
/// signal of ours reaches it.
///
/// Returns at once; waits only for a child that forks and exits. True when that child could be
/// started, which does not say that the program was found. Any thread.
bool spawnDetached(const std::vector<std::string>& argv);

/// Runs the program `argv[0]` as above and returns what it writes to its standard output, once it
/// has ended with success; empty on any other end and on any failure. Its standard input is ours,
/// its standard error /dev/null. Past 1 MiB of output nothing more is read: what came so far is
/// returned, up to 4 KiB more than that, also when the program ends because nobody listens to it
/// any longer.
///
/// Waits until the program has closed its output and ended, for as long as that takes. Not for the
/// window thread.
std::string runCapture(const std::vector<std::string>& argv);

/// Whether the two above would find `program`: an executable file of that name in a directory of
/// PATH, or at that path when the name holds a slash. Asks the disk, which may be a slow one. Not
/// for the window thread.
bool isOnPath(const std::string& program);

}  // namespace app
