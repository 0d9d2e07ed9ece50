// How much a walk costs beyond its system calls, and how it compares with other programs: the
// scanner's wall time against a bare walker with as many threads, and whole processes against du,
// ncdu and gdu.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/support/bare_walker.h"
#include "bench/support/million_files.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "sizewalk/storage_probe.h"
#include "sizewalk/tree_scanner.h"

namespace {

using sizewalk::ScanOptions;
using sizewalk::TreeScanner;

constexpr std::size_t kPairs = 15;
constexpr std::size_t kProgramPairs = 7;

struct Place {
  std::string name;
  std::string path;
};

std::uint64_t scan(const std::string& path) {
  TreeScanner scanner{ScanOptions()};
  scanner.setRoot(path);
  scanner.walk(sizewalk::kRootNode);
  return scanner.tree().nodeCount();
}

void compareWithBareWalker(const Place& place) {
  const int threads = sizewalk::probeReaderThreads(place.path);
  std::uint64_t bareEntries = 0, nodes = 0;
  const bench::PairedTiming timing = bench::timePaired(
      kPairs, [&] { bareEntries = bench::bareWalk(place.path, threads).entries; },
      [&] { nodes = scan(place.path); });
  std::fprintf(stderr, "%s: %lu entries, %d readers, bare walker saw %lu\n", place.name.c_str(),
               static_cast<unsigned long>(nodes), threads, static_cast<unsigned long>(bareEntries));
  bench::printRow("walk of " + place.name + ", against a bare walker",
                  bench::milliseconds(timing.candidateMs), bench::milliseconds(timing.baselineMs),
                  bench::times(1 / timing.speedup), "at most 1.15");
}

/// Runs a program to its end with its output thrown away. False when it is not installed or failed
/// to start.
bool runQuietly(const std::vector<std::string>& command) {
  std::vector<char*> argv;
  for (const std::string& word : command) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int fd : {0, 1, 2}) {
    posix_spawn_file_actions_addopen(&actions, fd, "/dev/null", O_RDWR, 0);
  }
  pid_t child = -1;
  const int outcome = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (outcome != 0) return false;
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) != 127;
}

void compareWithProgram(const Place& place, const std::string& self,
                        std::vector<std::string> command) {
  const std::string name = command[0];
  command.push_back(place.path);
  if (!runQuietly(command)) {
    bench::printRow("whole process on " + place.name + ", against " + name, "-", "not installed",
                    "-", "below 1");
    return;
  }
  const std::vector<std::string> ours = {self, "--scan", place.path};
  const bench::PairedTiming timing = bench::timePaired(
      kProgramPairs, [&] { runQuietly(command); }, [&] { runQuietly(ours); });
  bench::printRow("whole process on " + place.name + ", against " + name,
                  bench::milliseconds(timing.candidateMs), bench::milliseconds(timing.baselineMs),
                  bench::times(1 / timing.speedup), "below 1");
}

void compare(const Place& place, const std::string& self) {
  compareWithBareWalker(place);
  compareWithProgram(place, self, {"du", "-s"});
  compareWithProgram(place, self, {"ncdu", "-0xo", "/dev/null"});
  compareWithProgram(place, self, {"gdu", "-npx"});
}

}  // namespace

/// Without arguments measures a million files in tmpfs and /usr; with a path, that tree alone.
int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == "--scan") {
    scan(argv[2]);
    _exit(0);  // a program at its end gives its memory back with the process
  }
  const std::string self = "/proc/self/exe";
  char resolved[4096] = {};
  if (!realpath(self.c_str(), resolved)) return 1;
  if (argc > 1) {
    compare({argv[1], argv[1]}, resolved);
    return 0;
  }
  {
    const bench::MillionFiles files;
    compare({"a million files in tmpfs", files.path()}, resolved);
  }
  compare({"/usr", "/usr"}, resolved);
  return 0;
}
