#include "bench/support/roomy_memory.h"

#include <sys/mount.h>

#include <exception>
#include <stdexcept>
#include <string>

#include "tests/support/mount_namespace.h"

namespace bench {

void inRoomyMemory(const std::function<void()>& work) {
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    mount("tmpfs", "/dev/shm", "tmpfs", 0, "nr_inodes=0");
    try {
      work();
    } catch (const std::exception& problem) {
      return problem.what();
    }
    return {};
  });
  if (outcome.starts_with("cannot")) {
    work();
  } else if (!outcome.empty()) {
    throw std::runtime_error(outcome);
  }
}

}  // namespace bench
