// What a scan keeps in memory: the process's growth over the scan of a million files, against what
// the columns and the names must take.

#include <malloc.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "bench/support/million_files.h"
#include "bench/support/row.h"
#include "sizewalk/tree_scanner.h"

namespace {

/// The widths of the fourteen columns together, and the entries of one page of each.
constexpr double kColumnBytes = 69;
constexpr double kPageEntries = 65536;
constexpr double kAllowance = 16 * bench::kMiB;

/// A line of /proc/self/status in bytes.
double status(const std::string& field) {
  std::ifstream file("/proc/self/status");
  std::string line;
  while (std::getline(file, line)) {
    if (line.starts_with(field + ":")) return std::stod(line.substr(field.size() + 1)) * 1024;
  }
  return 0;
}

}  // namespace

/// Measures a million files in tmpfs, or the tree at the path that is given.
int main(int argc, char** argv) {
  std::unique_ptr<bench::MillionFiles> files;
  if (argc < 2) files = std::make_unique<bench::MillionFiles>();
  const std::string path = argc < 2 ? files->path() : argv[1];
  const std::string name = argc < 2 ? "a million files in tmpfs" : path;
  malloc_trim(0);
  const double before = status("VmRSS");

  sizewalk::TreeScanner scanner{sizewalk::ScanOptions()};
  scanner.setRoot(path);
  scanner.walk(sizewalk::kRootNode);

  const double grown = status("VmRSS") - before;
  const double peak = status("VmHWM") - before;
  const sizewalk::FileTree& tree = scanner.tree();
  double names = 0;
  for (sizewalk::NodeId node = 0; node < tree.nodeCount(); ++node) {
    names += static_cast<double>(tree.name(node).size());
  }
  const double nodes = static_cast<double>(tree.nodeCount());
  const double bar = nodes * kColumnBytes + names + kPageEntries * kColumnBytes + kAllowance;
  std::fprintf(stderr, "%.0f nodes, %s of names, %.1f bytes a node in all\n", nodes,
               bench::mebibytes(names).c_str(), grown / nodes);
  bench::printRow("memory after a scan of " + name + ", against its bound", bench::mebibytes(grown),
                  bench::mebibytes(bar), bench::times(grown / bar), "at most 1");
  bench::printRow("memory at the peak of that scan, against its bound", bench::mebibytes(peak),
                  bench::mebibytes(bar), bench::times(peak / bar), "at most 1");
  return 0;
}
