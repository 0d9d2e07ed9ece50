#pragma once

#include <fcntl.h>

#include <optional>
#include <string>

#include "base/file_descriptor.h"

namespace sizewalk {

/// Where the calls that take a directory and a path (openat and its kin) find something.
struct ReachedPath {
  base::FileDescriptor ancestor;  // of `rest`; none when that is the whole path
  std::string rest;

  int directory() const { return ancestor.valid() ? ancestor.get() : AT_FDCWD; }
};

/// Makes the absolute `path` fit into one call. One shorter than PATH_MAX stays as it is, and
/// nothing is asked; of a longer one, the ancestors are opened step by step as far as is needed,
/// the last one of a step never through a symbolic link. Nothing when that fails, and errno says
/// why. Any thread.
std::optional<ReachedPath> reachPath(const std::string& path);

}  // namespace sizewalk
