#pragma once

#include <sys/types.h>

namespace test {

/// Checks file access as an ordinary user for this thread and the threads it starts meanwhile: the
/// super-user, as whom tests may run, can read everything. Does nothing for an ordinary user.
class OrdinaryFileAccess {
 public:
  OrdinaryFileAccess();
  ~OrdinaryFileAccess();
  OrdinaryFileAccess(const OrdinaryFileAccess&) = delete;
  OrdinaryFileAccess& operator=(const OrdinaryFileAccess&) = delete;

 private:
  uid_t previous_;
};

}  // namespace test
