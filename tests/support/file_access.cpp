#include "tests/support/file_access.h"

#include <sys/fsuid.h>
#include <unistd.h>

namespace test {

namespace {
constexpr uid_t kNobody = 65534;
}

// Leaving file system id 0 also drops the capabilities that override permissions (capabilities(7)).
OrdinaryFileAccess::OrdinaryFileAccess() : previous_(geteuid()) {
  if (previous_ == 0) setfsuid(kNobody);
}

OrdinaryFileAccess::~OrdinaryFileAccess() { setfsuid(previous_); }

}  // namespace test
