#pragma once

#include <cstdint>
#include <string>

namespace test {

/// Makes `depth` nested directories called "d" below `path`, and a file called "bottom" of `bytes`
/// bytes in the last one. The paths may grow far beyond what the kernel takes in one call.
void makeDeepTree(const std::string& path, int depth, std::uint64_t bytes);

/// Makes a bushy tree of folders and small files, the same for the same seed; returns the number of
/// files.
int makeBushyTree(const std::string& path, unsigned seed, int folders, int filesPerFolder);

}  // namespace test
