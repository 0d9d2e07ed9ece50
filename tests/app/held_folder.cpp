#undef _FORTIFY_SOURCE  // which would define openat inline

#include "tests/app/held_folder.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <mutex>
#include <stdexcept>
#include <string_view>

namespace {

/// Looked at by every `openat` of the process, also by those before the constructors of statics.
constinit std::atomic<bool> holding{false};

struct Gate {
  std::mutex mutex;
  std::condition_variable changed;
  std::string name;  // that holds; empty when none does
  int held = 0;
};

Gate& gate() {
  static Gate theGate;
  return theGate;
}

bool isNamed(std::string_view path, const std::string& name) {
  return path == name || (name != "/" && path.ends_with("/" + name));
}

void passGate(std::string_view path) {
  if (!holding) return;
  std::unique_lock lock(gate().mutex);
  if (gate().name.empty() || !isNamed(path, gate().name)) return;
  ++gate().held;
  gate().changed.notify_all();
  const std::string heldAt = gate().name;
  gate().changed.wait(lock, [&] { return gate().name != heldAt; });
  --gate().held;
}

}  // namespace

extern "C" int openat(int directory, const char* path, int flags, ...) {
  mode_t mode = 0;
  if (flags & O_CREAT) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  passGate(path);
  return static_cast<int>(syscall(SYS_openat, directory, path, flags, mode));
}

/// What hardened code calls in its place.
extern "C" int __openat_2(int directory, const char* path, int flags) {
  return openat(directory, path, flags);
}

namespace test {

HeldFolder::HeldFolder(const std::string& name) {
  if (holding.exchange(true)) throw std::runtime_error("another folder is held already");
  const std::lock_guard lock(gate().mutex);
  gate().name = name;
}

HeldFolder::~HeldFolder() {
  release();
  holding = false;
}

bool HeldFolder::waitUntilHeld(int threads) const {
  std::unique_lock lock(gate().mutex);
  return gate().changed.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return gate().held >= threads; });
}

int HeldFolder::held() const {
  const std::lock_guard lock(gate().mutex);
  return gate().held;
}

void HeldFolder::holdInstead(const std::string& name) {
  const std::lock_guard lock(gate().mutex);
  gate().name = name;
  gate().changed.notify_all();
}

}  // namespace test
