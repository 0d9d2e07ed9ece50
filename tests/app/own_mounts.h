#pragma once

#include "tests/support/temp_directory.h"

namespace test {

/// What the mount table tells for the scope: "/" and nothing else. Mounts of other test programs
/// come and go, and the disks of the welcome view would move with them. For this the test program
/// has an `fopen` of its own in place of the C library's. One at a time.
class OwnMounts {
 public:
  OwnMounts();
  ~OwnMounts();
  OwnMounts(const OwnMounts&) = delete;
  OwnMounts& operator=(const OwnMounts&) = delete;

 private:
  TempDirectory dir_;
};

}  // namespace test
