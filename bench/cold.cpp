// How long a walk takes that finds nothing in memory, against du, ncdu and gdu: /usr where it lies,
// and its folders and empty files of the same names on a fresh xfs and a fresh btrfs. The caches of
// the whole machine are dropped before each run, and the new file systems mounted by loop devices
// in a mount namespace of the benchmark's own, which takes them down when it ends, however it ends.
// Where that may not be done the rows have no figures.
//
// Ours is the walk alone, in this process; the others' programs are loaded before their time
// starts.

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_descriptor.h"
#include "bench/support/paired_timing.h"
#include "bench/support/quiet_run.h"
#include "bench/support/row.h"
#include "sizewalk/tree_scanner.h"
#include "tests/support/mount_namespace.h"

namespace {

constexpr std::size_t kRuns = 3;
const std::string kSource = "/usr";

using Command = std::vector<std::string>;
const std::array<Command, 3> kRivals = {Command{"du", "-sx"}, Command{"ncdu", "-0xo", "/dev/null"},
                                        Command{"gdu", "-npx"}};

/// False where this process may not do that.
bool dropCaches() {
  sync();
  const base::FileDescriptor file(open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC));
  return file.valid() && write(file.get(), "3", 1) == 1;
}

void printWithoutFigures(const std::string& question, const std::string& why) {
  bench::printRow(question, "-", why, "-", "at most 1");
}

std::string questionOf(const std::string& place, const Command& rival) {
  return "walk of " + place + " with cold caches, against " + rival[0];
}

void printAllWithoutFigures(const std::string& place, const std::string& why) {
  for (const Command& rival : kRivals) printWithoutFigures(questionOf(place, rival), why);
}

void walk(const std::string& path) {
  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(path);
  scanner.walk(sizewalk::kRootNode);
}

void compareWith(Command rival, const std::string& place, const std::string& path) {
  const std::string question = questionOf(place, rival);
  const Command load = {rival[0], "--version"};
  if (bench::runQuietly(load) == bench::Ending::NotInstalled) {
    return printWithoutFigures(question, "not installed");
  }
  rival.push_back(path);
  std::vector<double> ours, theirs, ratios;
  for (std::size_t i = 0; i < kRuns; ++i) {
    dropCaches();
    ours.push_back(bench::timeMs([&] { walk(path); }));
    dropCaches();
    bench::runQuietly(load);
    bool failed = false;
    theirs.push_back(
        bench::timeMs([&] { failed = bench::runQuietly(rival) != bench::Ending::Success; }));
    if (failed) return printWithoutFigures(question, "failed");
    ratios.push_back(ours.back() / theirs.back());
  }
  bench::printRow(question, bench::milliseconds(bench::median(ours)),
                  bench::milliseconds(bench::median(theirs)), bench::times(bench::median(ratios)),
                  "at most 1");
}

void compare(const std::string& place, const std::string& path) {
  for (const Command& rival : kRivals) compareWith(rival, place, path);
}

/// A folder of this benchmark's own on a disk, where /tmp may lie in memory; removed at the end of
/// the scope.
class Workshop {
 public:
  Workshop() {
    if (!mkdtemp(path_.data())) path_.clear();
  }
  ~Workshop() {
    if (!path_.empty()) bench::runQuietly({"rm", "-rf", "--one-file-system", path_});
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_ = "/var/tmp/heapgauge-bench-XXXXXX";
};

bool run(const Command& command) { return bench::runQuietly(command) == bench::Ending::Success; }

/// Makes a file system of `type` with all the names of `kSource` at `folder`, which is mounted
/// until the namespace ends. Returns why it could not, or nothing.
std::string makeFileSystem(const std::string& type, const std::string& folder) {
  const std::string image = folder + ".image";
  if (!run({"truncate", "--size=8G", image})) return "no image";
  if (!run({"mkfs." + type, "-q", image})) return "no mkfs." + type;
  if (mkdir(folder.c_str(), 0700) != 0) return "no folder";
  if (!run({"mount", "-t", type, "-o", "loop", image, folder})) return "no loop mount";
  if (!run({"cp", "--archive", "--attributes-only", "--one-file-system", kSource, folder})) {
    return "no copy";
  }
  return {};
}

void measureFresh(const std::string& type) {
  const std::string place = kSource + " without content on " + type;
  const Workshop workshop;
  const std::string folder = workshop.path() + "/" + type;
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    const std::string problem = makeFileSystem(type, folder);
    if (!problem.empty()) return problem;
    compare(place, folder + kSource);
    umount2(folder.c_str(), MNT_DETACH);
    return {};
  });
  if (!outcome.empty()) printAllWithoutFigures(place, outcome);
}

}  // namespace

int main() {
  if (!dropCaches()) {
    printAllWithoutFigures(kSource, "caches cannot be dropped");
    for (const std::string type : {"xfs", "btrfs"}) {
      printAllWithoutFigures(kSource + " without content on " + type, "caches cannot be dropped");
    }
    return 0;
  }
  compare(kSource, kSource);
  measureFresh("xfs");
  measureFresh("btrfs");
  return 0;
}
