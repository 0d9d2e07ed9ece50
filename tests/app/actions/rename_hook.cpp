#include "tests/app/actions/rename_hook.h"

#include <stdio.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {
std::function<int(int)> beforeRename;
int renames = 0;
}  // namespace

// Found before the C library's function of that name.
extern "C" int renameat2(int from, const char* oldPath, int to, const char* newPath,
                         unsigned int flags) noexcept {
  if (beforeRename) {
    if (const int error = beforeRename(++renames); error != 0) {
      errno = error;
      return -1;
    }
  }
  return static_cast<int>(syscall(SYS_renameat2, from, oldPath, to, newPath, flags));
}

namespace test {

RenameHook::RenameHook(std::function<int(int call)> before) {
  beforeRename = std::move(before);
  renames = 0;
}

RenameHook::~RenameHook() { beforeRename = nullptr; }

}  // namespace test
